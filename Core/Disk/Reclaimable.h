#pragma once

#include <cstdint>
#include <string>

namespace ravik {

/// A folder that can go to the Trash: one row of a disk scan.
struct Reclaimable {
    /// Absolute path as the scan reached it, bytes as the file system has them; also the row's identity.
    std::string id;
    /// Short name: "npm cache"; of a build folder its own name.
    std::string kind;
    /// Allocated on disk, as DiskScanner::directorySize counts.
    std::uint64_t bytes = 0;
    /// One clause on why it is safe to remove.
    std::string note;

    friend bool operator==(const Reclaimable&, const Reclaimable&) = default;
};

}  // namespace ravik
