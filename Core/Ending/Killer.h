#pragma once

#include <string>
#include <vector>

#include "Core/Base/Task.h"
#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"
#include "Platform/Platform.h"

/// The only place that sends a terminating signal or asks an application to quit. A process is its pid and its start
/// time together: every signal follows a fresh reading of the kernel that proves both still match.
namespace ravik::Killer {

/// True if the live process in that pid started in the same second. Any thread.
bool isSame(const Proc& proc, const ProcessTable& table);

/// Every transitive child of `root`, the root excluded.
Pids descendants(Pid root, const std::vector<Proc>& procs);

/// TERM to the root and what stood below it in `procs`, up to `graceSeconds` of patience, KILL for the rest.
/// Returns the survivors in the order of `procs`; the root alone if it is not in `procs` or is another user's, in
/// which case nothing was signalled. Children of another user, and pids that were reused, are left out in silence.
/// Blocks for at least 200 ms unless nothing was signalled.
Pids killTree(Pid root, const std::vector<Proc>& procs, double graceSeconds, const Host& host, const Signals& signals);

/// Asks every running application of that name to quit and waits, never with a signal. True when all of them have
/// gone, and when there was none. `procs` is the latest reading, where its stopped processes are found, which
/// cannot hear the question. An automation copy of a browser is not asked. Main loop.
Task<bool> quitApp(std::string name, double timeoutSeconds, std::vector<Proc> procs, Host host, Platform& platform);

}  // namespace ravik::Killer
