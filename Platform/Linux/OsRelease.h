#pragma once

#include <string>
#include <string_view>

namespace ravik::platform {

/// "debian 12": ID and VERSION_ID of os-release, whichever are there. Pure.
std::string osReleaseName(std::string_view osRelease);

}  // namespace ravik::platform
