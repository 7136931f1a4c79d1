#pragma once

#include <filesystem>
#include <vector>

#include "Core/Disk/DiskScope.h"
#include "Core/Disk/Reclaimable.h"

namespace ravik::DiskScanner {

/// Build folders larger than 20 MiB of projects idle for more than 30 days. Looks `depth` levels below the folder,
/// never into a build folder or a hidden one. A folder that cannot be listed gives none.
std::vector<Reclaimable> staleBuildDirs(const Scope& scope, const std::filesystem::path& folder, int depth);

/// Days between the moment and the scope's now.
double daysSince(const Scope& scope, Time moment);

}  // namespace ravik::DiskScanner
