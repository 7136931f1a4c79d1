#pragma once

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Core/Autopilot/ShadowRecord.h"

/// What the Autopilot screen says of the record, as plain records and pure functions. Any thread.
namespace ravik::AutopilotScreen {

using Approved = std::set<Decision::Action>;

inline constexpr std::string_view reading = "Reading what it learned…";
inline constexpr std::string_view noChoices = "It has not made a choice yet. Check back in an hour.";
/// Where the desktop does not tell which application has the focus, a paused one could not be given back in time.
inline constexpr std::string_view focusUnknown =
    "This desktop does not tell which app you are using, so idle apps are never paused here.";

/// "Pause idle apps"
std::string_view name(Decision::Action action);
/// "needs more data", "ready in 1 day"
std::string status(const ShadowRecord::Standing& standing);

struct Hero {
    /// The share of wrong choices over all rules: "7%"; "—" while nothing is scored.
    std::string value;
    std::string caption;
    std::string line;
    friend bool operator==(const Hero&, const Hero&) = default;
};
Hero hero(const ShadowRecord& record, const Approved& approved);

enum class BarTone { onTrack, tooOften, notEnough };
struct Bar {
    std::string name;
    double percent = 0;
    BarTone tone = BarTone::notEnough;
    /// "7 percent wrong", "not enough data"
    std::string accessibilityValue;
    friend bool operator==(const Bar&, const Bar&) = default;
};
inline constexpr double linePercent = 5;
inline constexpr std::array<std::string_view, 4> legends{"Under 5% wrong — on track", "Too often wrong — stays off",
                                                         "Not enough choices yet",
                                                         "The 5% line a rule must stay under"};
std::vector<Bar> bars(const ShadowRecord& record);
/// At least 25 percent.
double axisTop(const ShadowRecord& record);

struct RuleRow {
    Decision::Action action = Decision::Action::demote;
    std::string name;
    bool isOn = false;
    /// A switch that is on can always be turned off; one that is off only on by a rule that has passed its gate.
    bool isEnabled = false;
    std::string caption;
    friend bool operator==(const RuleRow&, const RuleRow&) = default;
};
/// `knowsFocus`: the desktop tells which application has the focus; without that, `pause` cannot be turned on.
std::vector<RuleRow> ruleRows(const ShadowRecord& record, const Approved& approved, bool knowsFocus = true);

inline constexpr std::string_view infoTitle = "How Autopilot learns";
/// Heading and text of each section.
const std::vector<std::pair<std::string, std::string>>& infoSections();
inline constexpr std::string_view mostWrongHeading = "Most often wrong about";
/// "Slow busy background work · you said yes 3": one a rule that was ever accepted.
std::vector<std::string> acceptedLines(const ShadowRecord& record);

struct EntryRow {
    std::string time;
    std::string action;
    std::string target;
    std::string reason;
    /// "not scored yet", "wrong", "right"
    std::string verdict;
    friend bool operator==(const EntryRow&, const EntryRow&) = default;
};
/// The latest, newest first.
std::vector<EntryRow> entryRows(const ShadowRecord& record, std::size_t most = 20);

}  // namespace ravik::AutopilotScreen
