#pragma once

#include <optional>
#include <string>

namespace ravik::platform {

/// The icon file of the desktop entry with this display name; absent if there is none. Main loop.
std::optional<std::string> iconPath(const std::string& displayName);

}  // namespace ravik::platform
