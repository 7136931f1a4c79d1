#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Diagnosis/Rx.h"

namespace ravik::causes {

namespace {

constexpr double minimumAge = 3600;  // seconds; older than this

/// The browser that this process is the top of. Its helpers carry the same flag, but have a parent of the same app.
std::optional<std::string> browserFromScript(const Proc& proc, const Proc* parent, const Pass& pass) {
    if (proc.uid != pass.host.uid || !Rx::automationProfile().matches(proc.command)) return std::nullopt;
    std::string group = pass.group(proc);
    if (!pass.tables().browsers.contains(group)) return std::nullopt;
    if (parent && pass.group(*parent) == group) return std::nullopt;
    return group;
}

}  // namespace

void automationBrowsers(Pass& pass) {
    for (const Proc& root : pass.snap.processes) {
        if (!(pass.age(root) > minimumAge)) continue;
        const Proc* parent = pass.index.find(root.ppid);
        const auto group = browserFromScript(root, parent, pass);
        if (!group) continue;

        const std::vector<std::size_t>& tree = pass.judge.members(root.id);
        std::uint64_t bytes = 0;
        for (const std::size_t at : tree) bytes += pass.snap.processes[at].footprintBytes;
        const std::string starter = parent ? pass.group(*parent) : "an ended session";

        pass.findings.push_back({
            .id = fmt::format("automation:{}", root.id),
            .severity = Finding::Severity::warn,
            .title =
                fmt::format("A hidden automation {0} from {1} has run {2} — your own {0} may not open while it runs",
                            *group, starter, Diagnoser::hours(pass.age(root))),
            .evidence =
                fmt::format("pid {} · temp profile · {} processes · {}", root.id, tree.size(), megabytes(bytes)),
            .remedy = KillTrees{{root.id}},
            .gainBytes = bytes,
            .caution = {},
            .neverReason = {},
            .startedBy = starter,
        });
    }
}

}  // namespace ravik::causes
