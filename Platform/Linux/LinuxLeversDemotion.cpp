// Demoting: which rung applies, and the way there and back.
#include <algorithm>
#include <ctime>
#include <unordered_map>

#include "Platform/Linux/Autogroups.h"
#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/JobControl.h"
#include "Platform/Linux/LinuxLevers.h"
#include "Platform/Linux/ThreadPriority.h"

namespace ravik::platform {

namespace {

constexpr const char* demoteWord = "demote";

/// What a process started now would get for its start ticks.
std::uint64_t ticksNow() {
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const auto rate = static_cast<std::uint64_t>(ticksPerSecond());
    return static_cast<std::uint64_t>(now.tv_sec) * rate +
           static_cast<std::uint64_t>(now.tv_nsec) * rate / 1'000'000'000;
}

/// Whose priority to give back to whom: every process that is still the one recorded, and what it has started since,
/// which inherited the lowered one.
std::unordered_map<Pid, const HeldProcess*> heirs(const std::vector<JobStat>& jobs, const LeverRecord& record) {
    std::unordered_map<Pid, const HeldProcess*> found;
    for (const JobStat& job : jobs) {
        const auto held = std::ranges::find(record.processes, job.pid, &HeldProcess::pid);
        if (!job.hasEnded() && held != record.processes.end() && held->startTicks == job.startTicks) {
            found.emplace(job.pid, &*held);
        }
    }
    for (bool grown = true; grown;) {
        grown = false;
        for (const JobStat& job : jobs) {
            const auto parent = found.find(job.ppid);
            if (job.hasEnded() || parent == found.end() || job.startTicks < record.ticks) continue;
            grown = found.emplace(job.pid, parent->second).second || grown;
        }
    }
    return found;
}

}  // namespace

Pids LinuxLevers::demote(const std::string& group, const std::vector<Proc>& targets) {
    auto record = planDemotion(group, targets);
    if (!record) return {};
    const auto id = m_journal.add(*record);
    if (!id) return {};
    record->id = *id;
    if (lower(*record)) return record->pids();
    undo(*record);
    return {};
}

std::optional<LeverRecord> LinuxLevers::planDemotion(const std::string& group, const std::vector<Proc>& targets) {
    const std::vector<Proc> same = stillSame(targets);
    LeverRecord record = begin(demoteWord, group);
    record.ticks = ticksNow();
    PidSet pids;
    for (const Proc& target : same) {
        HeldProcess process{target.id, target.startTicks, readThreads(m_options.procRoot, target.id)};
        if (process.threads.empty()) continue;  // it has just ended
        if (!mayLeaveIdleIO(process.threads)) return {};
        pids.insert(target.id);
        record.processes.push_back(std::move(process));
    }
    if (pids.empty()) return {};

    record.units = unitsOf(m_scene, m_manager, pids);
    if (record.units.empty()) record.autogroups = autogroupsOf(m_options.procRoot, m_options.cgroupRoot, pids);
    if (record.units.empty() && record.autogroups.empty()) {
        record.idlePolicy = mayLeaveIdlePolicy(m_options.procRoot, record.processes);
        if (!record.idlePolicy) return {};
    }
    return record;
}

bool LinuxLevers::lower(const LeverRecord& record) {
    if (!lowerUnits(m_scene, m_manager, record.units)) return false;
    if (!lowerAutogroups(m_options.procRoot, record.autogroups)) return false;
    return std::ranges::all_of(record.processes, [&](const HeldProcess& process) {
        return lowerThreads(m_options.procRoot, process, record.idlePolicy);
    });
}

LinuxLevers::Undone LinuxLevers::raise(const LeverRecord& record) {
    Undone undone;
    undone.whole = raiseUnits(m_scene, m_manager, record.units);
    undone.whole = raiseAutogroups(m_options.procRoot, record.autogroups) && undone.whole;
    for (const auto& [pid, held] : heirs(readJobs(m_options.procRoot), record)) {
        undone.whole = raiseThreads(m_options.procRoot, pid, held->threads, record.idlePolicy) && undone.whole;
        if (pid == held->pid) undone.pids.push_back(pid);
    }
    std::ranges::sort(undone.pids);
    return undone;
}

}  // namespace ravik::platform
