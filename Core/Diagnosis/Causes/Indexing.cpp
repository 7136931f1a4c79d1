#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Causes/Causes.h"

namespace ravik::causes {

namespace {
constexpr double busyPercent = 30;  // more than this
}

void indexing(Pass& pass) {
    std::vector<std::string> busy;
    for (const Proc& proc : pass.snap.processes) {
        if (!(proc.cpuPercent > busyPercent) || !pass.tables().indexers.contains(proc.name)) continue;
        busy.push_back(fmt::format("{} {}%", proc.name, whole(proc.cpuPercent)));
    }
    if (busy.empty()) return;
    pass.findings.push_back({
        .id = "indexing",
        .severity = Finding::Severity::info,
        .title = fmt::format("{} is busy ({})", pass.host.nouns().indexingTitle, fmt::join(busy, ", ")),
        .evidence = "expected after large deletes or updates; it settles on its own",
        .remedy = Advice{"Wait; it stops by itself"},
        .gainBytes = 0,
        .caution = {},
        .neverReason = {},
        .startedBy = {},
    });
}

}  // namespace ravik::causes
