#include "Core/Screens/AutopilotScreen.h"

#include <algorithm>

#include <fmt/format.h>

#include "Core/Wording/AppInfo.h"
#include "Core/Wording/Fmt.h"

namespace ravik::AutopilotScreen {

namespace {

using Action = Decision::Action;

std::string verdict(const ShadowRecord::Entry& entry) {
    if (!entry.outcome) return "not scored yet";
    return entry.outcome->starts_with("regret") ? "wrong" : "right";
}

bool isReady(const ShadowRecord::Standing& standing) { return std::holds_alternative<ShadowRecord::Ready>(standing); }

BarTone toneOf(const ShadowRecord::Standing& standing) {
    if (std::holds_alternative<ShadowRecord::NeedsData>(standing)) return BarTone::notEnough;
    return std::holds_alternative<ShadowRecord::TooOften>(standing) ? BarTone::tooOften : BarTone::onTrack;
}

}  // namespace

std::string_view name(Action action) {
    switch (action) {
        case Action::demote: return "Slow busy background work";
        case Action::pause: return "Pause idle apps";
        case Action::end: return "End old leftovers";
    }
    return {};
}

std::string status(const ShadowRecord::Standing& standing) {
    if (std::holds_alternative<ShadowRecord::TooOften>(standing)) return "too often wrong";
    if (std::holds_alternative<ShadowRecord::NeedsData>(standing)) return "needs more data";
    if (const auto* const waiting = std::get_if<ShadowRecord::Waiting>(&standing)) {
        return "ready in " + Fmt::plural(static_cast<std::uint64_t>(waiting->days), "day");
    }
    return "ready to turn on";
}

Hero hero(const ShadowRecord& record, const Approved& approved) {
    ShadowRecord::Rule all;
    for (const ShadowRecord::Rule& rule : record.rules) {
        all.regrets += rule.regrets;
        all.resolved += rule.resolved;
    }
    const auto wrong = all.percentWrong();
    return {wrong ? fmt::format("{:.0f}%", *wrong) : "—", "of its choices would have been wrong",
            approved.empty() ? "Learning — not acting yet. A rule can turn on once it stays under 5%."
                             : Fmt::plural(approved.size(), "rule") +
                                   " on — undoable for 10 minutes from the panel. The rest learn and act on nothing."};
}

std::vector<Bar> bars(const ShadowRecord& record) {
    std::vector<Bar> result;
    for (const ShadowRecord::Rule& rule : record.rules) {
        const auto wrong = rule.percentWrong();
        result.push_back({std::string(name(rule.action)), wrong.value_or(0), toneOf(record.standing(rule)),
                          wrong ? fmt::format("{:.0f} percent wrong", *wrong) : "not enough data"});
    }
    return result;
}

double axisTop(const ShadowRecord& record) {
    double top = 25;
    for (const ShadowRecord::Rule& rule : record.rules) top = std::max(top, rule.percentWrong().value_or(0));
    return top;
}

std::vector<RuleRow> ruleRows(const ShadowRecord& record, const Approved& approved, bool knowsFocus) {
    std::vector<RuleRow> rows;
    for (const ShadowRecord::Rule& rule : record.rules) {
        const auto standing = record.standing(rule);
        const bool possible = rule.action != Action::end && (rule.action != Action::pause || knowsFocus);
        RuleRow row{rule.action, std::string(name(rule.action)), approved.contains(rule.action), false,
                    status(standing)};
        row.isEnabled = row.isOn || (possible && isReady(standing));
        if (row.isOn) {
            row.caption = "On — undoable for 10 minutes";
        } else if (rule.action == Action::end) {
            row.caption = "Stays a suggestion: ending cannot be undone";
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

const std::vector<std::pair<std::string, std::string>>& infoSections() {
    static const std::vector<std::pair<std::string, std::string>> sections{
        {"Learning — not acting yet (shadow mode)",
         "Every few seconds it decides what it would do, and does nothing. An hour later it checks whether "
         "that choice would have been wrong."},
        {"Would have been wrong (a regret)",
         "You came back to an app it would have paused, or a process it would have slowed woke up to work. "
         "Each choice is scored 60 minutes after it is made."},
        {"The 5% line (the gate)",
         "A rule can be turned on only after at least 30 scored choices over a full week, wrong less than 5% "
         "of the time, and only once you approve it."},
        {"Autopilot would… (suggest mode)",
         "The panel offers what it would do, as two buttons. Do it acts now, undoable for ten minutes. Not "
         "this counts as a wrong call and hides that one for a day. Your answers are the evidence a rule is "
         "judged on."},
        {"End leftovers automatically",
         "The one rule that works today. It ends only programs from ended AI sessions that pass the safety "
         "check, and logs every one."}};
    return sections;
}

std::vector<std::string> acceptedLines(const ShadowRecord& record) {
    std::vector<std::string> lines;
    for (const ShadowRecord::Rule& rule : record.rules) {
        if (rule.accepted > 0) lines.push_back(fmt::format("{} · you said yes {}", name(rule.action), rule.accepted));
    }
    return lines;
}

std::vector<EntryRow> entryRows(const ShadowRecord& record, std::size_t most) {
    std::vector<EntryRow> rows;
    for (auto at = record.entries.rbegin(); at != record.entries.rend() && rows.size() < most; ++at) {
        rows.push_back(
            {AppInfo::dayMinute(at->at), std::string(word(at->action)), at->target, at->reason, verdict(*at)});
    }
    return rows;
}

}  // namespace ravik::AutopilotScreen
