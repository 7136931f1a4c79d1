#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "Core/Autopilot/Decision.h"
#include "Core/Base/Time.h"

namespace ravik {

/// What the log knows of the Autopilot's choices: how often each rule was right, and whether it may be turned on.
/// Rebuilt from the log whenever it is needed; nothing else stores it.
struct ShadowRecord {
    struct Rule {
        Decision::Action action = Decision::Action::demote;
        std::int64_t decided = 0;
        /// Scored an hour later, ...
        std::int64_t resolved = 0;
        /// ... and found wrong.
        std::int64_t regrets = 0;
        std::int64_t accepted = 0;
        std::int64_t dismissed = 0;

        /// Absent while nothing is scored.
        std::optional<double> percentWrong() const;
        friend bool operator==(const Rule&, const Rule&) = default;
    };

    struct Entry {
        std::int64_t id = 0;
        Time at = 0;
        Decision::Action action = Decision::Action::demote;
        std::string target;
        std::string reason;
        std::int64_t gainMB = 0;
        /// Absent until it is scored; begins with "regret" if it would have been wrong.
        std::optional<std::string> outcome;
        std::optional<std::int64_t> afterMin;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    /// Five percent or more were wrong.
    struct TooOften {
        double percent = 0;
        friend bool operator==(const TooOften&, const TooOften&) = default;
    };
    /// Fewer than 30 are scored.
    struct NeedsData {
        friend bool operator==(const NeedsData&, const NeedsData&) = default;
    };
    /// The record spans less than a week.
    struct Waiting {
        std::int64_t days = 0;
        friend bool operator==(const Waiting&, const Waiting&) = default;
    };
    /// The gate is open.
    struct Ready {
        friend bool operator==(const Ready&, const Ready&) = default;
    };
    using Standing = std::variant<TooOften, NeedsData, Waiting, Ready>;

    /// The kinds of lines that it is built of.
    static constexpr std::array<std::string_view, 4> kinds{"shadowDecision", "shadowOutcome", "suggestionAccepted",
                                                           "suggestionDismissed"};

    /// demote, pause, end.
    std::array<Rule, 3> rules{Rule{Decision::Action::demote}, Rule{Decision::Action::pause},
                              Rule{Decision::Action::end}};
    /// In the order of the log.
    std::vector<Entry> entries;
    std::optional<Time> since;
    std::optional<Time> until;
    /// At most five, the worst first. A dismissal counts here, though it is no regret.
    std::vector<std::pair<std::string, std::int64_t>> mostRegretted;

    /// `lines` are those of LogReader. Bad lines are passed over.
    static ShadowRecord build(std::span<const nlohmann::json> lines);
    Standing standing(const Rule& rule) const;

    friend bool operator==(const ShadowRecord&, const ShadowRecord&) = default;
};

}  // namespace ravik
