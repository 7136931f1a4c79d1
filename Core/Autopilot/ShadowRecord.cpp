#include "Core/Autopilot/ShadowRecord.h"

#include <algorithm>
#include <cmath>
#include <map>

#include <nlohmann/json.hpp>

#include "Core/Base/Iso8601.h"
#include "Core/Record/LineValue.h"

namespace ravik {

namespace {

constexpr std::int64_t leastScored = 30;
constexpr double mostWrongPercent = 5.0;
constexpr double leastDays = 7.0;
constexpr double daySeconds = 86400.0;
constexpr std::size_t mostTargets = 5;

using Action = Decision::Action;

/// The open choices by rule and target, and what the record becomes.
struct Builder {
    ShadowRecord record;
    std::map<std::pair<Action, std::string>, std::size_t> pending;
    std::map<std::string, std::int64_t> counts;

    void add(const nlohmann::json& line) {
        const auto at = Iso8601::parse(LineValue::text(line, "t").value_or(""));
        const auto action = parseAction(LineValue::text(line, "action").value_or(""));
        const auto target = LineValue::text(line, "target");
        if (!at || !action || !target) return;
        record.since = std::min(record.since.value_or(*at), *at);
        record.until = std::max(record.until.value_or(*at), *at);
        ShadowRecord::Rule& rule = record.rules[static_cast<std::size_t>(*action)];
        const std::string kind = LineValue::text(line, "kind").value_or("");
        if (kind == "shadowDecision") {
            ++rule.decided;
            decision(line, *at, *action, *target);
        } else if (kind == "shadowOutcome") {
            ++rule.resolved;
            if (outcome(line, *action, *target)) {
                ++rule.regrets;
                ++counts[*target];
            }
        } else if (kind == "suggestionAccepted") {
            ++rule.accepted;
        } else if (kind == "suggestionDismissed") {
            ++rule.dismissed;
            ++counts[*target];
        }
    }

    void decision(const nlohmann::json& line, Time at, Action action, const std::string& target) {
        ShadowRecord::Entry entry;
        entry.id = static_cast<std::int64_t>(record.entries.size());
        entry.at = at;
        entry.action = action;
        entry.target = target;
        entry.reason = LineValue::text(line, "reason").value_or("");
        entry.gainMB = LineValue::whole(line, "gainMB").value_or(0);
        pending[{action, target}] = record.entries.size();
        record.entries.push_back(std::move(entry));
    }

    /// True for a regret.
    bool outcome(const nlohmann::json& line, Action action, const std::string& target) {
        const std::string text = LineValue::text(line, "outcome").value_or("");
        if (const auto at = pending.find({action, target}); at != pending.end()) {
            ShadowRecord::Entry& entry = record.entries[at->second];
            entry.outcome = text;
            entry.afterMin = LineValue::whole(line, "afterMin");
            pending.erase(at);
        }
        return text.starts_with("regret");
    }
};

}  // namespace

std::optional<double> ShadowRecord::Rule::percentWrong() const {
    if (resolved == 0) return {};
    return static_cast<double>(regrets) * 100.0 / static_cast<double>(resolved);
}

ShadowRecord ShadowRecord::build(std::span<const nlohmann::json> lines) {
    Builder builder;
    for (const auto& line : lines) {
        if (line.is_object()) builder.add(line);
    }
    auto& worst = builder.record.mostRegretted;
    worst.assign(builder.counts.begin(), builder.counts.end());
    std::stable_sort(worst.begin(), worst.end(), [](const auto& a, const auto& b) { return a.second > b.second; });
    if (worst.size() > mostTargets) worst.resize(mostTargets);
    return std::move(builder.record);
}

ShadowRecord::Standing ShadowRecord::standing(const Rule& rule) const {
    if (rule.resolved < leastScored) return NeedsData();
    const double wrong = *rule.percentWrong();
    if (wrong >= mostWrongPercent) return TooOften{wrong};
    const double days = since && until ? (*until - *since) / daySeconds : 0;
    if (days >= leastDays) return Ready();
    return Waiting{static_cast<std::int64_t>(std::ceil(leastDays - days))};
}

}  // namespace ravik
