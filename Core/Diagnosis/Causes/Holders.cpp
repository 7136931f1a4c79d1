#include <algorithm>
#include <cstdint>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Diagnosis/Rx.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

namespace {

constexpr std::size_t groupsLookedAt = 8;
constexpr std::int64_t earlyPoints = 5;  // speaks up before the memory limit itself is breached

bool memoryIsShort(const Pass& pass) {
    const SystemStats& stats = pass.snap.stats;
    return stats.swapOutBytesPerSec * 0x1p-20 > pass.limits.swapOutMBps ||
           stats.memoryFreePercent < pass.limits.memoryFreePct + earlyPoints;
}

/// Where the group stood before it grew by much; absent if it did not.
std::optional<Trend::Low> growth(const Pass& pass, const AppGroup& group) {
    const auto low = pass.trend.low(group.id);
    if (!low || group.footprintBytes <= low->bytes) return std::nullopt;
    const std::uint64_t much = std::max<std::uint64_t>(1ull << 30, pass.ram >> 3);
    return group.footprintBytes - low->bytes >= much ? low : std::nullopt;
}

std::string growthPhrase(const Pass& pass, const AppGroup& group, const Trend::Low& low) {
    // From 100 MiB on it is worth telling from where.
    const bool hadSome = low.bytes >> 22 > 24;
    const std::string from = hadSome ? fmt::format("from {} GB ", Fmt::gbByThousands(low.bytes)) : "";
    return fmt::format("{} grew {}to {} GB in {} min", group.id, from, Fmt::gbByThousands(group.footprintBytes),
                       whole(std::max((pass.snap.takenAt - low.at) / 60, 1.0)));
}

/// The members whose parent is not a member.
Pids rootsOf(const AppGroup& group, const PidSet& members) {
    Pids roots;
    for (const Proc& proc : group.processes) {
        if (!members.contains(proc.ppid)) roots.push_back(proc.id);
    }
    return roots;
}

/// How many live sessions were launched from the group without being part of it.
std::size_t sessionsBelow(Pass& pass, const Pids& roots, const PidSet& members) {
    std::size_t count = 0;
    const PidSet below = pass.judge.below(roots);
    for (const AgentSession& session : pass.snap.sessions) {
        count += session.alive && below.contains(session.id) && !members.contains(session.id);
    }
    return count;
}

bool isApp(const AppGroup& group, const Host& host) {
    return std::ranges::any_of(group.processes, [&](const Proc& proc) {
        return (!host.isMac() && proc.app) || Rx::appBundle().matches(proc.command);
    });
}

Finding restartExtensions(const Pass& pass, const AppGroup& group, const std::optional<Trend::Low>& grew,
                          const ExtensionHost& host) {
    std::vector<std::string> list;
    for (const Proc* proc : biggest(host.tree)) {
        list.push_back(fmt::format("{} {}", proc->name, megabytes(proc->footprintBytes)));
    }
    const std::string held = Fmt::gbByThousands(host.bytes);
    return {
        .id = "holder:" + group.id,
        .severity = grew ? Finding::Severity::critical : Finding::Severity::warn,
        .title = grew ? growthPhrase(pass, group, *grew)
                      : fmt::format("{} holds {} GB — its extensions hold {} GB of it", group.id,
                                    Fmt::gbByThousands(group.footprintBytes), held),
        .evidence = fmt::format("extension host (pid {}) holds {} GB of it · {} restarts it; windows and terminals "
                                "stay · biggest: {}",
                                host.root->id, held, group.id, fmt::join(list, ", ")),
        .remedy = KillTrees{{host.root->id}},
        .gainBytes = host.bytes,
        .caution = fmt::format("{}'s extensions restart: a debug session or a task running in them stops", group.id),
        .neverReason = {},
        .startedBy = {},
    };
}

std::string evidenceOf(const AppGroup& group, const std::optional<std::string>& share) {
    std::vector<const Proc*> members;
    for (const Proc& proc : group.processes) members.push_back(&proc);
    std::vector<std::string> top;
    for (const Proc* proc : biggest(std::move(members))) {
        top.push_back(fmt::format("{} (pid {}) {}", proc->name, proc->id, megabytes(proc->footprintBytes)));
    }
    std::vector<std::string> parts;
    if (share) parts.push_back(*share);
    parts.push_back(Fmt::plural(group.processes.size(), "process"));
    if (!top.empty()) parts.push_back(fmt::format("biggest: {}", fmt::join(top, ", ")));
    return fmt::format("{}", fmt::join(parts, " · "));
}

Finding quitOrEnd(Pass& pass, const AppGroup& group, const std::optional<Trend::Low>& grew) {
    PidSet members;
    for (const Proc& proc : group.processes) members.insert(proc.id);
    const Pids roots = rootsOf(group, members);
    const bool app = isApp(group, pass.host);
    const std::size_t sessions = app ? sessionsBelow(pass, roots, members) : 0;
    const std::string share = group.footprintBytes >= pass.ram
                                  ? "more than all your RAM"
                                  : fmt::format("{}% of your RAM", percentOf(group.footprintBytes, pass.ram));
    Finding finding{
        .id = "holder:" + group.id,
        .severity = grew ? Finding::Severity::critical : Finding::Severity::warn,
        .title = grew ? growthPhrase(pass, group, *grew)
                      : fmt::format("{} holds {} GB — {}", group.id, Fmt::gbByThousands(group.footprintBytes), share),
        // With growth in the title, the share has its place here.
        .evidence = evidenceOf(group, grew ? std::optional(share) : std::nullopt),
        .remedy = app ? Remedy(QuitApp{group.id}) : Remedy(KillTrees{roots}),
        .gainBytes = group.footprintBytes,
        .caution = {},
        .neverReason = {},
        .startedBy = {},
    };
    if (sessions > 0) {
        finding.caution = fmt::format("{} started from it would end with it", Fmt::plural(sessions, "agent session"));
    }
    return finding;
}

PidSet agentPids(const Snapshot& snap) {
    PidSet pids;
    for (const AgentSession& session : snap.sessions) {
        if (!session.alive) continue;
        for (const Proc& proc : session.members) pids.insert(proc.id);
    }
    return pids;
}

}  // namespace

void holders(Pass& pass) {
    if (!memoryIsShort(pass)) return;
    std::optional<PidSet> agents;
    for (std::size_t at = 0; at < std::min(groupsLookedAt, pass.snap.groups.size()); ++at) {
        const AppGroup& group = pass.snap.groups[at];
        if (group.id.starts_with('[') || pass.claimed.contains(group.id)) continue;
        const auto grew = growth(pass, group);
        if (!grew && group.footprintBytes < pass.ram >> 2) continue;
        if (!agents) agents = agentPids(pass.snap);
        if (const auto host = extensionHost(pass, group, *agents)) {
            pass.findings.push_back(restartExtensions(pass, group, grew, *host));
        } else {
            pass.findings.push_back(quitOrEnd(pass, group, grew));
        }
    }
}

}  // namespace ravik::causes
