#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

void otherOrphans(Pass& pass) {
    PidSet leftovers;
    if (const AgentSession* ended = pass.ended()) {
        for (const Proc& proc : ended->members) leftovers.insert(proc.id);
    }
    for (const Proc& proc : pass.snap.orphans) {
        if (pass.tables().databases.contains(proc.name)) continue;
        if (leftovers.contains(proc.id) && !pass.keeps(proc)) continue;
        const bool busy = pass.limits.hogCPUPercent <= proc.cpuPercent;
        std::string title =
            fmt::format("{} has run {} with no terminal", pass.group(proc), Diagnoser::hours(pass.age(proc)));
        if (busy) title += fmt::format(" at {}% CPU", whole(proc.cpuPercent));
        pass.findings.push_back({
            .id = fmt::format("orphan:{}", proc.id),
            .severity = busy ? Finding::Severity::critical : Finding::Severity::warn,
            .title = std::move(title),
            .evidence = fmt::format("pid {} · {} · {}", proc.id, megabytes(proc.footprintBytes),
                                    Fmt::firstScalars(proc.command, 80)),
            .remedy = KillTrees{{proc.id}},
            .gainBytes = proc.footprintBytes,
            .caution = {},
            .neverReason = {},
            .startedBy = "a terminal that has closed",
        });
    }
}

}  // namespace ravik::causes
