#pragma once

#include <cmath>
#include <map>
#include <random>
#include <set>
#include <string>

#include "Tests/Core/Autopilot/AutopilotDesk.h"

namespace ravik::fakes {

/// Weeks of a user who switches between applications by day and sleeps by night, on a machine that is short of memory
/// for some half hours and busy for others. Rules go on and off from day to day. What happens is counted here beside
/// the program: by watching what it publishes and what becomes of the processes.
class SimulatedWeeks : public AutopilotDesk {
public:
    using Action = Decision::Action;

    struct Counts {
        std::int64_t decided = 0;
        std::int64_t resolved = 0;
        std::int64_t regrets = 0;
        std::int64_t accepted = 0;
        std::int64_t dismissed = 0;
        friend bool operator==(const Counts&, const Counts&) = default;
    };

    explicit SimulatedWeeks(unsigned seed) : m_random(seed) {
        for (int number = 0; number < apps; ++number) {
            for (int part = 0; part < parts; ++part) {
                app(pidOf(number, part), nameOf(number), 120 + 20 * static_cast<std::uint64_t>(number));
            }
        }
        for (Pid pid = 900; pid < 904; ++pid) leftover(pid);
    }

    void run(int days) {
        constexpr int minutesADay = 24 * 60;
        for (int today = 0; today < days; ++today) {
            changeApprovals(today);
            for (int clock = 0; clock < minutesADay; ++clock) {
                if (clock % 30 == 0) changeConditions();
                pass(clock > 8 * 60 && clock < 22 * 60);
            }
        }
        // The last hour leaves something to release at the end.
        allow({Action::pause});
        for (int clock = 0; clock < 60; ++clock) {
            memory(10);
            pass(false);
        }
    }

    std::map<Action, Counts> seen;
    /// Regrets and dismissals by target.
    std::map<std::string, std::int64_t> against;
    /// Live actions by target, as the processes show them.
    std::map<std::string, Action> open;
    /// Decisions that still wait for their outcome.
    std::size_t waiting() const { return m_scorer.open.size(); }
    std::size_t liveActions = 0;
    /// What must never be.
    std::size_t withoutApproval = 0;
    std::size_t twiceOpen = 0;
    std::size_t heldWithoutAction = 0;

private:
    static constexpr int apps = 12;
    static constexpr int parts = 2;
    static std::string nameOf(int number) { return "App" + std::to_string(number); }
    static Pid pidOf(int number, int part) { return 100 + 10 * number + part; }

    bool chance(unsigned percent) { return m_random() % 100 < percent; }

    void allow(const std::set<Action>& actions) {
        m_allowed = actions;
        approve(actions);
    }
    void changeApprovals(int today) {
        static const std::set<Action> plans[]{{}, {Action::pause}, {Action::demote, Action::pause, Action::end}};
        allow(plans[today % 3]);
    }
    void changeConditions() {
        memory(chance(50) ? 10 : 50);
        load(chance(50) ? 12 : 2);
    }

    void pass(bool awake) {
        machine.clock.advance(60);
        if (!awake) machine.workspace.front.reset();
        if (awake && chance(12)) {
            m_front = static_cast<int>(m_random() % apps);
            machine.workspace.focus(nameOf(m_front));
            follow();
        }
        for (int number = 0; number < apps; ++number) work(number, awake && number == m_front);
        monitor->refresh();
        machine.loop.settle();
        score();
        follow();
        if (awake) answer();
    }

    /// A third of the applications idle, a third work for long, a third do a little now and then.
    void work(int number, bool inFront) {
        if (chance(3)) m_busy[number] = !m_busy[number];
        double percent = 0;
        if (number % 3 == 0) percent = chance(1) ? 30 : 0;
        if (number % 3 == 1) percent = m_busy[number] ? 60 : 0;
        if (number % 3 == 2) percent = m_busy[number] && chance(20) ? 8 : 0;
        if (inFront) percent += 20;
        for (int part = 0; part < parts; ++part) {
            auto* process = machine.processes.find(pidOf(number, part));
            process->cpuPercent = process->stopped ? 0 : percent;
        }
    }

    void score() {
        const auto step = m_scorer.step(monitor->shadow(), monitor->snapshot(), machine.workspace.front, now());
        for (const Decision& decision : step.opened) ++seen[decision.action].decided;
        for (const auto& settled : step.settled) {
            Counts& counts = seen[settled.decision.action];
            ++counts.resolved;
            if (settled.outcome == "held") continue;
            ++counts.regrets;
            ++against[settled.decision.target];
        }
    }

    /// Compares what is published with what the processes show.
    void follow() {
        std::map<std::string, Action> held;
        for (int number = 0; number < apps; ++number) {
            if (stopped(pidOf(number, 0))) held[nameOf(number)] = Action::pause;
            if (demoted(pidOf(number, 0))) held[nameOf(number)] = Action::demote;
        }
        std::erase_if(open, [&](const auto& one) { return !held.contains(one.first); });
        for (const LiveAction& action : monitor->live()) {
            if (!m_known.insert(action.id).second) continue;
            ++liveActions;
            if (!m_accepted && !m_allowed.contains(action.decision.action)) ++withoutApproval;
            if (action.decision.action == Action::end) ++withoutApproval;
            if (!open.emplace(action.decision.target, action.decision.action).second) ++twiceOpen;
        }
        if (held != open) ++heldWithoutAction;
    }

    void answer() {
        if (!monitor->live().empty() && chance(3)) {
            monitor->undoLive(monitor->live().front().id);
            follow();
        }
        if (monitor->suggestions().empty()) return;
        const Decision decision = monitor->suggestions().front();
        if (chance(3)) {
            m_accepted = true;
            monitor->acceptSuggestion(decision, now());
            ++seen[decision.action].accepted;
            follow();
            m_accepted = false;
        } else if (chance(1)) {
            monitor->dismissSuggestion(decision, now());
            ++seen[decision.action].dismissed;
            ++against[decision.target];
        }
    }

    std::mt19937 m_random;
    ShadowScorer m_scorer;
    std::set<Action> m_allowed;
    std::set<std::uint64_t> m_known;
    std::map<int, bool> m_busy;
    int m_front = -1;
    bool m_accepted = false;
};

}  // namespace ravik::fakes
