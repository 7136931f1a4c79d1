#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Core/Base/Pids.h"

namespace ravik {

/// One choice of the Autopilot.
struct Decision {
    enum class Action { demote, pause, end };

    Action action = Action::demote;
    /// A group's id, or "agent leftovers".
    std::string target;
    Pids pids;
    /// Memory it would free; 0 for a demotion.
    std::uint64_t gainBytes = 0;
    /// One sentence, shown and logged.
    std::string reason;

    friend bool operator==(const Decision&, const Decision&) = default;
};

/// "demote", "pause", "end": the words in the log and in stored approvals.
constexpr std::string_view word(Decision::Action action) {
    switch (action) {
        case Decision::Action::demote: return "demote";
        case Decision::Action::pause: return "pause";
        case Decision::Action::end: return "end";
    }
    return {};
}

constexpr std::optional<Decision::Action> parseAction(std::string_view text) {
    for (const auto action : {Decision::Action::demote, Decision::Action::pause, Decision::Action::end}) {
        if (text == word(action)) return action;
    }
    return std::nullopt;
}

}  // namespace ravik
