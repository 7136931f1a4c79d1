#include "Platform/Linux/ThreadPriority.h"

#include <linux/ioprio.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <limits>

#include "Platform/Linux/JobControl.h"
#include "Platform/Linux/ProcFolder.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

constexpr int idleIO = IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0);

int ioClass(int priority) { return IOPRIO_PRIO_CLASS(priority); }
int plain(int policy) { return policy & ~SCHED_RESET_ON_FORK; }

bool setPolicy(Pid tid, int policy) {
    sched_param none{};
    return sched_setscheduler(tid, policy, &none) == 0 || errno == ESRCH;
}

bool setIO(Pid tid, int priority) {
    return syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, tid, priority) == 0 || errno == ESRCH;
}

/// Absent if it has gone meanwhile.
std::optional<LoweredThread> readThread(const std::string& tasks, Pid tid) {
    const auto text = readFile(tasks + std::to_string(tid) + "/stat");
    const auto stat = text ? parseJobStat(*text) : std::nullopt;
    if (!stat || stat->hasEnded()) return {};
    LoweredThread thread{tid, stat->startTicks, sched_getscheduler(tid),
                         static_cast<int>(syscall(SYS_ioprio_get, IOPRIO_WHO_PROCESS, tid))};
    if (thread.policy < 0 || thread.ioPriority < 0) return {};
    return thread;
}

std::string tasksOf(const std::string& procRoot, Pid pid) { return procRoot + "/" + std::to_string(pid) + "/task/"; }

bool isLowered(const LoweredThread& thread, bool policy) {
    return ioClass(thread.ioPriority) == IOPRIO_CLASS_IDLE && (!policy || plain(thread.policy) == SCHED_IDLE);
}

bool lower(const LoweredThread& thread, bool policy) {
    // The flag stays: taking it away needs a privilege.
    if (policy && !setPolicy(thread.tid, SCHED_IDLE | (thread.policy & SCHED_RESET_ON_FORK))) return false;
    return setIO(thread.tid, idleIO);
}

bool raise(const LoweredThread& now, const LoweredThread& before, bool policy) {
    bool done = true;
    if (policy && plain(now.policy) == SCHED_IDLE && plain(before.policy) != SCHED_IDLE) {
        done = setPolicy(now.tid, plain(before.policy) | (now.policy & SCHED_RESET_ON_FORK));
    }
    if (now.ioPriority == idleIO && before.ioPriority != idleIO) done = setIO(now.tid, before.ioPriority) && done;
    return done;
}

}  // namespace

std::optional<std::uint64_t> parseNiceLimit(std::string_view limits) {
    constexpr std::string_view name = "Max nice priority";
    const std::size_t line = limits.find(name);
    if (line == std::string_view::npos) return {};
    std::string_view rest = limits.substr(line + name.size());
    rest = rest.substr(0, rest.find('\n'));
    const std::size_t begin = rest.find_first_not_of(' ');
    if (begin == std::string_view::npos) return {};
    rest.remove_prefix(begin);
    if (rest.starts_with("unlimited")) return std::numeric_limits<std::uint64_t>::max();
    std::uint64_t limit = 0;
    if (std::from_chars(rest.data(), rest.data() + rest.size(), limit).ec != std::errc{}) return {};
    return limit;
}

std::vector<LoweredThread> readThreads(const std::string& procRoot, Pid pid) {
    const std::string tasks = tasksOf(procRoot, pid);
    Pids tids;
    ReadBuffer buffer;
    ProcFolder(tasks).list(tids, buffer);
    std::ranges::stable_partition(tids, [&](Pid tid) { return tid == pid; });
    std::vector<LoweredThread> threads;
    for (const Pid tid : tids) {
        if (const auto thread = readThread(tasks, tid)) threads.push_back(*thread);
    }
    return threads;
}

bool mayLeaveIdleIO(const std::vector<LoweredThread>& threads) {
    return std::ranges::all_of(threads, [](const LoweredThread& thread) {
        return ioClass(thread.ioPriority) != IOPRIO_CLASS_RT;  // which only a privilege gives back
    });
}

bool mayLeaveIdlePolicy(const std::string& procRoot, const std::vector<HeldProcess>& processes) {
    return std::ranges::all_of(processes, [&](const HeldProcess& process) {
        const auto text = readFile(procRoot + "/" + std::to_string(process.pid) + "/limits");
        const auto limit = text ? parseNiceLimit(*text) : std::nullopt;
        if (!limit) return false;
        return std::ranges::all_of(process.threads, [&](const LoweredThread& thread) {
            errno = 0;
            const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(thread.tid));
            const int policy = plain(thread.policy);
            return errno == 0 && mayLeaveIdlePolicy(nice, *limit) &&
                   (policy == SCHED_OTHER || policy == SCHED_BATCH || policy == SCHED_IDLE);
        });
    });
}

bool lowerThreads(const std::string& procRoot, const HeldProcess& process, bool policy) {
    // A thread made before its maker was lowered is found on the next round.
    constexpr int rounds = 8;
    for (int round = 0; round < rounds; ++round) {
        bool settled = true;
        for (const LoweredThread& thread : readThreads(procRoot, process.pid)) {
            if (thread.tid == process.pid && thread.startTicks != process.startTicks) return true;
            if (isLowered(thread, policy)) continue;
            if (!lower(thread, policy)) return false;
            settled = false;
        }
        if (settled) return true;
    }
    return false;
}

bool raiseThreads(const std::string& procRoot, Pid pid, const std::vector<LoweredThread>& before, bool policy) {
    if (before.empty()) return true;
    const auto known = [&](const LoweredThread& thread) {
        return std::ranges::find_if(before, [&](const LoweredThread& one) {
            return one.tid == thread.tid && one.startTicks == thread.startTicks;
        });
    };
    bool done = true;
    // What is not raised yet may make threads of its own kind meanwhile; those are found on the second round.
    for (int round = 0; round < 2; ++round) {
        for (const LoweredThread& thread : readThreads(procRoot, pid)) {
            const auto was = known(thread);
            done = raise(thread, was == before.end() ? before.front() : *was, policy) && done;
        }
    }
    return done;
}

}  // namespace ravik::platform
