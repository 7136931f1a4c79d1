#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "Core/Disk/DiskScope.h"
#include "Core/Disk/Reclaimable.h"
#include "Platform/Platform.h"

/// Only what a scan could have found can go, however its path got here.
namespace ravik::DiskScanner {

struct OutsideKnownRoots {
    std::string path;  // as asked
};
struct OwnerRunning {
    std::string app;
};
/// Something is mounted in the folder, and would go with it.
struct HoldsMount {
    std::string path;
};
/// The Trash would not have it.
struct TrashRefused {
    std::string sentence;
};
using ReclaimError = std::variant<OutsideKnownRoots, OwnerRunning, HoldsMount, TrashRefused>;

/// One or two sentences for the user.
std::string description(const ReclaimError& error);

/// The path with links followed and without ".", ".." and a trailing slash; what does not exist keeps its name.
/// Absent if it is not absolute, holds a zero byte, or cannot be followed to its end.
std::optional<std::filesystem::path> resolved(const std::filesystem::path& path);

/// The fence. `path` comes from resolved(). Compares bytes: "Node_Modules" is no build folder.
bool isReclaimable(const std::filesystem::path& path, const DiskTables& tables, const std::filesystem::path& home,
                   const ProjectRoots& projectRoots);

/// The owner whose cache this is, if it runs; else null. `path` comes from resolved().
const DiskTables::Owner* runningOwner(const std::filesystem::path& path, const std::filesystem::path& home,
                                      const DiskTables::Owners& owners, const IsRunning& isRunning);

struct ReclaimScope {
    const DiskTables& tables;
    std::filesystem::path home;  // absolute
    IsRunning isRunning;
    Trash& trash;
};

/// Moves the row's folder to the Trash; absent if it went, else nothing has changed. Acts on the path alone and checks
/// it anew: what was swapped or started since the scan counts. `owners`: whose caches stay while they run.
std::optional<ReclaimError> reclaim(const ReclaimScope& scope, const Reclaimable& item,
                                    const ProjectRoots& projectRoots, const DiskTables::Owners& owners);

}  // namespace ravik::DiskScanner
