#include "Platform/Linux/LinuxLevers.h"

#include <algorithm>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/JobControl.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

constexpr const char* pauseWord = "pause";
constexpr const char* demoteWord = "demote";

std::string bootId(const std::string& procRoot) {
    std::string id = readFile(procRoot + "/sys/kernel/random/boot_id").value_or("");
    while (!id.empty() && id.back() == '\n') id.pop_back();
    return id;
}

Proc asProc(const HeldProcess& process) {
    Proc proc;
    proc.id = process.pid;
    proc.startTicks = process.startTicks;
    proc.started = startedAt(process.startTicks);
    return proc;
}

}  // namespace

LinuxLevers::LinuxLevers(const Signals& signals, LeverOptions options)
    : m_signals(signals),
      m_options(std::move(options)),
      m_scene{m_options.procRoot, m_options.cgroupRoot, m_options.uid},
      m_journal(m_options.folder, m_options.uid, bootId(m_options.procRoot)),
      m_manager(m_options.bus) {}

LeverRecord LinuxLevers::begin(const std::string& action, const std::string& group) const {
    LeverRecord record;
    record.action = action;
    record.target = group;
    record.at = m_options.now();
    return record;
}

std::vector<Proc> LinuxLevers::stillSame(const std::vector<Proc>& targets) const {
    std::vector<Proc> same;
    for (const Proc& target : targets) {
        if (target.id != m_options.self && target.uid == m_options.uid && m_signals.verify(target)) {
            same.push_back(target);
        }
    }
    return same;
}

Pids LinuxLevers::pause(const std::string& group, const std::vector<Proc>& targets) {
    std::vector<Proc> same = stillSame(targets);
    PidSet wanted;
    for (const Proc& target : same) wanted.insert(target.id);

    LeverRecord record = begin(pauseWord, group);
    std::vector<VerifiedProcess> held;
    for (const JobStat& job : stoppable(readJobs(m_options.procRoot), wanted, m_options.uid, m_options.self)) {
        const auto target = std::ranges::find(same, job.pid, &Proc::id);
        auto process = m_signals.verify(*target);
        if (!process) continue;
        held.push_back(std::move(*process));
        record.processes.push_back({job.pid, job.startTicks, {}});
    }
    if (record.processes.empty()) return {};
    const auto id = m_journal.add(record);
    if (!id) return {};
    record.id = *id;

    std::vector<HeldProcess> stopped;
    for (std::size_t at = 0; at < held.size(); ++at) {
        if (m_signals.send(held[at], Signal::stop)) stopped.push_back(record.processes[at]);
    }
    if (stopped.empty()) {
        m_journal.remove(record.id);
    } else if (stopped.size() < record.processes.size()) {
        record.processes = stopped;
        m_journal.update(record);
    }
    Pids pids;
    for (const HeldProcess& process : stopped) pids.push_back(process.pid);
    return pids;
}

LinuxLevers::Undone LinuxLevers::resume(const LeverRecord& record) const {
    Undone undone;
    // Children first: a parent that wakes up may look after them at once.
    for (auto process = record.processes.rbegin(); process != record.processes.rend(); ++process) {
        const auto same = m_signals.verify(asProc(*process));
        if (!same) continue;
        if (m_signals.send(*same, Signal::resume)) {
            undone.pids.push_back(process->pid);
        } else if (m_signals.alive(*same)) {
            undone.whole = false;
        }
    }
    std::ranges::reverse(undone.pids);
    return undone;
}

LinuxLevers::Undone LinuxLevers::undo(const LeverRecord& record) {
    Undone undone = record.action == pauseWord ? resume(record) : raise(record);
    // What could not be undone now is for the next start to try again.
    if (undone.whole) m_journal.remove(record.id);
    return undone;
}

void LinuxLevers::release(const char* action, const Pids& pids) {
    const std::vector<LeverRecord> records = m_journal.records();
    const auto undoAll = [&](auto meant) {
        bool any = false;
        for (const LeverRecord& record : records) {
            if (record.action != action || !meant(record.pids())) continue;
            undo(record);
            any = true;
        }
        return any;
    };
    const auto overlaps = [&](const Pids& held) {
        return std::ranges::any_of(held, [&](Pid pid) { return std::ranges::find(pids, pid) != pids.end(); });
    };
    if (!undoAll([&](const Pids& held) { return held == pids; })) undoAll(overlaps);
}

void LinuxLevers::resume(const Pids& pids) { release(pauseWord, pids); }

void LinuxLevers::restore(const Pids& pids) { release(demoteWord, pids); }

std::vector<Levers::Leftover> LinuxLevers::releaseLeftovers() {
    std::vector<Leftover> released;
    for (const LeverRecord& record : m_journal.earlier()) {
        const Undone undone = undo(record);
        if (!undone.pids.empty()) released.push_back({record.action, record.target, undone.pids, record.at});
    }
    return released;
}

}  // namespace ravik::platform
