#include "Core/Record/LineValue.h"

#include <cmath>
#include <limits>

#include <nlohmann/json.hpp>

namespace ravik::LineValue {

namespace {

const nlohmann::json* member(const nlohmann::json& line, std::string_view key) {
    const auto at = line.find(key);
    return at == line.end() ? nullptr : &*at;
}

}  // namespace

std::optional<std::string> text(const nlohmann::json& line, std::string_view key) {
    const auto* const value = member(line, key);
    if (!value || !value->is_string()) return {};
    return value->get<std::string>();
}

std::optional<std::int64_t> whole(const nlohmann::json& line, std::string_view key) {
    const auto* const value = member(line, key);
    if (!value || !value->is_number()) return {};
    if (value->is_number_float()) {
        const double number = value->get<double>();
        if (number != std::trunc(number) || number <= -0x1p63 || number >= 0x1p63) return {};
        return static_cast<std::int64_t>(number);
    }
    if (value->is_number_unsigned() &&
        value->get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
        return {};
    }
    return value->get<std::int64_t>();
}

std::optional<bool> boolean(const nlohmann::json& line, std::string_view key) {
    const auto* const value = member(line, key);
    if (!value || !value->is_boolean()) return {};
    return value->get<bool>();
}

}  // namespace ravik::LineValue
