#pragma once

#include <functional>
#include <optional>
#include <string>

#include "Core/Base/Pids.h"

namespace ravik::platform {

/// How the kernel schedules a process's main thread, in words: "other", "idle", "batch" …
std::string policyOf(Pid pid);
/// The class of its I/O: "none", "best effort", "idle" …
std::string ioClassOf(Pid pid);
/// The nice value of its session's autogroup; absent where the kernel has none.
std::optional<int> autogroupNice(Pid pid);
/// The letter in /proc/PID/stat; 0 if it has gone.
char stateOf(Pid pid);

/// Runs `body` in a child that has laid down its privileges, if it had any, and gives back what it returns; empty if
/// it ended otherwise.
std::string asOrdinaryUser(const std::function<std::string()>& body);

/// A child in a session of its own that sleeps. Nothing of it outlives its reaper.
Pid startSleeper();
/// A child in the caller's session and group that sleeps.
Pid startSleeperBeside();

}  // namespace ravik::platform
