#include "Core/Autopilot/LiveLedger.h"

#include <algorithm>
#include <iterator>

#include "Core/Watch/ProcessIndex.h"

namespace ravik {

Pids Lever::pull(Levers& levers, const Decision& decision, const std::vector<Proc>& procs) {
    const ProcessIndex index(procs);
    std::vector<Proc> targets;
    for (const Pid pid : decision.pids) {
        if (const Proc* proc = index.find(pid)) targets.push_back(*proc);
    }
    switch (decision.action) {
        case Decision::Action::pause: return levers.pause(decision.target, targets);
        case Decision::Action::demote: return levers.demote(decision.target, targets);
        case Decision::Action::end: break;
    }
    return {};
}

std::optional<LiveAction> LiveLedger::carryOut(const Decision& decision, const std::vector<Proc>& procs, Time now) {
    Pids pids = Lever::pull(m_levers, decision, procs);
    if (pids.empty()) return {};
    m_actions.push_back({m_next++, decision, std::move(pids), now, {}});
    return m_actions.back();
}

std::vector<LiveAction> LiveLedger::open() const {
    std::vector<LiveAction> found;
    std::ranges::copy_if(m_actions, std::back_inserter(found), [](const auto& action) { return !action.undoneAt; });
    return found;
}

bool LiveLedger::isOpen(std::string_view target) const {
    return std::ranges::any_of(
        m_actions, [&](const auto& action) { return !action.undoneAt && action.decision.target == target; });
}

std::vector<LiveAction> LiveLedger::undoable(Time now) const {
    std::vector<LiveAction> found = open();
    std::erase_if(found, [&](const auto& action) { return now - action.at >= undoSeconds; });
    return found;
}

std::optional<LiveAction> LiveLedger::undo(std::uint64_t id, Time now) {
    const auto action = std::ranges::find(m_actions, id, &LiveAction::id);
    if (action == m_actions.end() || action->undoneAt) return {};
    if (action->decision.action == Decision::Action::pause) {
        m_levers.resume(action->pids);
    } else {
        m_levers.restore(action->pids);
    }
    action->undoneAt = now;
    return *action;
}

std::vector<LiveAction> LiveLedger::undoAll(Time now) {
    std::vector<LiveAction> undone;
    for (const LiveAction& action : open()) {
        if (auto released = undo(action.id, now)) undone.push_back(std::move(*released));
    }
    return undone;
}

void LiveLedger::prune(Time now) {
    std::erase_if(m_actions,
                  [&](const auto& action) { return action.undoneAt && now - *action.undoneAt > undoSeconds; });
}

}  // namespace ravik
