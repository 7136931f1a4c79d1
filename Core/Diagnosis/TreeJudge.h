#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Core/Diagnosis/Safety.h"

namespace ravik {

namespace Safety {

/// Why this process by itself forbids ending any tree that it stands in.
std::optional<std::string> forbids(const Proc& proc, const Host& host);
/// The caution that this process is at work.
Verdict working(const Proc& proc, const Host& host);

}  // namespace Safety

/// Judges trees over one process list and remembers what it found of each process, so that a pass over many trees
/// looks at no command line twice. One thread; index and host must outlive it.
class TreeJudge {
public:
    TreeJudge(const ProcessIndex& procs, const Host& host);

    /// The verdict on these trees joined in this order, each in the order of the process list.
    Verdict check(std::span<const Pid> roots);
    Verdict check(Pid root) { return check(std::span(&root, 1)); }

    /// Positions of the tree's members, the root first where it is in the list. Valid until the next call.
    const std::vector<std::size_t>& members(Pid root);
    /// Every pid that hangs below one of these roots.
    PidSet below(std::span<const Pid> roots);

private:
    enum class Mark : std::uint8_t { unknown, idle, busy, forbidden };

    /// Adds what hangs below `root` and has not been met in this walk.
    void walk(Pid root);
    void beginWalk();
    void meetChildren(Pid parent);
    void meet(std::size_t at);
    Mark mark(std::size_t at);

    const ProcessIndex& m_procs;
    const Host& m_host;
    std::vector<Mark> m_marks;         // by position
    std::vector<std::uint32_t> m_met;  // by position: the last walk that met it
    std::uint32_t m_walk = 0;
    std::vector<std::size_t> m_members;
};

}  // namespace ravik
