#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

namespace {
constexpr std::size_t usualSessions = 2;
}

void manySessions(Pass& pass) {
    std::vector<std::string> live;
    std::uint64_t bytes = 0;
    for (const AgentSession& session : pass.snap.sessions) {
        if (!session.alive) continue;
        bytes += session.footprintBytes();
        live.push_back(fmt::format("{} pid {}: {} procs, {}", session.tool, session.id, session.members.size(),
                                   megabytes(session.footprintBytes())));
    }
    if (live.size() <= usualSessions) return;
    pass.findings.push_back({
        .id = "sessions",
        .severity = Finding::Severity::warn,
        .title = fmt::format("{} agent sessions hold {} GB", live.size(), Fmt::gib(static_cast<double>(bytes))),
        .evidence = fmt::format("{}", fmt::join(live, " · ")),
        .remedy = Advice{"End the sessions you are not using; each keeps its MCP servers and browsers resident"},
        .gainBytes = 0,
        .caution = {},
        .neverReason = {},
        .startedBy = {},
    });
}

}  // namespace ravik::causes
