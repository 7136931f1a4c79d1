#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <string_view>

#include <simdjson.h>

/// Typed reads of what is found in a file: the type asked for, or absent. A whole number may be asked for as a real
/// one; 3.0 is a whole number, 3.5 is none, and a boolean is no number at all.
namespace ravik::JsonValue {

using Element = simdjson::dom::element;

inline std::optional<double> real(const Element& value) {
    double number = 0;
    // Never a boolean: the library converts between kinds of numbers alone.
    if (value.get_double().get(number) != simdjson::SUCCESS) return {};
    return number;
}

inline std::optional<std::int64_t> whole(const Element& value) {
    std::int64_t number = 0;
    if (value.get_int64().get(number) == simdjson::SUCCESS) return number;
    double fraction = 0;
    if (!value.is_double() || value.get_double().get(fraction) != simdjson::SUCCESS) return {};
    // At the limits themselves it may stand for a number beyond them.
    if (fraction != std::trunc(fraction) || fraction <= -0x1p63 || fraction >= 0x1p63) return {};
    return static_cast<std::int64_t>(fraction);
}

inline std::optional<std::string_view> text(const Element& value) {
    std::string_view bytes;
    if (value.get_string().get(bytes) != simdjson::SUCCESS) return {};
    return bytes;
}

inline std::optional<bool> boolean(const Element& value) {
    bool is = false;
    if (value.get_bool().get(is) != simdjson::SUCCESS) return {};
    return is;
}

}  // namespace ravik::JsonValue
