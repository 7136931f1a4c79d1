#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Core/Base/Pids.h"

namespace ravik::platform {

/// The windows of one display and who owns them. Main loop; change events come from GLib's default main context. A
/// display that goes away leaves no windows and no focus behind, and the program lives on.
class Windows {
public:
    struct Window {
        std::uint64_t id = 0;
        Pid pid = 0;
        /// False for one that would be torn down by force, and for the desktop's own panels and background.
        bool takesClose = false;
    };

    virtual ~Windows() = default;
    /// Top-level windows whose owner is known.
    virtual std::vector<Window> list() = 0;
    /// Owner of the window with the focus; absent if there is none or it cannot be told.
    virtual std::optional<Pid> active() = 0;
    virtual bool knowsFocus() = 0;
    /// Calls back with the owner of each window that gets the focus. One observer.
    virtual void onActive(std::function<void(Pid)> observer) = 0;
    /// Asks for it to be closed, as its close button would. False if the question could not be sent.
    virtual bool close(const Window& window) = 0;
};

/// The display of an X server, "" for $DISPLAY; null if it cannot be reached. Without `focus` it tells of windows
/// alone, as under Wayland, where X knows of a part of them only.
std::unique_ptr<Windows> makeX11Windows(const std::string& display, bool focus);

/// A compositor that speaks sway's protocol on this socket; null if it does not answer.
std::unique_ptr<Windows> makeSwayWindows(const std::string& socketPath);

}  // namespace ravik::platform
