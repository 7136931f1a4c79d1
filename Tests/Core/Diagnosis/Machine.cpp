#include "Tests/Core/Diagnosis/Machine.h"

#include "Core/Diagnosis/Classifier.h"

namespace ravik::fakes {

Host macHost() {
    Host host;
    host.kind = HostKind::mac;
    host.uid = 501;
    return host;
}

Host linuxHost() {
    Host host;
    host.kind = HostKind::linux;
    host.uid = 1000;
    return host;
}

Making::Making(Pid id, std::string_view command) {
    m_proc.id = id;
    m_proc.ppid = 50;
    m_proc.uid = 501;
    m_proc.name = std::string(Classifier::lastPathComponent(command.substr(0, command.find(' '))));
    m_proc.command = command;
    m_proc.started = now - 2 * hour;
}

SystemStats Machine::calm() {
    SystemStats stats;
    stats.memoryFreePercent = 60;
    stats.diskFreeBytes = 200 * GiB;
    stats.loadAverage = 1;
    stats.cpuCount = 8;
    return stats;
}

Snapshot Machine::snapshot() const {
    Snapshot snap;
    snap.stats = stats;
    snap.processes = procs;
    snap.breaches = Classifier::breaches(stats, limits);
    snap.groups = Classifier::groups(procs, host);
    snap.orphans = Classifier::orphans(procs, managed, limits, host, now);
    snap.hogs = Classifier::hogs(procs, snap.orphans, limits, trend.busySince, host, now);
    snap.sessions = Classifier::sessions(ProcessIndex(procs), snap.orphans, host);
    snap.takenAt = now;
    snap.sampled = true;
    return snap;
}

std::vector<Finding> Machine::diagnose() const {
    const Snapshot snap = snapshot();
    const ProcessIndex index(snap.processes);
    return Diagnoser::diagnose(snap, index, limits, ram, keep, trend, host, now);
}

std::optional<Finding> Machine::finding(std::string_view id) const {
    for (Finding& finding : diagnose()) {
        if (finding.id == id) return std::move(finding);
    }
    return std::nullopt;
}

std::vector<std::string> Machine::ids() const {
    std::vector<std::string> ids;
    for (const Finding& finding : diagnose()) ids.push_back(finding.id);
    return ids;
}

Pids pids(const std::vector<Proc>& procs) {
    Pids found;
    for (const Proc& proc : procs) found.push_back(proc.id);
    return found;
}

}  // namespace ravik::fakes
