#include "Core/Disk/ProjectScan.h"

#include <optional>

#include <fmt/format.h>

#include "Core/Disk/FolderMeasures.h"

namespace ravik::DiskScanner {

namespace {

void addStale(const Scope& scope, const std::filesystem::path& folder, int depth, std::vector<Reclaimable>& found) {
    if (depth < 1) return;
    std::optional<double> days;
    for (const Child& child : children(folder, Hidden::skip)) {
        if (scope.isCancelled()) return;
        if (!child.isFolder) continue;
        const std::filesystem::path path = folder / child.name;
        if (!scope.tables.buildDirs.contains(child.name)) {
            addStale(scope, path, depth - 1, found);
            continue;
        }
        if (!days) days = daysSince(scope, newestSourceMtime(folder, scope.tables));
        if (*days <= idleDays) continue;
        const std::uint64_t bytes = directorySize(path, scope.cancelled);
        if (bytes <= smallBytes) continue;
        found.push_back({path.string(), child.name, bytes, fmt::format("project idle {:.0f} days", *days)});
    }
}

}  // namespace

std::vector<Reclaimable> staleBuildDirs(const Scope& scope, const std::filesystem::path& folder, int depth) {
    std::vector<Reclaimable> found;
    addStale(scope, folder, depth, found);
    return found;
}

double daysSince(const Scope& scope, Time moment) {
    constexpr double daySeconds = 86'400;
    return (scope.now - moment) / daySeconds;
}

}  // namespace ravik::DiskScanner
