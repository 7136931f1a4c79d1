#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "Platform/DesktopApp.h"

namespace ravik::platform {

/// The app's name on the session bus, "dev.tolvane.Ravik", and the object /dev/tolvane/Ravik below it, which speaks
/// org.freedesktop.Application. Main loop; calls back on GLib's default main context. Never starts a bus.
class ApplicationBus {
public:
    /// `address` in D-Bus's form; empty: there is none. Nothing is connected before the first call.
    explicit ApplicationBus(std::string address);
    ~ApplicationBus();
    ApplicationBus(const ApplicationBus&) = delete;
    ApplicationBus& operator=(const ApplicationBus&) = delete;

    enum class Answer { mine, theirs, noBus };
    /// Of several that ask at once exactly one gets the name. When the bus goes and comes back, the name is taken
    /// again, if nobody else has.
    Answer claim();
    void release();
    void onActivation(std::function<void(const Activation&)> observer);

    bool isThere();
    /// Pid of the name's owner; absent if it has none, 0 if it cannot be told.
    std::optional<Pid> owner();
    /// Whether the bus knows a program to start for the name.
    bool canStart();

    enum class Delivery { heard, nobody, unanswered };
    /// Tells the owner; with `start` the bus starts one where there is none. `tokens` are entries of the platform
    /// data: "desktop-startup-id", "activation-token".
    Delivery send(const Activation& asked, const std::map<std::string, std::string>& tokens, bool start);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace ravik::platform
