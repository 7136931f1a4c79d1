#pragma once

#include <vector>

#include "Core/Base/Pids.h"
#include "Core/Watch/Proc.h"
#include "Platform/Platform.h"

namespace ravik {

/// What the machine says, now, of trees that an older reading describes. A verdict that can lead to a signal is
/// given on this: a member may have become a `git` a second ago.
struct LastLook {
    /// Everything that now stands in or below the trees, and what has left them but still lives.
    std::vector<Proc> trees;
    /// The older list with its living members brought up to date; who stands below whom is as it was.
    std::vector<Proc> procs;
    /// Members of the older trees that could not be read: they have gone, or nothing can be said of them.
    std::vector<Proc> unread;
};

/// Reads the process table anew. Figures that take time to measure (CPU) are the older reading's. Any thread.
LastLook lastLook(const Pids& roots, const std::vector<Proc>& procs, const ProcessTable& table);

}  // namespace ravik
