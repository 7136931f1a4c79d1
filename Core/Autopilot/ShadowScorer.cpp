#include "Core/Autopilot/ShadowScorer.h"

#include <unordered_map>

namespace ravik {

namespace {

std::string key(const Decision& decision) { return std::string(word(decision.action)) + "|" + decision.target; }

}  // namespace

ShadowScorer::Step ShadowScorer::step(const std::vector<Decision>& decisions, const Snapshot& snapshot,
                                      const std::optional<std::string>& foreground, Time now) {
    Step result;
    for (const Decision& decision : decisions) {
        if (open.try_emplace(key(decision), Open{decision, now}).second) result.opened.push_back(decision);
    }
    if (open.empty()) return result;

    std::unordered_map<std::string_view, double> cpu;
    for (const AppGroup& group : snapshot.groups) cpu.emplace(group.id, group.cpuPercent);

    const auto outcome = [&](const Open& entry) -> std::string_view {
        const Decision& decision = entry.decision;
        const bool reversible = decision.action != Decision::Action::end;
        if (reversible && foreground && *foreground == decision.target) return "regret:focused";
        if (decision.action == Decision::Action::pause) {
            const auto group = cpu.find(decision.target);
            if (group != cpu.end() && group->second > wokePercent) return "regret:woke";
        }
        return now - entry.at >= window ? "held" : "";
    };
    for (auto at = open.begin(); at != open.end();) {
        const std::string_view verdict = outcome(at->second);
        if (verdict.empty()) {
            ++at;
            continue;
        }
        result.settled.push_back({at->second.decision, std::string(verdict), now - at->second.at});
        at = open.erase(at);
    }
    return result;
}

}  // namespace ravik
