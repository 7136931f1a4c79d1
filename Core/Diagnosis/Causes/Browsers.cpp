#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Diagnosis/Rx.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

namespace {

constexpr std::uint64_t largeBytes = 4ull << 30;  // more than this
constexpr double longTime = 43200;                // seconds; more than this

/// The process that has been there longest of those that no script started; null if there is none.
const Proc* oldestHuman(const AppGroup& group) {
    const Proc* oldest = nullptr;
    for (const Proc& proc : group.processes) {
        if (Rx::automationProfile().matches(proc.command)) continue;
        if (!oldest || proc.started < oldest->started) oldest = &proc;
    }
    return oldest;
}

}  // namespace

void browsers(Pass& pass) {
    for (const AppGroup& group : pass.snap.groups) {
        if (group.footprintBytes <= largeBytes || !pass.tables().browsers.contains(group.id)) continue;
        const Proc* oldest = oldestHuman(group);
        if (!oldest || !(pass.age(*oldest) > longTime)) continue;
        pass.claimed.insert(group.id);
        pass.findings.push_back({
            .id = "browser:" + group.id,
            .severity = Finding::Severity::warn,
            .title = fmt::format("{} has been open {} and holds {} GB", group.id, Diagnoser::hours(pass.age(*oldest)),
                                 Fmt::gib(static_cast<double>(group.footprintBytes))),
            .evidence =
                fmt::format("{} processes · long-lived tabs and extensions accumulate memory", group.processes.size()),
            .remedy = QuitApp{group.id},
            // Quitting gives back about half.
            .gainBytes = group.footprintBytes / 2,
            .caution = {},
            .neverReason = {},
            .startedBy = {},
        });
    }
}

}  // namespace ravik::causes
