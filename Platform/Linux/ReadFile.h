#pragma once

#include <optional>
#include <string>

namespace ravik::platform {

/// The bytes of a small file, also one whose size the kernel does not tell in advance. Absent if it cannot be
/// opened or read to its end.
std::optional<std::string> readFile(const std::string& path);

}  // namespace ravik::platform
