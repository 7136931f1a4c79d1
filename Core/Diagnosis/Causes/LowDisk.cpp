#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"

namespace ravik::causes {

void lowDisk(Pass& pass) {
    const double free = static_cast<double>(pass.snap.stats.diskFreeBytes) * 0x1p-30;
    if (!(free < pass.limits.diskFreeGB)) return;
    pass.findings.push_back({
        .id = "disk",
        .severity = Finding::Severity::critical,
        .title = fmt::format("Only {:.0f} GB of disk is free — swap cannot grow", free),
        .evidence = std::string(pass.host.nouns().lowDisk),
        .remedy = ScanDisk{},
        .gainBytes = 0,
        .caution = {},
        .neverReason = {},
        .startedBy = {},
    });
}

}  // namespace ravik::causes
