#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"

namespace ravik {

/// One line of a drawn process tree.
struct TreeLine {
    Pid id = 0;
    /// 0 for a root.
    int depth = 0;
    /// The last child of its parent; a root is.
    bool last = false;
    std::string label;
    std::string mb;

    friend bool operator==(const TreeLine&, const TreeLine&) = default;
};

namespace Tree {

/// The trees below these roots, parents before children, heavier children first; at most `cap` lines in all. A root
/// that does not exist has no line.
std::vector<TreeLine> lines(const Pids& roots, const ProcessIndex& procs, std::size_t cap, const Host& host);

}  // namespace Tree

}  // namespace ravik
