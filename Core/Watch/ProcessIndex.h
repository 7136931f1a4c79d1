#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "Core/Watch/Proc.h"

namespace ravik {

/// Children by parent and processes by pid, built once for a list and shared by everything that walks trees.
/// Keeps a view of the list: it must outlive the index and stay unchanged.
class ProcessIndex {
public:
    explicit ProcessIndex(std::span<const Proc> procs);

    std::span<const Proc> all() const { return m_procs; }

    /// The first process with this pid; null if there is none.
    const Proc* find(Pid pid) const;
    /// Positions in the list of the processes whose parent is `pid`, in list order.
    std::span<const std::size_t> children(Pid pid) const;

    /// Every transitive child, the root excluded, in the order of a walk with a stack. A pid occurs once, and a
    /// walk that meets its root again ends there.
    Pids descendants(Pid root) const;
    /// The root, where it is in the list, and its descendants, in the order of the list.
    std::vector<Proc> tree(Pid root) const;
    /// The positions behind tree().
    std::vector<std::size_t> treePositions(Pid root) const;

private:
    std::span<const Proc> m_procs;
    std::vector<std::size_t> m_byParent;              // positions, grouped by parent
    std::vector<std::pair<Pid, std::size_t>> m_pids;  // sorted by pid, first position of each
    struct Range {
        Pid parent;
        std::size_t begin;
        std::size_t end;
    };
    std::vector<Range> m_ranges;  // sorted by parent
};

}  // namespace ravik
