#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

namespace {

PidSet virtualMachinePids(const Pass& pass) {
    PidSet pids;
    for (const AppGroup& group : pass.snap.groups) {
        if (!isVirtualMachine(group, pass.tables())) continue;
        for (const Proc& proc : group.processes) pids.insert(proc.id);
    }
    return pids;
}

}  // namespace

void hogs(Pass& pass) {
    if (pass.snap.hogs.empty()) return;
    const PidSet inMachines = virtualMachinePids(pass);
    for (const Proc& proc : pass.snap.hogs) {
        if (inMachines.contains(proc.id) || pass.tables().indexers.contains(proc.name)) continue;
        const auto since = pass.trend.busySince.find(proc.id);
        const double busy = since == pass.trend.busySince.end() ? 0 : pass.snap.takenAt - since->second;
        pass.findings.push_back({
            .id = fmt::format("hog:{}", proc.id),
            .severity = Finding::Severity::critical,
            .title = fmt::format("{} has been above {}% CPU for {} ({}% now)", pass.group(proc),
                                 whole(pass.limits.hogCPUPercent), Diagnoser::hours(busy), whole(proc.cpuPercent)),
            .evidence = fmt::format("pid {} · {} · {}", proc.id, megabytes(proc.footprintBytes),
                                    Fmt::firstScalars(proc.command, 80)),
            .remedy = KillTrees{{proc.id}},
            .gainBytes = 0,
            .caution = {},
            .neverReason = {},
            .startedBy = {},
        });
    }
}

}  // namespace ravik::causes
