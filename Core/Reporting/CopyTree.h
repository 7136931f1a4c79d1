#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace ravik {

/// Copies a file, or a folder with all below it, to a place that is still free, for its owner's eyes alone. Links are
/// copied as links, except `from` itself, which may be one; pipes, sockets and devices are left out, and so is what
/// has gone by the time it is reached. A file that grows meanwhile is copied as long as it was when it was opened.
/// Absent if it went, else one sentence that says why not; what was copied so far then stays. Gives up with a sentence
/// soon after `cancelled` says true; it may be empty. Any thread.
std::optional<std::string> copyTree(const std::filesystem::path& from, const std::filesystem::path& to,
                                    const std::function<bool()>& cancelled);

}  // namespace ravik
