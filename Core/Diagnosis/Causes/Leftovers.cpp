#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Causes/Causes.h"

namespace ravik::causes {

void leftovers(Pass& pass) {
    const AgentSession* ended = pass.ended();
    if (!ended) return;
    Pids live;
    std::uint64_t bytes = 0;
    std::map<std::string, int> counts;
    for (const Proc& proc : ended->members) {
        if (pass.keeps(proc)) continue;
        live.push_back(proc.id);
        bytes += proc.footprintBytes;
        ++counts[pass.group(proc)];
    }
    if (live.empty()) return;

    // Sorted as text, so that "12× node" stands before "2× node".
    std::vector<std::string> names;
    for (const auto& [group, count] : counts) names.push_back(fmt::format("{}× {}", count, group));
    std::ranges::sort(names);
    if (names.size() > 4) names.resize(4);

    pass.findings.push_back({
        .id = "leftovers",
        .severity = Finding::Severity::warn,
        .title = fmt::format("{} processes left behind by ended agent sessions hold {}", live.size(), megabytes(bytes)),
        .evidence = fmt::format("no living parent · {}", fmt::join(names, ", ")),
        .remedy = KillTrees{live},
        .gainBytes = bytes,
        .caution = {},
        .neverReason = {},
        .startedBy = "agent sessions that have ended",
    });
}

}  // namespace ravik::causes
