#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Core/Autopilot/Decision.h"
#include "Core/Base/Time.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// Follows decisions that were not acted on for an hour each, and says whether acting would have hurt. In memory
/// only. Main loop.
struct ShadowScorer {
    struct Open {
        Decision decision;
        Time at = 0;
    };
    struct Settled {
        Decision decision;
        /// "regret:focused", "regret:woke" or "held".
        std::string outcome;
        /// Seconds that it was open.
        double age = 0;
    };
    struct Step {
        std::vector<Decision> opened;
        std::vector<Settled> settled;
    };

    /// CPU percent above which a paused group would have woken.
    static constexpr double wokePercent = 5.0;

    double window = 3600.0;  // seconds
    /// By "{action}|{target}": at most one of each is open.
    std::map<std::string, Open> open;

    Step step(const std::vector<Decision>& decisions, const Snapshot& snapshot,
              const std::optional<std::string>& foreground, Time now);
};

}  // namespace ravik
