#pragma once

#include <optional>
#include <string_view>

namespace ravik {

/// The seconds between two ticks as a user has written them: any finite number above 0, without a range. Absent for
/// everything else, "nan", "inf" and "-5" among it.
std::optional<double> parseInterval(std::string_view text);

}  // namespace ravik
