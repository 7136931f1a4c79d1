#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ravik::platform {

/// The program of this name in `folder`, else in the first folder of `searchPath` (PATH's form) that has it; a
/// relative folder counts as none. Absent if nothing of that name can be run.
std::optional<std::filesystem::path> findProgram(std::string_view name, const std::filesystem::path& folder,
                                                 std::string_view searchPath);

/// Starts a program in a session of its own, its streams at /dev/null, with nothing else of this process's open and
/// the folder `at` to stand in. Absent if it runs; else what went wrong, as the end of a sentence. Looks on for
/// 0.3 seconds, so that a program that ends at once with a failure is told of.
std::optional<std::string> startDetached(const std::vector<std::string>& words, const std::filesystem::path& at);

}  // namespace ravik::platform
