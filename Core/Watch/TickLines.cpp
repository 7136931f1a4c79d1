#include "Core/Watch/TickLines.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "Core/Wording/Fmt.h"

namespace ravik::TickLines {

using nlohmann::json;

namespace {

constexpr std::size_t topGroups = 5;
constexpr std::size_t loggedEvidence = 160;

double gibibytes(std::uint64_t bytes) { return static_cast<double>(bytes) * 0x1p-30; }

}  // namespace

json tick(const Snapshot& snapshot) {
    const SystemStats& stats = snapshot.stats;
    json top = json::array();
    for (std::size_t at = 0; at < std::min(topGroups, snapshot.groups.size()); ++at) {
        const AppGroup& group = snapshot.groups[at];
        top.push_back(json::array({group.id, Fmt::wholeMB(group.footprintBytes)}));
    }
    return {
        {"swapGB", gibibytes(stats.swapUsedBytes)},
        {"swapOutMBps", stats.swapOutBytesPerSec * 0x1p-20},
        {"memFreePct", stats.memoryFreePercent},
        {"diskFreeGB", gibibytes(stats.diskFreeBytes)},
        {"load", stats.loadAverage},
        {"gpu", stats.gpuPercent},
        {"procs", snapshot.processes.size()},
        {"orphans", snapshot.orphans.size()},
        {"hogs", snapshot.hogs.size()},
        {"sessions", snapshot.sessions.size()},
        {"breaches", snapshot.breaches},
        {"top", std::move(top)},
    };
}

json diagnosis(const Snapshot& snapshot) {
    json ids = json::array();
    for (const Finding& finding : snapshot.findings) ids.push_back(finding.id);
    return {{"findings", std::move(ids)}, {"reclaimableMB", Fmt::wholeMB(snapshot.reclaimableBytes())}};
}

json finding(const Finding& finding) {
    return {
        {"id", finding.id},
        {"severity", static_cast<int>(finding.severity)},
        {"title", finding.title},
        {"evidence", Fmt::firstScalars(finding.evidence, loggedEvidence)},
        {"gainMB", Fmt::wholeMB(finding.gainBytes)},
    };
}

std::optional<json> self(const Snapshot& snapshot, Pid pid) {
    const auto own = std::ranges::find(snapshot.processes, pid, &Proc::id);
    if (own == snapshot.processes.end()) return {};
    return json{{"mb", Fmt::wholeMB(own->footprintBytes)}, {"cpu", own->cpuPercent}};
}

}  // namespace ravik::TickLines
