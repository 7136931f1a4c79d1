#pragma once

#include <cstdint>
#include <limits>

namespace ravik {

/// A sum that stays at the limit instead of wrapping: figures out of a file may be anything.
inline std::int64_t saturatingAdd(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return b < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

/// The bytes of so many MB, none for less than none.
inline std::uint64_t saturatingBytes(std::int64_t mb) {
    constexpr auto most = std::numeric_limits<std::uint64_t>::max();
    if (mb <= 0) return 0;
    return static_cast<std::uint64_t>(mb) > most >> 20 ? most : static_cast<std::uint64_t>(mb) << 20;
}

/// Cut toward zero, and to the limit where it lies beyond; 0 for what is no number.
inline std::int64_t saturatingCut(double value) {
    if (value >= 0x1p63) return std::numeric_limits<std::int64_t>::max();
    if (value < -0x1p63) return std::numeric_limits<std::int64_t>::min();
    return value == value ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace ravik
