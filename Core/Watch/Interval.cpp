#include "Core/Watch/Interval.h"

#include <charconv>
#include <cmath>

namespace ravik {

std::optional<double> parseInterval(std::string_view text) {
    double seconds = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, seconds);
    if (error != std::errc{} || rest != end || !std::isfinite(seconds) || seconds <= 0) return {};
    return seconds;
}

}  // namespace ravik
