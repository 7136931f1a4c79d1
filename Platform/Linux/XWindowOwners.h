#pragma once

#include <string>

#include "Core/Base/Pids.h"

namespace ravik::platform {

/// Everybody who owns a window on this X display, over a connection of its own; nobody where there is no display.
/// Any thread.
PidSet xWindowOwners(const std::string& display = {});

}  // namespace ravik::platform
