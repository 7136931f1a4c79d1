#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Core/Base/Pids.h"
#include "Core/Base/Text.h"
#include "Core/Base/Time.h"

namespace ravik {

/// One process as of one scan. A process is identified by `id` and `started` together, never by its pid alone.
struct Proc {
    Pid id = 0;
    Pid ppid = 0;
    /// The owning user (Linux: the effective one).
    std::uint32_t uid = 0;
    /// Short name of the program.
    std::string name;
    /// The full command line, arguments joined by one blank; else the executable's path; else the name.
    Text command;
    /// Start time in whole seconds since 1970.
    Time started = 0;
    /// Memory that only this process holds, swapped-out part included; 0 where it could not be read.
    std::uint64_t footprintBytes = 0;
    /// Percent of one core since the previous scan; may pass 100. 0 on first sight.
    double cpuPercent = 0;
    /// Display name of the desktop application it belongs to. Absent on macOS, and where there is none.
    std::optional<Text> app;
    /// The kernel's own start stamp, finer than `started`, compared once more before a signal. 0: not known.
    std::uint64_t startTicks = 0;

    friend bool operator==(const Proc&, const Proc&) = default;
};

/// True if both records are of one process. A pid can be reused within the second that `started` tells; the kernel's
/// own stamp, where both know it, is finer.
inline bool sameLife(const Proc& a, const Proc& b) {
    return a.id == b.id && a.started == b.started &&
           (a.startTicks == 0 || b.startTicks == 0 || a.startTicks == b.startTicks);
}

}  // namespace ravik
