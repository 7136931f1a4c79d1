#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Pids.h"
#include "Platform/Linux/LeverRecord.h"

/// The scheduling policy and the I/O class of threads. A thread is known by its tid and its start ticks, which are
/// compared right before each change. Any thread.
namespace ravik::platform {

/// "Max nice priority" of /proc/PID/limits, the soft one; unlimited is the largest number. Absent if it is not told.
std::optional<std::uint64_t> parseNiceLimit(std::string_view limits);

/// True if a thread of this nice value may leave SCHED_IDLE again under that limit.
constexpr bool mayLeaveIdlePolicy(int nice, std::uint64_t limit) {
    return nice >= -20 && nice <= 19 && static_cast<std::uint64_t>(20 - nice) <= limit;
}

/// All threads of a process as they are now, the main one first; empty if it has gone.
std::vector<LoweredThread> readThreads(const std::string& procRoot, Pid pid);

/// True if every thread can be brought back from the idle I/O class.
bool mayLeaveIdleIO(const std::vector<LoweredThread>& threads);
/// True if every thread of every process is an ordinary one that may be brought back from SCHED_IDLE.
bool mayLeaveIdlePolicy(const std::string& procRoot, const std::vector<HeldProcess>& processes);

/// Lowers all threads of a process, those that come into being meanwhile as well. Nothing, if another has its pid by
/// now. False if a thread could not be lowered.
bool lowerThreads(const std::string& procRoot, const HeldProcess& process, bool policy);

/// Gives threads of a process that still are as lowerThreads() left them what they had before; one that was not there
/// then gets what the main thread had. What somebody has changed since stays as it is. False if one could not be
/// brought back.
bool raiseThreads(const std::string& procRoot, Pid pid, const std::vector<LoweredThread>& before, bool policy);

}  // namespace ravik::platform
