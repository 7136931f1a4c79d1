#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

void databaseOrphans(Pass& pass) {
    for (const Proc& proc : pass.snap.orphans) {
        if (!pass.tables().databases.contains(proc.name)) continue;
        pass.findings.push_back({
            .id = fmt::format("db:{}", proc.id),
            .severity = Finding::Severity::info,
            .title = fmt::format("{} has run {} with no terminal", proc.name, Diagnoser::hours(pass.age(proc))),
            .evidence = fmt::format("pid {} · {} · {}", proc.id, megabytes(proc.footprintBytes),
                                    Fmt::firstScalars(proc.command, 90)),
            .remedy = Advice{Diagnoser::stopCommand(proc, pass.host)},
            .gainBytes = 0,
            .caution = {},
            .neverReason = "a database server: force-killing one means crash recovery",
            .startedBy = "a terminal that has closed",
        });
    }
}

}  // namespace ravik::causes
