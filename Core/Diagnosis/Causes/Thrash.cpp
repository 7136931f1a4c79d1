#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Wording/Fmt.h"

namespace ravik::causes {

void thrash(Pass& pass) {
    const double rate = pass.snap.stats.swapOutBytesPerSec * 0x1p-20;
    if (!(rate > pass.limits.swapOutMBps)) return;
    std::vector<std::string> top;
    for (std::size_t at = 0; at < std::min<std::size_t>(3, pass.snap.groups.size()); ++at) {
        const AppGroup& group = pass.snap.groups[at];
        top.push_back(fmt::format("{} {} GB", group.id, Fmt::gib(static_cast<double>(group.footprintBytes))));
    }
    pass.findings.push_back({
        .id = "thrash",
        .severity = Finding::Severity::critical,
        .title = fmt::format("Memory is being swapped to disk at {:.0f} MB/s", rate),
        .evidence = fmt::format("swap {} GB · top: {}", Fmt::gib(static_cast<double>(pass.snap.stats.swapUsedBytes)),
                                fmt::join(top, ", ")),
        .remedy = Advice{"Fix the causes above first; the thrash stops once resident memory drops"},
        .gainBytes = 0,
        .caution = {},
        .neverReason = {},
        .startedBy = {},
    });
}

}  // namespace ravik::causes
