#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ravik {

/// The files of `folder` whose extension is exactly "jsonl", ascending by name and so by day. Empty where the
/// folder cannot be listed.
std::vector<std::filesystem::path> logFiles(const std::filesystem::path& folder);

/// The same files' names without the extension, in the same order.
std::vector<std::string> logDays(const std::filesystem::path& folder);

}  // namespace ravik
