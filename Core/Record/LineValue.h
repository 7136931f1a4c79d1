#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

/// Typed reads of a line that LogReader has handed out: the type asked for, or absent. 3.0 is a whole number, 3.5
/// is none, and a boolean is no number at all.
namespace ravik::LineValue {

std::optional<std::string> text(const nlohmann::json& line, std::string_view key);
std::optional<std::int64_t> whole(const nlohmann::json& line, std::string_view key);
std::optional<bool> boolean(const nlohmann::json& line, std::string_view key);

}  // namespace ravik::LineValue
