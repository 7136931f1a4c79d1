#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/CommandLine.h"
#include "Core/Diagnosis/Rx.h"

namespace ravik::Classifier {

namespace {

constexpr double secondsPerHour = 3600.0;

/// True for a program that was installed for everybody: its own path, or the script's that it interprets.
bool isInstalled(const Proc& proc, const HostTables& tables) {
    std::string_view path = proc.command;
    if (tables.judgesScripts && tables.interpreters.contains(programName(proc))) {
        const std::string_view script = interpretedScript(proc, tables);
        if (!script.empty()) path = script;
    }
    return startsWithAny(path, tables.installedPrefixes);
}

/// The engaged processes and everything above them.
PidSet engagedLines(const std::vector<Proc>& procs, const PidSet& engaged) {
    PidSet lines;
    if (engaged.empty()) return lines;
    std::unordered_map<Pid, Pid> parents;
    parents.reserve(procs.size());
    for (const Proc& proc : procs) parents.emplace(proc.id, proc.ppid);
    for (Pid pid : engaged) {
        while (lines.insert(pid).second) {
            const auto parent = parents.find(pid);
            if (parent == parents.end()) break;
            pid = parent->second;
        }
    }
    return lines;
}

}  // namespace

std::vector<Proc> orphans(const std::vector<Proc>& procs, const PidSet& managed, const Thresholds& limits,
                          const Host& host, Time now) {
    const HostTables& tables = host.tables();
    const PidSet engaged = host.isMac() ? PidSet{} : engagedLines(procs, host.engaged);
    std::vector<Proc> found;
    for (const Proc& proc : procs) {
        if (proc.uid != host.uid || !host.adopts(proc.ppid) || managed.contains(proc.id)) continue;
        if (isInstalled(proc, tables) || Rx::insideApp().matches(proc.command)) continue;
        if (!host.isMac() && (proc.app || engaged.contains(proc.id))) continue;
        if (now - proc.started >= limits.orphanMinHours * secondsPerHour) found.push_back(proc);
    }
    return found;
}

std::vector<Proc> hogs(const std::vector<Proc>& procs, const std::vector<Proc>& excluding, const Thresholds& limits,
                       const std::unordered_map<Pid, Time>& busySince, const Host& host, Time now) {
    PidSet excluded;
    for (const Proc& proc : excluding) excluded.insert(proc.id);
    std::vector<Proc> found;
    for (const Proc& proc : procs) {
        if (!(proc.cpuPercent >= limits.hogCPUPercent) || proc.uid != host.uid || excluded.contains(proc.id)) continue;
        // Unlike isMacOS(), without its exceptions.
        if (startsWithAny(proc.command, host.tables().systemPrefixes)) continue;
        const auto since = busySince.find(proc.id);
        if (since == busySince.end()) continue;
        if (now - since->second >= limits.hogMinHours * secondsPerHour) found.push_back(proc);
    }
    return found;
}

}  // namespace ravik::Classifier
