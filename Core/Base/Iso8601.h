#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Core/Base/Time.h"

/// Moments as text, the way the log, the settings and the day files write them.
namespace ravik::Iso8601 {

/// "2026-03-01T09:30:15Z": UTC, cut to the second.
std::string format(Time time);

/// Internet date and time with a zone ("Z", "+01:00" or "+0100") and no fraction of a second; anything else is
/// absent.
std::optional<Time> parse(std::string_view text);

/// "2026-03-01", the local calendar day, in the zone of the process.
std::string localDay(Time time);

/// "09:30:15", the local time of day, in the zone of the process.
std::string localClock(Time time);

}  // namespace ravik::Iso8601
