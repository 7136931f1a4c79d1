#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Core/Base/Pids.h"

/// What a program with windows is to the desktop it runs on.
namespace ravik {

/// What another start of the program, the desktop or a terminal asks of the desktop app.
struct Activation {
    /// Empty: show yourself. Else "open", whose parameter is a destination, or whatever the desktop entry offers.
    std::string action;
    std::string parameter;
    /// The desktop's leave to come to the front (a startup id or an xdg-activation token); empty if it gave none.
    std::string token;

    friend bool operator==(const Activation&, const Activation&) = default;
};

/// The one desktop app of a user. Main loop.
class DesktopApp {
public:
    virtual ~DesktopApp() = default;

    struct Other {
        /// 0 if it cannot be told.
        Pid pid = 0;
        /// Whether it has heard what was asked.
        bool heard = false;

        friend bool operator==(const Other&, const Other&) = default;
    };
    /// Absent: this process is the app now. Else the process that is, which has been asked in place of this one, with
    /// the token that this process was started with. Waits for its answer 5 seconds at most. Never fails to let
    /// somebody be the app: where there is nobody to ask, this process is.
    virtual std::optional<Other> claim(const Activation& asked) = 0;
    /// What is asked from now on. Set before claim(); called on the loop. One observer.
    virtual void onActivation(std::function<void(const Activation&)> observer) = 0;
    /// The app is nobody from now on. Without a claim, nothing.
    virtual void release() = 0;

    /// Asks the app that runs, or starts it. Absent if that went well; else one sentence that says why it did not.
    virtual std::optional<std::string> open(const Activation& asked) = 0;
};

}  // namespace ravik
