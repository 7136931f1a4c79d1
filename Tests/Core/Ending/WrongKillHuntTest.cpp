#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "Core/Watch/Monitor.h"
#include "Tests/Fakes/FakeMachine.h"

namespace ravik {

namespace {

using fakes::FakeMachine;
using fakes::FakeProcess;

/// A machine whose processes fork, end, are replaced and become something else at every step of an ending.
class Turmoil {
public:
    explicit Turmoil(unsigned seed) : m_random(seed) {
        machine.clock.advance(100000);
        for (int count = 5 + pick(30); count > 0; --count) birth();
    }

    void shake() {
        if (pick(4) != 0) return;
        switch (pick(4)) {
            case 0: machine.processes.end(anyPid()); break;
            case 1: birth(); break;
            case 2: reuse(anyPid()); break;
            default: machine.clock.advance(0.01 * pick(100)); break;
        }
        if (machine.processes.all().empty()) birth();
    }

    Pid anyPid() {
        auto at = machine.processes.all().begin();
        std::advance(at, pick(static_cast<int>(machine.processes.all().size())));
        return at->first;
    }

    int pick(int below) { return std::uniform_int_distribution<int>(0, below - 1)(m_random); }

    FakeMachine machine;

private:
    FakeProcess make() {
        FakeProcess process;
        process.name = "worker";
        process.command = "/srv/worker";
        process.uid = pick(8) == 0 ? 0 : 1000;
        process.ppid = machine.processes.all().empty() || pick(4) == 0 ? 1 : anyPid();
        process.ignoresTerm = pick(4) == 0;
        process.ignoresKill = pick(20) == 0;
        process.stopped = pick(10) == 0;
        process.termDelay = 0.1 * pick(40);
        return process;
    }

    void birth() {
        FakeProcess process = make();
        // Few pids, so that they come round soon.
        process.pid = 100 + pick(60);
        if (!machine.processes.find(process.pid)) machine.processes.add(process);
    }

    void reuse(Pid pid) {
        FakeProcess process = make();
        process.pid = pid;
        // Half of them in the very second of the one they replace.
        if (pick(2) == 0) process.started = machine.processes.find(pid)->started;
        machine.processes.add(process);
    }

    std::mt19937 m_random;
};

}  // namespace

TEST(WrongKillHunt, NoSignalLeavesTheTreeThatWasSeen) {
    std::size_t signals = 0;
    std::size_t hits = 0;
    std::size_t foreign = 0;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        Turmoil turmoil(seed);
        FakeMachine& machine = turmoil.machine;
        std::vector<Proc> seen;
        for (const auto& [pid, process] : machine.processes.all()) seen.push_back(machine.processes.proc(pid));
        const Pid root = turmoil.anyPid();

        std::set<std::uint64_t> allowed;
        for (const Proc& proc : ProcessIndex(seen).tree(root)) {
            if (proc.uid == machine.host.uid) allowed.insert(proc.startTicks);
        }
        for (int steps = turmoil.pick(5); steps > 0; --steps) turmoil.shake();
        machine.processes.onStep = [&] { turmoil.shake(); };
        Monitor::end({root}, seen, true, machine.host, machine.processes, machine.processes);

        for (const fakes::SentSignal& sent : machine.processes.sent) {
            ++signals;
            if (allowed.contains(sent.life)) {
                ++hits;
            } else {
                ++foreign;
            }
        }
    }
    std::printf("%zu signals, %zu of them at the processes that were meant, %zu at others\n", signals, hits, foreign);
    EXPECT_GT(signals, 2000u);
    EXPECT_EQ(foreign, 0u);
}

}  // namespace ravik
