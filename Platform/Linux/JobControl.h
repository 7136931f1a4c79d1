#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Pids.h"

/// Process groups, sessions and terminals: who may be stopped without taking a terminal away. Any thread.
namespace ravik::platform {

/// What /proc/PID/stat says of job control.
struct JobStat {
    Pid pid = 0;
    Pid ppid = 0;
    Pid group = 0;
    Pid session = 0;
    /// Device of the controlling terminal; 0: none.
    int terminal = 0;
    /// The group in the foreground of that terminal; -1: none.
    Pid foreground = -1;
    char state = 0;
    std::uint64_t startTicks = 0;
    /// The effective user; not part of that file.
    std::uint32_t uid = 0;

    bool hasEnded() const { return state == 'Z' || state == 'X' || state == 'x'; }
    bool isStopped() const { return state == 'T' || state == 't'; }
};

/// Absent if the text is none. Pure.
std::optional<JobStat> parseJobStat(std::string_view text);

/// Every process under this root as it is now.
std::vector<JobStat> readJobs(const std::string& procRoot);

/// Those of `wanted` that may be stopped, parents first. A process group is taken whole or not at all: all of it must
/// be wanted and belong to this user, none of it stopped or traced already, be `self` or an ancestor of it, be a
/// terminal's foreground job, or be a shell that such a job came from. Pure.
std::vector<JobStat> stoppable(const std::vector<JobStat>& all, const PidSet& wanted, std::uint32_t uid, Pid self);

}  // namespace ravik::platform
