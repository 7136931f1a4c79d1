#include "Core/Autopilot/Engine.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "Core/Diagnosis/CommandLine.h"
#include "Core/Diagnosis/Rx.h"
#include "Core/Diagnosis/TreeJudge.h"

namespace ravik {

namespace {

constexpr int pressedBelowPercent = 20;
constexpr double pressedAboveSwapOut = 1048576.0;
constexpr double idleCPU = 1.0;

/// The apps and programs that no rule ever touches.
bool isUntouchable(const AppGroup& group, const std::optional<std::string>& foreground, const PidSet& sessionPids,
                   const HostTables& tables) {
    if (group.id.starts_with('[') || tables.engineProtected.contains(group.id) || foreground == group.id) return true;
    return std::ranges::any_of(group.processes, [&](const Proc& proc) {
        return sessionPids.contains(proc.id) || startsWithAny(proc.command, tables.enginePrefixes) ||
               Rx::agentLeftover().matches(proc.command);
    });
}

Pids pidsOf(const std::vector<Proc>& procs) {
    Pids pids;
    for (const Proc& proc : procs) pids.push_back(proc.id);
    return pids;
}

Time lookUp(const std::unordered_map<std::string, Time>& times, const std::string& group) {
    const auto hit = times.find(group);
    return hit == times.end() ? distantPast : hit->second;
}

}  // namespace

Engine::Conditions Engine::conditions(const Snapshot& snapshot) {
    const SystemStats& stats = snapshot.stats;
    return {stats.memoryFreePercent < pressedBelowPercent || stats.swapOutBytesPerSec > pressedAboveSwapOut,
            stats.loadAverage > std::max(stats.cpuCount, 1)};
}

std::optional<Decision> Engine::judge(const AppGroup& group, const Conditions& conditions, const History& history,
                                      const Host& host, Time now) const {
    const Time since =
        std::max({lookUp(history.lastBusy, group.id), lookUp(history.lastFocused, group.id), history.observedSince});
    const double idle = (now - since) / 60.0;
    if (conditions.underPressure && group.footprintBytes >= minPauseBytes && idle >= idleMinutes &&
        group.cpuPercent < idleCPU) {
        return Decision{Decision::Action::pause, group.id, pidsOf(group.processes), group.footprintBytes,
                        fmt::format("idle {:.0f} min, not focused, memory under pressure", std::trunc(idle))};
    }
    if (conditions.loaded && group.cpuPercent >= demoteCPU) {
        return Decision{Decision::Action::demote, group.id, pidsOf(group.processes), 0,
                        fmt::format("{:.0f}% CPU in the background while {} is busy", std::trunc(group.cpuPercent),
                                    host.nouns().yourMachine)};
    }
    return std::nullopt;
}

std::optional<Decision> Engine::leftovers(const Snapshot& snapshot, const Host& host, Time clock) const {
    const auto ended = std::ranges::find(snapshot.sessions, false, &AgentSession::alive);
    if (ended == snapshot.sessions.end()) return std::nullopt;
    std::vector<const Proc*> old;
    for (const Proc& member : ended->members) {
        if (keep.contains(member.command.str()) || !(clock - member.started >= leftoverHours * 3600.0)) continue;
        old.push_back(&member);
    }
    if (old.empty()) return std::nullopt;
    const ProcessIndex index(snapshot.processes);
    TreeJudge judge(index, host);
    Decision decision{Decision::Action::end, "agent leftovers", {}, 0, {}};
    for (const Proc* member : old) {
        if (!judge.check(member->id).isSafe()) continue;
        decision.pids.push_back(member->id);
        decision.gainBytes += member->footprintBytes;
    }
    if (decision.pids.empty()) return std::nullopt;
    decision.reason = fmt::format("{} processes from ended sessions, older than {:.0f} h", decision.pids.size(),
                                  std::trunc(leftoverHours));
    return decision;
}

std::vector<Decision> Engine::decide(const Snapshot& snapshot, const History& history,
                                     const std::optional<std::string>& foreground, const Host& host, Time now,
                                     Time clock) const {
    const Conditions current = conditions(snapshot);
    PidSet sessionPids;
    for (const AgentSession& session : snapshot.sessions) {
        if (!session.alive) continue;
        for (const Proc& member : session.members) sessionPids.insert(member.id);
    }
    std::vector<Decision> decisions;
    for (const AppGroup& group : snapshot.groups) {
        // Few groups are worth a decision, and telling whether one may be touched takes a look at each command.
        auto decision = judge(group, current, history, host, now);
        if (!decision || isUntouchable(group, foreground, sessionPids, host.tables())) continue;
        decisions.push_back(std::move(*decision));
    }
    if (auto decision = leftovers(snapshot, host, clock)) decisions.push_back(std::move(*decision));
    std::ranges::stable_sort(decisions, [](const Decision& a, const Decision& b) {
        return a.gainBytes != b.gainBytes ? a.gainBytes > b.gainBytes : a.target > b.target;
    });
    return decisions;
}

}  // namespace ravik
