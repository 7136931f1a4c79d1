#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Core/Base/Time.h"

namespace ravik::platform {

/// The "btime" of /proc/stat: whole seconds since 1970. Absent if there is no such line.
std::optional<std::int64_t> parseBootTime(std::string_view procStat);

/// Whole seconds since 1970 at which this computer started, as the clock stood when this was first called. Read
/// once: the kernel's figure moves with every step of the clock, and an identity must not. 0 if unknown.
std::int64_t bootTime();

/// The kernel's clock ticks per second.
std::int64_t ticksPerSecond();

/// The one conversion of a start stamp to Proc::started; whole seconds, cut.
Time startedAt(std::uint64_t startTicks, std::int64_t boot, std::int64_t rate);
Time startedAt(std::uint64_t startTicks);

/// What tells one process in a pid from another, out of /proc/PID/stat.
struct StartStamp {
    char state = 0;  // 'Z' and 'X': it has ended
    std::uint64_t ticks = 0;

    bool hasEnded() const { return state == 'Z' || state == 'X' || state == 'x'; }
    friend bool operator==(const StartStamp&, const StartStamp&) = default;
};
std::optional<StartStamp> parseStartStamp(std::string_view pidStat);

}  // namespace ravik::platform
