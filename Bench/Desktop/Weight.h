#pragma once

#include <optional>

#include "Core/Base/Pids.h"

namespace ravik::bench {

/// A program's memory in megabytes: its own, and its share of what it shares with others. Absent once it has gone.
std::optional<double> proportionalMegabytes(Pid pid);

/// What of it no file holds, whoever else uses the same files.
std::optional<double> anonymousMegabytes(Pid pid);

/// Percent of one core that it spends over that many seconds from now on.
std::optional<double> cpuPercent(Pid pid, double seconds);

}  // namespace ravik::bench
