#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Autopilot/Decision.h"
#include "Core/Base/Time.h"
#include "Platform/Platform.h"

namespace ravik {

/// One thing that the Autopilot has done.
struct LiveAction {
    /// Unique within one run of the program.
    std::uint64_t id = 0;
    Decision decision;
    /// Those that were acted on; may be fewer than the decision's.
    Pids pids;
    Time at = 0;
    /// Absent while it is in force.
    std::optional<Time> undoneAt;

    friend bool operator==(const LiveAction&, const LiveAction&) = default;
};

/// The live actions of this run: at most one in force for each target. Main loop.
class LiveLedger {
public:
    /// Seconds for which the user is offered to undo, and for which an undone action is remembered.
    static constexpr double undoSeconds = 600.0;

    explicit LiveLedger(Levers& levers) : m_levers(levers) {}

    /// Pulls the lever of a decision on its pids as `procs` has them; the action, if any process was acted on.
    /// `end` has no lever.
    std::optional<LiveAction> carryOut(const Decision& decision, const std::vector<Proc>& procs, Time now);

    std::vector<LiveAction> open() const;
    bool isOpen(std::string_view target) const;
    /// The open ones that are younger than undoSeconds.
    std::vector<LiveAction> undoable(Time now) const;
    /// Absent if there is no such action or it is already undone.
    std::optional<LiveAction> undo(std::uint64_t id, Time now);
    std::vector<LiveAction> undoAll(Time now);
    /// Forgets what was undone long ago; what is open is never forgotten.
    void prune(Time now);

    const std::vector<LiveAction>& actions() const { return m_actions; }

private:
    Levers& m_levers;
    std::vector<LiveAction> m_actions;
    std::uint64_t m_next = 1;
};

/// The two levers by decision.
namespace Lever {

/// The pids acted on, of those that have a record in `procs` and are still the same.
Pids pull(Levers& levers, const Decision& decision, const std::vector<Proc>& procs);

}  // namespace Lever

}  // namespace ravik
