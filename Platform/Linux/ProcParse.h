#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "Core/Base/Pids.h"

/// What the kernel's files about a process say. Pure; views point into the argument. Any thread.
namespace ravik::platform {

/// The fields of /proc/PID/stat that the program needs.
struct ProcStat {
    /// As the kernel has it: at most 15 bytes for a program, any byte among them.
    std::string_view comm;
    char state = 0;
    Pid ppid = 0;
    std::uint64_t flags = 0;
    /// Clock ticks.
    std::uint64_t userTime = 0;
    std::uint64_t systemTime = 0;
    std::uint64_t startTicks = 0;
    std::int64_t residentPages = 0;
    /// Differs from one program image to the next, since the kernel places each stack anew. 0 where it is not told.
    std::uint64_t image = 0;

    bool hasEnded() const { return state == 'Z' || state == 'X' || state == 'x'; }
    bool isKernelThread() const { return (flags & 0x0020'0000U) != 0; }
    std::uint64_t cpuNanoseconds(std::int64_t ticksPerSecond) const {
        return (userTime + systemTime) * (1'000'000'000U / static_cast<std::uint64_t>(ticksPerSecond));
    }
};

/// Absent if the text is none, or ends before the resident pages.
std::optional<ProcStat> parseProcStat(std::string_view text);

/// Pages, from /proc/PID/statm. All of it is 0 for what has no memory of its own: a zombie, a kernel thread.
struct ProcStatm {
    std::uint64_t size = 0;
    std::uint64_t resident = 0;
    std::uint64_t shared = 0;

    /// The kernel keeps the counters apart and may briefly tell more shared than resident pages.
    std::uint64_t anonymous() const { return resident > shared ? resident - shared : 0; }
    bool hasMemory() const { return size != 0; }
};
std::optional<ProcStatm> parseProcStatm(std::string_view text);

/// Bytes of the "VmSwap" line of /proc/PID/status; absent where there is none.
std::optional<std::uint64_t> parseVmSwap(std::string_view status);

/// Bytes in use of all areas in /proc/swaps.
std::uint64_t parseSwapUsed(std::string_view swaps);

}  // namespace ravik::platform
