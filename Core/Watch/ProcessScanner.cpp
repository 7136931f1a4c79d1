#include "Core/Watch/ProcessScanner.h"

#include <utility>

namespace ravik {

std::vector<Proc> ProcessScanner::scan() {
    m_table.list(m_pids);
    const Time now = m_clock.now();

    std::vector<Proc> procs;
    procs.reserve(m_pids.size());
    for (const Pid pid : m_pids) {
        if (pid < 1 || !m_table.read(pid, m_reading)) continue;
        Proc& proc = procs.emplace_back();
        proc.id = pid;
        proc.ppid = m_reading.ppid;
        proc.uid = m_reading.uid;
        proc.name = m_reading.name;
        proc.command = m_reading.arguments ? *m_reading.arguments
                       : m_reading.path    ? *m_reading.path
                                           : Text(m_reading.name);
        proc.started = m_reading.started;
        proc.footprintBytes = m_reading.footprintBytes.value_or(0);
        proc.cpuPercent = cpuPercent(pid, m_reading.cpuTicks.value_or(0), now);
        proc.app = m_reading.app;
        proc.startTicks = m_reading.startTicks;
    }
    prune(procs);
    return procs;
}

double ProcessScanner::cpuPercent(Pid pid, std::uint64_t ticks, Time now) {
    const auto [entry, isNew] = m_lastCPU.try_emplace(pid);
    const Used before = std::exchange(entry->second, Used{ticks, now});
    if (isNew || !(now > before.at)) return 0;
    // Wraps on purpose: a pid whose ticks went down shows one absurd figure, not a plausible wrong one.
    const std::uint64_t used = ticks - before.ticks;
    return m_table.nanosPerTick() * static_cast<double>(used) / ((now - before.at) * 1e9) * 100;
}

void ProcessScanner::prune(const std::vector<Proc>& procs) {
    // Every listed process has its entry, so equal sizes leave nothing to drop.
    if (m_lastCPU.size() == procs.size()) return;
    PidSet present;
    present.reserve(procs.size());
    for (const Proc& proc : procs) present.insert(proc.id);
    std::erase_if(m_lastCPU, [&](const auto& entry) { return !present.contains(entry.first); });
}

}  // namespace ravik
