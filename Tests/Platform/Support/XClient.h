#pragma once

#include <functional>
#include <string>

#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

enum class OnClose { quit, refuse, knowNothing };

/// Owns a window until it is closed, and then returns; ends the process where there is no such display.
void showXClient(const std::string& display, OnClose onClose, const std::function<void()>& mapped = {});

/// Starts a process that owns one mapped window on the display: it quits when it is asked to close, hears that
/// and stays, or does not take WM_DELETE_WINDOW at all. Its pid once the window is mapped; 0 if it failed.
Pid startXClient(const std::string& display, OnClose onClose, Reaper& reaper);

}  // namespace ravik::platform
