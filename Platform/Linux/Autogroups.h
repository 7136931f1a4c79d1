#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Pids.h"
#include "Platform/Linux/LeverRecord.h"

/// The autogroups into which the kernel puts the tasks of each session, whose nice value weighs one session against
/// the others. Any thread.
namespace ravik::platform {

/// "/autogroup-44 nice 0". Absent if the text is none. Pure.
std::optional<LoweredAutogroup> parseAutogroup(std::string_view text);

/// True if the kernel heeds autogroups at all, and those of this process: it does not where a control group shares
/// out the CPU.
bool heedsAutogroup(const std::string& procRoot, const std::string& cgroupRoot, Pid pid);

/// The autogroups of these processes as they are now, if no other process is in them or in one of these sessions, and
/// each can be brought back without a privilege; else none.
std::vector<LoweredAutogroup> autogroupsOf(const std::string& procRoot, const std::string& cgroupRoot,
                                           const PidSet& pids);

/// False if one could not be lowered.
bool lowerAutogroups(const std::string& procRoot, const std::vector<LoweredAutogroup>& groups);
/// Brings back those that still are as lowerAutogroups() left them. False if one could not be.
bool raiseAutogroups(const std::string& procRoot, const std::vector<LoweredAutogroup>& groups);

}  // namespace ravik::platform
