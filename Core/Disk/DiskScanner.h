#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Core/Disk/DiskScope.h"
#include "Core/Disk/FolderMeasures.h"
#include "Core/Disk/ProjectScan.h"
#include "Core/Disk/ReclaimFence.h"
#include "Core/Disk/Reclaimable.h"
#include "Platform/Platform.h"

/// Finds folders that can go: tool caches, browsers that a newer version has superseded, transcripts and build folders
/// of long-idle projects. Read-only, but for reclaim() in ReclaimFence.h, which moves one of them to the Trash.
namespace ravik::DiskScanner {

/// Steps done, of steps in all. Called on the scan's thread, in order.
using Progress = std::function<void(int done, int total)>;

/// Blocks for long; not for the main loop. Largest first. Cannot fail: what cannot be read contributes nothing.
/// Absent only if it was cancelled.
std::optional<std::vector<Reclaimable>> scan(const Scope& scope, const ProjectRoots& projectRoots,
                                             const Progress& progress);

/// The folder names, such as "chromium-1140", of which a newer version is among them; ascending.
std::vector<std::string> oldVersions(const std::vector<std::string>& names);

/// True if one of the applications is the owner, by its display name.
bool isRunning(const DiskTables::Owner& owner, std::span<const RunningApp> apps);

}  // namespace ravik::DiskScanner
