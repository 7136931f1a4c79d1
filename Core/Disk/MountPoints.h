#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ravik {

/// The mount points named in the text of a `mountinfo` file, escapes undone, in its order.
std::vector<std::string> parseMountPoints(std::string_view mountinfo);

/// Those that lie below the folder, itself not counted. What is mounted there neither takes up space in the folder
/// nor may go with it. `folder` is free of links. None where the system keeps no such file.
std::vector<std::string> mountPointsBelow(const std::filesystem::path& folder);

}  // namespace ravik
