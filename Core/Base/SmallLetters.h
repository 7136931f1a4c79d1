#pragma once

#include <cstdint>
#include <span>

namespace ravik::Utf8 {

/// Capitals that lie `step` apart, and how far behind each its small letter lies.
struct Capitals {
    char32_t first;
    char32_t last;
    std::uint8_t step;
    std::int32_t distance;
};

/// The capitals of Unicode 14 beyond ASCII that have one small letter, ascending and without overlap.
std::span<const Capitals> capitals();

}  // namespace ravik::Utf8
