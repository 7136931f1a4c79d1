#pragma once

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

namespace ravik::cli {

/// A finite number in its usual form, nothing before or behind it.
inline std::optional<double> parseNumber(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) return {};
    return value;
}

}  // namespace ravik::cli
