#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

namespace {
constexpr double largeShare = 0.2;  // of the installed memory; more than this
}

void virtualMachines(Pass& pass) {
    for (const AppGroup& group : pass.snap.groups) {
        const double bytes = static_cast<double>(group.footprintBytes);
        if (!(bytes > largeShare * static_cast<double>(pass.ram)) || !isVirtualMachine(group, pass.tables())) continue;
        pass.claimed.insert(group.id);
        pass.findings.push_back({
            .id = "vm:" + group.id,
            .severity = Finding::Severity::critical,
            .title = fmt::format("{} holds {} GB — {}% of your RAM", group.id, Fmt::gib(bytes),
                                 percentOf(group.footprintBytes, pass.ram)),
            .evidence = fmt::format("{} processes · a VM keeps its allocation even when its containers are idle",
                                    group.processes.size()),
            .remedy = Advice{"Lower the VM's memory limit in its settings, or quit it when not in use"},
            .gainBytes = 0,
            .caution = {},
            .neverReason = {},
            .startedBy = {},
        });
    }
}

}  // namespace ravik::causes
