#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "Core/Base/Time.h"
#include "Core/Disk/DiskTables.h"

namespace ravik::DiskScanner {

/// Allocated size in bytes of the regular files in the tree; see TreeTotals for what is left out. 0 if the folder
/// cannot be walked. Blocks; `cancelled` (null: never) ends it early with some figure.
std::uint64_t directorySize(const std::filesystem::path& folder, const std::atomic<bool>* cancelled = nullptr);

/// Latest content modification of anything in the tree, hidden entries left out; `distantPast` if there is nothing
/// or the walk cannot begin. Blocks like directorySize.
Time newestMtime(const std::filesystem::path& folder, const std::atomic<bool>* cancelled = nullptr);

/// A project's age by its sources: the latest content modification among its direct children, hidden ones included,
/// without build folders and ".git"; `distantPast` if nothing is left.
Time newestSourceMtime(const std::filesystem::path& folder, const DiskTables& tables);

struct Child {
    std::string name;
    /// False for a link, wherever it leads.
    bool isFolder = false;
};

enum class Hidden { skip, include };

/// Direct children by name, ascending; none if the folder cannot be listed. A link to a folder is listed as that
/// folder.
std::vector<Child> children(const std::filesystem::path& folder, Hidden hidden);

}  // namespace ravik::DiskScanner
