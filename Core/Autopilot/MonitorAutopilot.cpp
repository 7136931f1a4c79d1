// Monitor's Autopilot: decides on every tick, acts only through levers that it can undo, and lets go by itself.
#include <algorithm>
#include <set>

#include <nlohmann/json.hpp>

#include "Core/Autopilot/Approvals.h"
#include "Core/Watch/Monitor.h"
#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

using Action = Decision::Action;

constexpr double busyPercent = 1.0;  // above which a group is not idle
constexpr std::size_t suggestionsShown = 2;

nlohmann::json described(const Decision& decision) {
    return {{"action", word(decision.action)}, {"target", decision.target}};
}

nlohmann::json withGain(const Decision& decision) {
    nlohmann::json line = described(decision);
    line["gainMB"] = Fmt::wholeMB(decision.gainBytes);
    return line;
}

nlohmann::json withReason(const Decision& decision) {
    nlohmann::json line = withGain(decision);
    line["reason"] = decision.reason;
    return line;
}

nlohmann::json withPids(nlohmann::json line, std::size_t count) {
    line["pids"] = count;
    return line;
}

std::int64_t minutes(double seconds) { return static_cast<std::int64_t>(seconds / 60.0); }

}  // namespace

void Monitor::runEngine(const Snapshot& snapshot, std::optional<std::string> foreground, Time now) {
    if (!foreground) foreground = m_platform.workspace.frontmost();
    if (foreground) m_engineHistory.lastFocused[*foreground] = now;
    for (const AppGroup& group : snapshot.groups) {
        if (group.cpuPercent > busyPercent) m_engineHistory.lastBusy[group.id] = now;
    }
    m_engine.keep = keep();
    const std::vector<Decision> decisions =
        m_engine.decide(snapshot, m_engineHistory, foreground, m_host, now, m_platform.clock.now());

    std::set<Action> approved = Approvals(m_platform.defaults).actions();
    approved.erase(Action::end);
    // What cannot be resumed on focus is not paused.
    if (!m_platform.workspace.knowsFocus()) approved.erase(Action::pause);
    std::vector<Decision> shadow;
    for (const Decision& decision : decisions) {
        if (!approved.contains(decision.action)) {
            shadow.push_back(decision);
        } else if (!m_ledger.isOpen(decision.target)) {
            if (const auto action = m_ledger.carryOut(decision, snapshot.processes, now)) {
                m_log.event("autopilotAction", withPids(withReason(decision), action->pids.size()));
            }
        }
    }

    releaseWhatIsOver(snapshot, foreground, now);
    m_ledger.prune(now);
    m_decidedOn = snapshot.processes;
    m_shadow = shadow;
    publish(Change::shadow);
    publishLive(now);
    suggest(shadow, now);

    const ShadowScorer::Step step = m_scorer.step(shadow, snapshot, foreground, now);
    for (const Decision& decision : step.opened) {
        m_log.event("shadowDecision", withPids(withReason(decision), decision.pids.size()));
    }
    for (const ShadowScorer::Settled& settled : step.settled) {
        nlohmann::json line = withGain(settled.decision);
        line["outcome"] = settled.outcome;
        line["afterMin"] = minutes(settled.age);
        m_log.event("shadowOutcome", line);
    }
}

void Monitor::releaseWhatIsOver(const Snapshot& snapshot, const std::optional<std::string>& foreground, Time now) {
    const Engine::Conditions conditions = Engine::conditions(snapshot);
    const bool mayPause = conditions.underPressure && m_platform.workspace.knowsFocus();
    for (const LiveAction& action : m_ledger.open()) {
        const bool pressed = action.decision.action == Action::pause ? mayPause : conditions.loaded;
        if (foreground && *foreground == action.decision.target) {
            release(action, "focused", now);
        } else if (!pressed) {
            release(action, "condition passed", now);
        }
    }
}

void Monitor::suggest(const std::vector<Decision>& shadow, Time now) {
    const Suggestions dismissals(m_platform.defaults);
    m_suggestions.clear();
    for (const Decision& decision : shadow) {
        if (m_suggestions.size() == suggestionsShown) break;
        if (decision.action == Action::end || m_ledger.isOpen(decision.target)) continue;
        if (decision.action == Action::pause && !m_platform.workspace.knowsFocus()) continue;
        if (dismissals.isDismissed(decision.target, now)) continue;
        m_suggestions.push_back(decision);
    }
    publish(Change::suggestions);
    for (const Decision& decision : m_suggestions) {
        if (m_suggested.insert(decision.target).second) m_log.event("suggestionShown", withReason(decision));
    }
}

void Monitor::publishLive(Time now) {
    m_live = m_ledger.undoable(now);
    publish(Change::live);
}

void Monitor::release(const LiveAction& action, std::string_view why, Time now) {
    const auto released = m_ledger.undo(action.id, now);
    if (!released) return;
    nlohmann::json line = described(released->decision);
    line["why"] = why;
    line["afterMin"] = minutes(now - released->at);
    m_log.event("autopilotRelease", line);
}

void Monitor::undoLive(std::uint64_t id) {
    const auto action = std::ranges::find(m_live, id, &LiveAction::id);
    if (action == m_live.end()) return;
    const Time now = m_platform.clock.now();
    release(LiveAction(*action), "undo", now);
    publishLive(now);
}

void Monitor::releaseAllLive() {
    const Time now = m_platform.clock.now();
    for (const LiveAction& action : m_ledger.undoAll(now)) {
        nlohmann::json line = described(action.decision);
        line["why"] = "quit";
        line["afterMin"] = minutes(now - action.at);
        m_log.event("autopilotRelease", line);
    }
}

void Monitor::watchFocus() {
    // What a run that ended without a word left in force.
    for (const Levers::Leftover& left : m_platform.levers.releaseLeftovers()) {
        m_log.event("autopilotRelease", {{"action", left.action},
                                         {"target", left.target},
                                         {"why", "restart"},
                                         {"afterMin", minutes(m_platform.clock.now() - left.at)}});
        m_releasedAtStart.push_back(left.target);
    }
    m_platform.workspace.onActivation([self = m_self](const std::string& name) {
        if (!*self) return;
        Monitor& monitor = **self;
        const Time now = monitor.m_platform.clock.now();
        for (const LiveAction& action : monitor.m_ledger.open()) {
            if (action.decision.target == name) monitor.release(action, "focused", now);
        }
        monitor.publishLive(now);
    });
}

void Monitor::acceptSuggestion(const Decision& suggestion, Time now) {
    const Decision decision = suggestion;  // it may stand in the list that is about to change
    const bool reversible =
        decision.action == Action::demote || (decision.action == Action::pause && m_platform.workspace.knowsFocus());
    if (reversible && !m_ledger.isOpen(decision.target)) {
        if (const auto action = m_ledger.carryOut(decision, m_decidedOn, now)) {
            m_log.event("suggestionAccepted", withPids(withGain(decision), action->pids.size()));
        }
    }
    withdraw(decision.target);
    publishLive(now);
}

void Monitor::dismissSuggestion(const Decision& suggestion, Time now) {
    const Decision decision = suggestion;
    Suggestions(m_platform.defaults).dismiss(decision.target, now);
    m_log.event("suggestionDismissed", withGain(decision));
    withdraw(decision.target);
}

void Monitor::withdraw(const std::string& target) {
    std::erase_if(m_suggestions, [&](const Decision& decision) { return decision.target == target; });
    publish(Change::suggestions);
}

}  // namespace ravik
