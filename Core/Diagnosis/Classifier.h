#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Core/Diagnosis/AppGroup.h"
#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/SystemStats.h"
#include "Core/Watch/Thresholds.h"

/// Which app a process belongs to, and what nobody owns any more. Pure functions, any thread.
namespace ravik::Classifier {

/// The group name of a process: its application, or its program as its command line tells it. Another user's
/// begins with "[{uid}] ".
std::string group(const Proc& proc, const Host& host);

/// Processes gathered by group name, heaviest first; equal ones as first seen.
std::vector<AppGroup> groups(const std::vector<Proc>& procs, const Host& host);

/// The AI coding tool that this process is the main process of.
std::optional<std::string> agentTool(const Proc& proc, const Host& host);

/// True for a part of the operating system. (The name is historical: on Linux it is Linux's.)
bool isMacOS(const Proc& proc, const Host& host);

/// This user's processes whose parent has gone, which no service manager runs, outside system and app locations,
/// at least `orphanMinHours` old. In input order.
std::vector<Proc> orphans(const std::vector<Proc>& procs, const PidSet& managed, const Thresholds& limits,
                          const Host& host, Time now);

/// This user's processes that have been at or above the CPU limit for `hogMinHours`. In input order.
std::vector<Proc> hogs(const std::vector<Proc>& procs, const std::vector<Proc>& excluding, const Thresholds& limits,
                       const std::unordered_map<Pid, Time>& busySince, const Host& host, Time now);

/// The running AI coding tools with everything below them; last, where there are any, what ended sessions left.
std::vector<AgentSession> sessions(const ProcessIndex& all, const std::vector<Proc>& orphans, const Host& host);

/// The limits that are passed, in fixed order, each as a short text.
std::vector<std::string> breaches(const SystemStats& stats, const Thresholds& limits);

/// What stands behind the last "/", trailing slashes ignored; "/" stays "/".
std::string_view lastPathComponent(std::string_view path);

}  // namespace ravik::Classifier
