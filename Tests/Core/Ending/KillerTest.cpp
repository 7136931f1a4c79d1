#include "Core/Ending/Killer.h"

#include <type_traits>

#include <gtest/gtest.h>

#include "Tests/Fakes/FakeMachine.h"

namespace ravik {

namespace {

using fakes::FakeMachine;
using fakes::FakeProcess;

/// A machine with one tree: 200 has the child 201, which has the child 202.
class KillerTest : public testing::Test {
protected:
    KillerTest() {
        machine.clock.advance(1000);
        start(200, 1);
        start(201, 200);
        start(202, 201);
    }

    FakeProcess& start(Pid pid, Pid parent, std::uint32_t uid = 1000) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = parent;
        process.uid = uid;
        process.name = "node";
        process.command = "/srv/app/run";
        process.started = machine.clock.now() - 500;
        return machine.processes.add(process);
    }

    std::vector<Proc> list() {
        std::vector<Proc> procs;
        for (const auto& [pid, process] : machine.processes.all()) procs.push_back(machine.processes.proc(pid));
        return procs;
    }

    Pids kill(Pid root, const std::vector<Proc>& procs, double grace = 3.0) {
        return Killer::killTree(root, procs, grace, machine.host, machine.processes);
    }

    std::vector<std::pair<Pid, Signal>> sent() const {
        std::vector<std::pair<Pid, Signal>> all;
        for (const auto& signal : machine.processes.sent) all.emplace_back(signal.pid, signal.signal);
        return all;
    }

    FakeMachine machine;
};

using Sent = std::vector<std::pair<Pid, Signal>>;

}  // namespace

TEST(VerifiedProcess, IsNotMadeOfABarePid) {
    static_assert(!std::is_constructible_v<VerifiedProcess, Pid>);
    static_assert(!std::is_constructible_v<VerifiedProcess, Pid, std::shared_ptr<const VerifiedProcess::Handle>>);
    static_assert(!std::is_default_constructible_v<VerifiedProcess>);
    static_assert(!std::is_invocable_v<decltype(&Signals::send), Signals&, Pid, Signal>);
    SUCCEED();
}

TEST_F(KillerTest, AnEmptyListYieldsTheRootAndNoSignal) {
    EXPECT_EQ(kill(200, {}), Pids{200});
    EXPECT_EQ(kill(999, list()), Pids{999});
    EXPECT_TRUE(sent().empty());
}

TEST_F(KillerTest, AnotherUsersRootYieldsTheRootAndNoSignal) {
    start(300, 1, 0);
    EXPECT_EQ(kill(300, list()), Pids{300});
    EXPECT_TRUE(sent().empty());
}

TEST_F(KillerTest, LeavesAReusedPidAloneAndItsListedChildrenToo) {
    const auto procs = list();
    FakeProcess stranger;
    stranger.pid = 200;
    stranger.started = machine.clock.now();
    machine.processes.add(stranger);
    EXPECT_EQ(kill(200, procs), Pids{});
    EXPECT_TRUE(sent().empty());
}

TEST_F(KillerTest, LeavesAnotherUsersChildOutInSilence) {
    start(203, 200, 0);
    EXPECT_EQ(kill(200, list()), Pids{});
    EXPECT_EQ(sent(), (Sent{{200, Signal::terminate}, {201, Signal::terminate}, {202, Signal::terminate}}));
    EXPECT_NE(machine.processes.find(203), nullptr);
}

TEST_F(KillerTest, LeavesAChildWithAnotherStartOutInSilence) {
    const auto procs = list();
    FakeProcess stranger;
    stranger.pid = 202;
    stranger.started = machine.clock.now();
    machine.processes.add(stranger);
    EXPECT_EQ(kill(200, procs), Pids{});
    EXPECT_EQ(sent(), (Sent{{200, Signal::terminate}, {201, Signal::terminate}}));
    EXPECT_NE(machine.processes.find(202), nullptr);
}

TEST_F(KillerTest, WhatEndsDuringTheGraceGetsNoKill) {
    machine.processes.find(200)->termDelay = 1.5;
    EXPECT_EQ(kill(200, list()), Pids{});
    for (const auto& [pid, signal] : sent()) EXPECT_EQ(signal, Signal::terminate);
}

TEST_F(KillerTest, WhatIgnoresTermGetsKillAfterTheGrace) {
    machine.processes.find(201)->ignoresTerm = true;
    const Time before = machine.clock.now();
    EXPECT_EQ(kill(200, list()), Pids{});
    const auto& last = machine.processes.sent.back();
    EXPECT_EQ(last.pid, 201);
    EXPECT_EQ(last.signal, Signal::kill);
    EXPECT_NEAR(last.at - before, 3.0, 1e-6);
}

TEST_F(KillerTest, ATreeThatEndsAtOnceTakesTwoTenthsAndNoMore) {
    const Time before = machine.clock.now();
    EXPECT_EQ(kill(200, list()), Pids{});
    EXPECT_NEAR(machine.clock.now() - before, 0.2, 1e-6);
}

TEST_F(KillerTest, NoGraceMeansKillAtOnce) {
    machine.processes.find(202)->ignoresTerm = true;
    const Time before = machine.clock.now();
    EXPECT_EQ(kill(200, list(), 0), Pids{});
    EXPECT_NEAR(machine.processes.sent.back().at, before, 1e-6);
    EXPECT_EQ(machine.processes.sent.back().signal, Signal::kill);
}

TEST_F(KillerTest, NamesTheSurvivorsInListOrder) {
    for (const Pid pid : {201, 202}) {
        machine.processes.find(pid)->ignoresTerm = true;
        machine.processes.find(pid)->ignoresKill = true;
    }
    EXPECT_EQ(kill(200, list()), (Pids{201, 202}));
}

TEST_F(KillerTest, AStoppedTargetIsContinuedSoThatItHearsTerm) {
    machine.processes.find(201)->stopped = true;
    const Time before = machine.clock.now();
    EXPECT_EQ(kill(200, list()), Pids{});
    EXPECT_EQ(
        sent(),
        (Sent{{200, Signal::terminate}, {201, Signal::terminate}, {202, Signal::terminate}, {201, Signal::resume}}));
    EXPECT_NEAR(machine.clock.now() - before, 0.2, 1e-6);
}

TEST_F(KillerTest, SignalsGoOutInTheOrderOfTheList) {
    auto procs = list();
    std::swap(procs[0], procs[2]);
    kill(200, procs);
    EXPECT_EQ(sent(), (Sent{{202, Signal::terminate}, {201, Signal::terminate}, {200, Signal::terminate}}));
}

TEST_F(KillerTest, IsSameComparesWholeSeconds) {
    Proc proc = machine.processes.proc(200);
    EXPECT_TRUE(Killer::isSame(proc, machine.processes));
    proc.started += 0.9;
    EXPECT_TRUE(Killer::isSame(proc, machine.processes));
    proc.started += 0.1;
    EXPECT_FALSE(Killer::isSame(proc, machine.processes));
    proc.id = 999;
    EXPECT_FALSE(Killer::isSame(proc, machine.processes));
}

TEST_F(KillerTest, DescendantsEndInACircle) {
    machine.processes.find(200)->ppid = 202;
    EXPECT_EQ(Killer::descendants(200, list()), (Pids{201, 202}));
}

namespace {

class QuitTest : public KillerTest {
protected:
    bool quit(const std::string& name, double timeout = 30.0) {
        std::optional<bool> answer;
        spawn(Killer::quitApp(name, timeout, list(), machine.host, machine.platform),
              [&](bool gone) { answer = gone; });
        waited = 0;
        while (!answer && waited < 100) {
            machine.loop.runFor(0.05);
            waited += 0.05;
        }
        return answer.value();
    }

    void app(const std::string& name, Pid pid, double quitsAfter) {
        machine.workspace.apps.push_back({{name, name, pid}, quitsAfter});
    }

    double waited = 0;
};

}  // namespace

TEST_F(QuitTest, ANameThatNothingMatchesHasQuitAtOnce) {
    EXPECT_TRUE(quit("Nothing"));
    EXPECT_EQ(waited, 0);
}

TEST_F(QuitTest, AutomationCopiesAreLeftRunning) {
    FakeProcess& copy = start(300, 1);
    copy.command = "/opt/chrome --user-data-dir=/tmp/profile";
    copy.app = "Chrome";
    app("Chrome", 300, 0);
    EXPECT_TRUE(quit("Chrome"));
    EXPECT_EQ(waited, 0);
    EXPECT_LT(machine.workspace.apps[0].askedAt, 0);
}

TEST_F(QuitTest, OneThatStaysMeansTheWholeWaitAndNo) {
    app("Editor", 200, 1);
    app("Editor", 201, -1);
    EXPECT_FALSE(quit("Editor"));
    EXPECT_NEAR(waited, 30.0, 0.3);
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(QuitTest, ReturnsSoonAfterTheLastHasGone) {
    app("Editor", 200, 1);
    EXPECT_TRUE(quit("Editor"));
    EXPECT_NEAR(waited, 1.0, 0.3);
}

TEST_F(QuitTest, MatchesTheBundleOrTheDisplayName) {
    machine.workspace.apps.push_back({{"org.editor", "The Editor", 200}, 0});
    EXPECT_TRUE(quit("The Editor"));
    EXPECT_GE(machine.workspace.apps[0].askedAt, 0);
}

TEST_F(QuitTest, ContinuesAStoppedApplicationFirst) {
    start(300, 1).app = "Editor";
    machine.processes.find(300)->stopped = true;
    app("Editor", 300, 0);
    EXPECT_TRUE(quit("Editor"));
    EXPECT_EQ(sent(), (Sent{{300, Signal::resume}}));
}

TEST_F(QuitTest, AnApplicationThatCannotBeAskedHasNotQuit) {
    start(300, 1).app = "Editor";
    EXPECT_FALSE(quit("Editor"));
    EXPECT_EQ(waited, 0);
}

}  // namespace ravik
