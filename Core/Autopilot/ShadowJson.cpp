#include "Core/Autopilot/ShadowJson.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace ravik::ShadowJson {

namespace {

using Json = nlohmann::json;

template <typename Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

Json standingJson(const ShadowRecord::Standing& standing) {
    if (const auto* const often = std::get_if<ShadowRecord::TooOften>(&standing)) {
        return {{"kind", "tooOften"}, {"percent", often->percent}};
    }
    if (const auto* const waiting = std::get_if<ShadowRecord::Waiting>(&standing)) {
        return {{"kind", "waiting"}, {"days", waiting->days}};
    }
    return {{"kind", std::holds_alternative<ShadowRecord::Ready>(standing) ? "ready" : "needsData"}};
}

}  // namespace

Json object(const ShadowRecord& record, const AutopilotScreen::Approved& approved) {
    Json rules = Json::array();
    for (const auto& rule : record.rules) {
        const auto standing = record.standing(rule);
        rules.push_back({{"action", word(rule.action)},
                         {"decided", rule.decided},
                         {"resolved", rule.resolved},
                         {"regrets", rule.regrets},
                         {"accepted", rule.accepted},
                         {"dismissed", rule.dismissed},
                         {"standing", standingJson(standing)},
                         {"status", AutopilotScreen::status(standing)},
                         {"approved", approved.contains(rule.action)}});
    }
    Json entries = Json::array();
    for (const auto& entry : record.entries) {
        entries.push_back({{"id", entry.id},
                           {"at", entry.at},
                           {"action", word(entry.action)},
                           {"target", entry.target},
                           {"reason", entry.reason},
                           {"gainMB", entry.gainMB},
                           {"outcome", orNull(entry.outcome)},
                           {"afterMin", orNull(entry.afterMin)}});
    }
    Json worst = Json::array();
    for (const auto& [target, count] : record.mostRegretted) worst.push_back(Json::array({target, count}));
    const auto hero = AutopilotScreen::hero(record, approved);
    return {{"rules", std::move(rules)},         {"entries", std::move(entries)},
            {"since", orNull(record.since)},     {"until", orNull(record.until)},
            {"mostRegretted", std::move(worst)}, {"hero", {{"value", hero.value}, {"line", hero.line}}}};
}

std::string text(const ShadowRecord& record, const AutopilotScreen::Approved& approved, bool knowsFocus) {
    const auto hero = AutopilotScreen::hero(record, approved);
    std::string out = fmt::format("{} {}\n{}\n", hero.value, hero.caption, hero.line);
    if (record.entries.empty()) out += fmt::format("{}\n", AutopilotScreen::noChoices);
    out += "\n";
    const auto bars = AutopilotScreen::bars(record);
    const auto rows = AutopilotScreen::ruleRows(record, approved, knowsFocus);
    for (std::size_t at = 0; at < rows.size(); ++at) {
        out += fmt::format("  {:<8}{:<28}{:<18}{}\n", word(rows[at].action), rows[at].name, bars[at].accessibilityValue,
                           rows[at].caption);
    }
    if (!knowsFocus) out += fmt::format("\n{}\n", AutopilotScreen::focusUnknown);
    if (!record.mostRegretted.empty()) out += fmt::format("\n{}\n", AutopilotScreen::mostWrongHeading);
    for (const auto& [target, count] : record.mostRegretted) out += fmt::format("  {} {}\n", count, target);
    if (!record.entries.empty()) out += "\nLatest choices\n";
    for (const auto& row : AutopilotScreen::entryRows(record, 10)) {
        out += fmt::format("  {}  {:<7} {}{} · {}\n", row.time, row.action, row.target,
                           row.reason.empty() ? "" : " · " + row.reason, row.verdict);
    }
    return out;
}

}  // namespace ravik::ShadowJson
