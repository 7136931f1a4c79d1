#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Core/Base/Pids.h"
#include "Core/Watch/Proc.h"

namespace ravik::platform {

/// The record of a live process as the kernel tells it now; absent if it has gone or is a zombie.
std::optional<Proc> readProc(Pid pid);
/// The records of those that live.
std::vector<Proc> readProcs(const Pids& pids);

/// Ends processes that the test started, each only while it is the same that it was when it was added.
class Reaper {
public:
    Reaper() = default;
    ~Reaper();
    Reaper(const Reaper&) = delete;
    Reaper& operator=(const Reaper&) = delete;

    /// The pid itself, for a call in one line.
    Pid add(Pid pid);
    /// Kills one now and waits until it has gone.
    void end(Pid pid);
    void endAll();

private:
    std::vector<Proc> m_procs;
};

/// Forks; the child runs `body` and exits without returning to the test. The pid of the child.
Pid forkChild(const std::function<void()>& body);

/// Starts a program of the PATH, its output to nowhere. The pid; 0 if it cannot be started.
Pid startProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment = {});

/// Waits until `done` says true, at most this long (under a sanitizer three times as long), looking every 10 ms.
bool waitUntil(const std::function<bool()>& done, double seconds = 10);

/// A pipe through which children tell their pids.
class PidPipe {
public:
    PidPipe();
    ~PidPipe();
    PidPipe(const PidPipe&) = delete;
    PidPipe& operator=(const PidPipe&) = delete;

    /// In the child.
    void tell(Pid pid) const;
    /// In the test: the next pid told; 0 after ten seconds without one.
    Pid hear() const;

private:
    int m_ends[2];
};

}  // namespace ravik::platform
