#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

/// Log lines of a few kinds, cheaply out of many. Never fails: what cannot be read or parsed is passed over. Any
/// thread.
namespace ravik::LogReader {

/// Names of log files without the extension; absent for all.
using Days = std::optional<std::set<std::string>>;

/// Calls `each` with every line, in the order of the days, that is a JSON object of one of `kinds`. Only lines with the
/// bytes of a kind somewhere in them are parsed. Holds one chunk of the log at a time.
void forEachLine(const std::filesystem::path& folder, std::span<const std::string_view> kinds, const Days& days,
                 const std::function<void(const nlohmann::json&)>& each);

/// The same lines, together.
std::vector<nlohmann::json> lines(const std::filesystem::path& folder, std::span<const std::string_view> kinds,
                                  const Days& days = {});

}  // namespace ravik::LogReader
