#include <gtest/gtest.h>

#include "Core/Watch/Monitor.h"
#include "Tests/Fakes/FakeMachine.h"

namespace ravik {

namespace {

using fakes::FakeMachine;
using fakes::FakeProcess;

class MonitorEnd : public testing::Test {
protected:
    MonitorEnd() {
        machine.clock.advance(100000);
        start(200, 1);
        start(201, 200);
    }

    FakeProcess& start(Pid pid, Pid parent, std::string name = "node", std::uint32_t uid = 1000) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = parent;
        process.uid = uid;
        process.command = "/srv/" + name;
        process.name = std::move(name);
        process.started = machine.clock.now() - 5000;
        return machine.processes.add(process);
    }

    std::vector<Proc> list() {
        std::vector<Proc> procs;
        for (const auto& [pid, process] : machine.processes.all()) procs.push_back(machine.processes.proc(pid));
        return procs;
    }

    EndResult end(const Pids& pids, const std::vector<Proc>& procs, bool confirmed = false) {
        return Monitor::end(pids, procs, confirmed, machine.host, machine.processes, machine.processes);
    }

    FakeMachine machine;
};

}  // namespace

TEST_F(MonitorEnd, NothingToEndIsFullSuccess) {
    EXPECT_EQ(end({}, list()), EndResult(Ended{}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, EndsASafeTree) {
    EXPECT_EQ(end({200}, list()), EndResult(Ended{}));
    EXPECT_EQ(machine.processes.find(200), nullptr);
    EXPECT_EQ(machine.processes.find(201), nullptr);
}

TEST_F(MonitorEnd, RefusesAnotherUsersProcess) {
    start(300, 1, "cupsd", 0);
    EXPECT_EQ(end({300}, list()), EndResult(Refused{"[0] cupsd is not yours: listed, never ended"}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, OneForbiddenTreeRefusesTheWholeBatch) {
    start(300, 1);
    start(301, 300, "git");
    EXPECT_EQ(end({200, 300}, list()), EndResult(Refused{"a git operation in progress (git, pid 301)"}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, ABusyTreeNeedsAConfirmation) {
    machine.processes.find(201)->cpuPercent = 12.9;
    EXPECT_EQ(end({200}, list()), EndResult(NeedsConfirmation{"node is actively working (12% CPU)"}));
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_EQ(end({200}, list(), true), EndResult(Ended{}));
}

TEST_F(MonitorEnd, ATreeThatGainedAGitByAForkIsRefused) {
    const auto seen = list();
    start(202, 201, "git");
    EXPECT_EQ(end({200}, seen), EndResult(Refused{"a git operation in progress (git, pid 202)"}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, ATreeThatGainedAGitByAnExecIsRefused) {
    const auto seen = list();
    machine.processes.find(201)->name = "git";
    machine.processes.find(201)->command = "git push";
    EXPECT_EQ(end({200}, seen), EndResult(Refused{"a git operation in progress (git, pid 201)"}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, AMemberThatWasHandedOnStillCounts) {
    const auto seen = list();
    machine.processes.find(201)->ppid = 1;
    start(202, 201, "git");
    EXPECT_EQ(end({200}, seen), EndResult(Refused{"a git operation in progress (git, pid 202)"}));
}

TEST_F(MonitorEnd, ARootThatHasBecomeAnotherUsersIsRefused) {
    const auto seen = list();
    machine.processes.find(200)->uid = 0;
    EXPECT_EQ(end({200}, seen), EndResult(Refused{"[0] node is not yours: listed, never ended"}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, AChildThatHasBecomeAnotherUsersGetsNoSignal) {
    const auto seen = list();
    machine.processes.find(201)->uid = 0;
    EXPECT_EQ(end({200}, seen), EndResult(Ended{}));
    for (const auto& sent : machine.processes.sent) EXPECT_EQ(sent.pid, 200);
}

TEST_F(MonitorEnd, APidThatIsNotInTheListComesBackAsSurvivor) {
    EXPECT_EQ(end({999}, list()), EndResult(Ended{{999}}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, ATreeInWhichTheProgramItselfRunsIsRefused) {
    start(machine.host.pid, 201, "ravik");
    EXPECT_EQ(end({200}, list()), EndResult(Refused{"Ravik itself runs in it (pid 50)"}));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(MonitorEnd, AMemberThatLivesAndCannotBeReadAgainIsNotSignalled) {
    const auto seen = list();
    machine.processes.unreadable = {201};
    EXPECT_EQ(end({200}, seen), EndResult(Refused{"node could not be checked again (pid 201)"}));
    EXPECT_TRUE(machine.processes.sent.empty());
    machine.processes.end(201);
    EXPECT_EQ(end({200}, seen), EndResult(Ended{}));
}

TEST_F(MonitorEnd, ALaterTreeThatGainsAGitWhileAnEarlierEndsIsLeftRunning) {
    start(300, 1);
    const auto seen = list();
    machine.processes.find(200)->termDelay = 2;
    bool forked = false;
    machine.processes.onStep = [&] {
        if (!machine.processes.sent.empty() && !std::exchange(forked, true)) start(302, 300, "git");
    };
    EXPECT_EQ(end({200, 300}, seen), EndResult(Ended{{300}}));
    for (const auto& sent : machine.processes.sent) EXPECT_LT(sent.pid, 300);
}

}  // namespace ravik
