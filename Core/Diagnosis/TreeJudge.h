#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
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
/// looks at no command line twice, and trees within trees cost no more than the list. One thread; index and host must
/// outlive it.
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

    /// The positions of the first forbidden and the first busy process of one tree; the list's size for none.
    struct Firsts {
        std::size_t forbidden;
        std::size_t busy;
    };
    /// Of what this walk has not met.
    Firsts walked(Pid root);
    /// The same out of what settle() found, whatever was met.
    Firsts looked(Pid root);
    /// Judges every process once, for all trees.
    void settle();

    /// Pid to the first such position among what hangs below it.
    using FirstBelow = std::unordered_map<Pid, std::size_t>;
    static void spread(FirstBelow& first, std::size_t at, Pid parent, std::span<const std::pair<Pid, Pid>> parents);

    const ProcessIndex& m_procs;
    const Host& m_host;
    std::vector<Mark> m_marks;         // by position
    std::vector<std::uint32_t> m_met;  // by position: the last walk that met it
    std::uint32_t m_walk = 0;
    std::vector<std::size_t> m_members;
    std::size_t m_steps = 0;  // members met in all walks
    bool m_settled = false;
    FirstBelow m_forbiddenBelow;
    FirstBelow m_busyBelow;
};

}  // namespace ravik
