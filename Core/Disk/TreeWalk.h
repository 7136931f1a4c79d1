#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>

#include "Core/Base/Time.h"

struct stat;

namespace ravik {

/// What a walk over a folder's tree adds up. Hidden entries (names with a leading dot) and all below them are left
/// out, links are not followed, and what is mounted inside is not entered. What cannot be read contributes nothing.
struct TreeTotals {
    /// Allocated by regular files; a file with several names counts under each.
    std::uint64_t bytes = 0;
    /// Latest content modification of anything in the tree, the folder itself left out.
    Time newest = distantPast;
};

/// Which of the totals is wanted; the other is left as it starts.
enum class TreeQuestion { bytes, newest };

/// Blocks; uses a second thread on a large tree. Memory and open descriptors are bounded, whatever the tree's size
/// and depth. A folder that is a link, or no folder, is an empty tree. Ends early, with some total, once `cancelled`
/// (null: never) is set.
TreeTotals walkTree(const std::filesystem::path& folder, TreeQuestion question, const std::atomic<bool>* cancelled);

/// Content modification time.
Time modificationTime(const struct stat& status);

}  // namespace ravik
