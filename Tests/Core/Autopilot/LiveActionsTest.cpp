#include <gtest/gtest.h>

#include "Tests/Core/Autopilot/AutopilotDesk.h"

namespace ravik {

namespace {

using Action = Decision::Action;
using fakes::AutopilotDesk;
using nlohmann::json;

class LiveActions : public testing::Test, protected AutopilotDesk {
protected:
    /// "Foo" paused: idle, under pressure, approved.
    void pauseFoo() {
        app(60, "Foo");
        app(61, "Foo");
        approve({Action::pause});
        memory(19);
        tick();
        ASSERT_TRUE(stopped(60) && stopped(61));
    }
    /// "Foo" demoted: at work while the machine is busy.
    void demoteFoo() {
        app(60, "Foo").cpuPercent = 80;
        approve({Action::demote});
        load(8.5);
        tick();
        tick();
        ASSERT_TRUE(demoted(60));
    }
    /// The processes that were sent this.
    Pids sent(Signal signal) const {
        Pids pids;
        for (const auto& one : machine.processes.sent) {
            if (one.signal == signal) pids.push_back(one.pid);
        }
        return pids;
    }
};

void add(fakes::FakeMachine& machine, Pid pid) {
    fakes::FakeProcess process;
    process.pid = pid;
    process.name = "foo";
    machine.processes.add(process);
}

}  // namespace

TEST_F(LiveActions, WithoutAnApprovalNothingIsTouched) {
    app(60, "Foo");
    app(61, "Bar").cpuPercent = 80;
    tick();
    memory(19);
    load(9);
    tick();
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_FALSE(demoted(61));
    ASSERT_EQ(monitor->shadow().size(), 2u);
    EXPECT_TRUE(monitor->live().empty());
    EXPECT_EQ(lines("shadowDecision").size(), 2u);
}

TEST_F(LiveActions, AnApprovedPauseStopsTheAppAndIsLogged) {
    pauseFoo();
    EXPECT_EQ(sent(Signal::stop), (Pids{60, 61}));
    ASSERT_EQ(monitor->live().size(), 1u);
    const LiveAction& action = monitor->live()[0];
    EXPECT_EQ(action.decision.target, "Foo");
    EXPECT_EQ(action.pids, (Pids{60, 61}));
    EXPECT_EQ(action.at, now());
    EXPECT_EQ(action.undoneAt, std::nullopt);
    const json line = lines("autopilotAction").at(0);
    EXPECT_EQ(line["action"], "pause");
    EXPECT_EQ(line["target"], "Foo");
    EXPECT_EQ(line["pids"], 2);
    EXPECT_EQ(line["gainMB"], 600);
    EXPECT_EQ(line["reason"], "idle 31 min, not focused, memory under pressure");
    EXPECT_TRUE(monitor->shadow().empty());
    EXPECT_TRUE(monitor->suggestions().empty());
}

TEST_F(LiveActions, AnApprovedDemotionIsLogged) {
    demoteFoo();
    const json line = lines("autopilotAction").at(0);
    EXPECT_EQ(line["action"], "demote");
    EXPECT_EQ(line["pids"], 1);
    EXPECT_EQ(line["gainMB"], 0);
    EXPECT_EQ(line["reason"], "80% CPU in the background while your computer is busy");
}

TEST_F(LiveActions, AStoredApprovalOfEndingRunsNothing) {
    app(60, "Foo");
    leftover(70);
    machine.defaults.values["autopilotApproved"] = json::array({"end"});
    memory(19);
    tick();
    ASSERT_EQ(monitor->shadow().size(), 2u);
    EXPECT_EQ(monitor->shadow()[1].action, Action::end);
    EXPECT_TRUE(monitor->live().empty());
    EXPECT_TRUE(machine.processes.sent.empty());
    EXPECT_NE(machine.processes.find(70), nullptr);
    EXPECT_EQ(lines("shadowDecision").size(), 2u);
}

TEST_F(LiveActions, AnOpenTargetIsNeitherActedOnAgainNorScored) {
    pauseFoo();
    for (int i = 0; i < 5; ++i) tick();
    EXPECT_EQ(lines("autopilotAction").size(), 1u);
    EXPECT_EQ(sent(Signal::stop).size(), 2u);
    EXPECT_TRUE(lines("shadowDecision").empty());
    tick(3600);
    EXPECT_TRUE(lines("shadowOutcome").empty());
}

TEST_F(LiveActions, ATargetWhosePidsHaveAllGoneLeavesNoActionAndNoLine) {
    app(60, "Foo");
    memory(19);
    tick();
    const Snapshot before = monitor->snapshot();
    approve({Action::pause});
    machine.processes.end(60);
    monitor->runEngine(before, {}, now());
    EXPECT_TRUE(monitor->live().empty());
    EXPECT_TRUE(lines("autopilotAction").empty());
    EXPECT_TRUE(monitor->shadow().empty());
}

TEST_F(LiveActions, APidThatBelongsToAnotherProcessByNowIsLeftOut) {
    app(60, "Foo");
    app(61, "Foo");
    memory(19);
    tick();
    const Snapshot before = monitor->snapshot();
    approve({Action::pause});
    app(61, "Newcomer").started = now();
    monitor->runEngine(before, {}, now());
    EXPECT_EQ(monitor->live().at(0).pids, Pids{60});
    EXPECT_EQ(monitor->live()[0].decision.pids, (Pids{60, 61}));
    EXPECT_EQ(lines("autopilotAction").at(0)["pids"], 1);
    EXPECT_FALSE(stopped(61));
}

TEST_F(LiveActions, SwitchingToAPausedAppResumesItBeforeAnyTick) {
    pauseFoo();
    machine.clock.advance(150);
    machine.workspace.focus("Foo");
    EXPECT_EQ(sent(Signal::resume), (Pids{60, 61}));
    EXPECT_FALSE(stopped(60));
    EXPECT_TRUE(monitor->live().empty());
    const json line = lines("autopilotRelease").at(0);
    EXPECT_EQ(line["action"], "pause");
    EXPECT_EQ(line["target"], "Foo");
    EXPECT_EQ(line["why"], "focused");
    EXPECT_EQ(line["afterMin"], 2);
}

TEST_F(LiveActions, SwitchingToAnotherAppResumesNothing) {
    pauseFoo();
    machine.workspace.focus("Bar");
    EXPECT_TRUE(stopped(60));
    EXPECT_TRUE(lines("autopilotRelease").empty());
}

TEST_F(LiveActions, ATickThatFindsTheTargetInFrontReleasesItAsFocused) {
    pauseFoo();
    memory(50);  // the focus is named even where the condition has passed as well
    machine.workspace.front = "Foo";
    tick();
    EXPECT_FALSE(stopped(60));
    EXPECT_EQ(lines("autopilotRelease").at(0)["why"], "focused");
}

TEST_F(LiveActions, APauseIsReleasedWhenThePressureHasPassed) {
    pauseFoo();
    tick();
    EXPECT_TRUE(stopped(60));
    memory(20);
    tick();
    EXPECT_FALSE(stopped(60));
    EXPECT_EQ(lines("autopilotRelease").at(0)["why"], "condition passed");
    EXPECT_TRUE(monitor->live().empty());
}

TEST_F(LiveActions, APauseStaysWhileThereIsSwapTraffic) {
    pauseFoo();
    memory(50);
    machine.readings.memoryReading->swapOutPages += 2000;  // 4 KiB each, in 5 s: above 1 MiB a second
    tick();
    EXPECT_TRUE(stopped(60));
    machine.readings.memoryReading->swapOutPages += 1280;  // exactly 1 MiB a second
    tick();
    EXPECT_FALSE(stopped(60));
}

TEST_F(LiveActions, ADemotionIsReleasedWhenLoadFallsToTheCoresWhateverThePressure) {
    demoteFoo();
    memory(5);
    load(8.1);
    tick();
    EXPECT_TRUE(demoted(60));
    load(8);
    tick();
    EXPECT_FALSE(demoted(60));
    EXPECT_EQ(lines("autopilotRelease").at(0)["why"], "condition passed");
}

TEST_F(LiveActions, WhatWasReleasedIsPausedAgainWhenPressureReturns) {
    pauseFoo();
    memory(50);
    tick();
    memory(10);
    tick();
    EXPECT_TRUE(stopped(60));
    EXPECT_EQ(lines("autopilotAction").size(), 2u);
    ASSERT_EQ(monitor->live().size(), 1u);
}

TEST_F(LiveActions, UndoReleasesAndPublishes) {
    pauseFoo();
    machine.clock.advance(61);
    monitor->undoLive(monitor->live().at(0).id);
    EXPECT_FALSE(stopped(60));
    EXPECT_TRUE(monitor->live().empty());
    const json line = lines("autopilotRelease").at(0);
    EXPECT_EQ(line["why"], "undo");
    EXPECT_EQ(line["afterMin"], 1);
}

TEST_F(LiveActions, UndoOfWhatIsAlreadyReleasedDoesNothing) {
    pauseFoo();
    const std::uint64_t id = monitor->live().at(0).id;
    monitor->undoLive(id);
    monitor->undoLive(id);
    EXPECT_EQ(lines("autopilotRelease").size(), 1u);
    EXPECT_EQ(sent(Signal::resume).size(), 2u);
}

TEST_F(LiveActions, TheButtonGoesAfterTenMinutesAndThePauseStays) {
    pauseFoo();
    const std::uint64_t id = monitor->live().at(0).id;
    tick(599);
    EXPECT_EQ(monitor->live().size(), 1u);
    tick(1);
    EXPECT_TRUE(monitor->live().empty());
    EXPECT_TRUE(stopped(60));
    monitor->undoLive(id);
    EXPECT_TRUE(stopped(60));
    tick(3600);
    EXPECT_TRUE(stopped(60));
    EXPECT_EQ(lines("autopilotAction").size(), 1u);
    machine.workspace.focus("Foo");
    EXPECT_FALSE(stopped(60));
}

TEST_F(LiveActions, QuittingReleasesAll) {
    app(62, "Bar");
    pauseFoo();
    ASSERT_TRUE(stopped(62));
    machine.clock.advance(130);
    monitor->releaseAllLive();
    EXPECT_FALSE(stopped(60) || stopped(61) || stopped(62));
    const auto released = lines("autopilotRelease");
    ASSERT_EQ(released.size(), 2u);
    for (const json& line : released) {
        EXPECT_EQ(line["why"], "quit");
        EXPECT_EQ(line["afterMin"], 2);
    }
    monitor->releaseAllLive();
    EXPECT_EQ(lines("autopilotRelease").size(), 2u);
}

TEST_F(LiveActions, WhereTheFocusIsUnknownNothingIsPaused) {
    machine.workspace.focusKnown = false;
    app(60, "Foo");
    approve({Action::pause});
    memory(10);
    tick();
    EXPECT_FALSE(stopped(60));
    ASSERT_EQ(monitor->shadow().size(), 1u);
    EXPECT_TRUE(monitor->suggestions().empty());
    monitor->acceptSuggestion(monitor->shadow()[0], now());
    EXPECT_FALSE(stopped(60));
    EXPECT_TRUE(lines("suggestionAccepted").empty());
}

TEST_F(LiveActions, WhatWasPausedIsReleasedWhenTheFocusBecomesUnknown) {
    pauseFoo();
    machine.workspace.focusKnown = false;
    tick();
    EXPECT_FALSE(stopped(60));
}

TEST_F(LiveActions, WhereThereIsNoLeverForADemotionNoneIsClaimed) {
    machine.processes.canDemote = false;
    app(60, "Foo").cpuPercent = 80;
    approve({Action::demote});
    load(9);
    tick();
    tick();
    EXPECT_TRUE(monitor->live().empty());
    EXPECT_TRUE(lines("autopilotAction").empty());
    EXPECT_TRUE(lines("shadowDecision").empty());
}

TEST_F(LiveActions, AWithdrawnApprovalActsOnNothingMoreAndUndoesNothing) {
    pauseFoo();
    approve({});
    app(62, "Bar");
    tick();
    EXPECT_FALSE(stopped(62));
    EXPECT_TRUE(stopped(60));
    memory(50);
    tick();
    EXPECT_FALSE(stopped(60));
}

TEST(LiveLedger, RemembersWhatWasUndoneForTenMinutes) {
    fakes::FakeMachine machine;
    add(machine, 60);
    LiveLedger ledger(machine.processes);
    const Decision decision{Action::pause, "Foo", {60}, 0, ""};
    const auto action = ledger.carryOut(decision, {machine.processes.proc(60)}, 1000);
    ASSERT_TRUE(action);
    EXPECT_TRUE(ledger.isOpen("Foo"));
    ledger.prune(100000);
    EXPECT_EQ(ledger.actions().size(), 1u);
    ASSERT_TRUE(ledger.undo(action->id, 2000));
    EXPECT_FALSE(ledger.isOpen("Foo"));
    EXPECT_EQ(ledger.undo(action->id, 2001), std::nullopt);
    ledger.prune(2600);
    EXPECT_EQ(ledger.actions().size(), 1u);
    ledger.prune(2600.5);
    EXPECT_TRUE(ledger.actions().empty());
}

TEST(LiveLedger, EndingHasNoLever) {
    fakes::FakeMachine machine;
    add(machine, 60);
    LiveLedger ledger(machine.processes);
    EXPECT_FALSE(ledger.carryOut({Action::end, "Foo", {60}, 0, ""}, {machine.processes.proc(60)}, 1000));
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST(LiveLedger, APidWithoutARecordIsPassedOver) {
    fakes::FakeMachine machine;
    add(machine, 60);
    add(machine, 61);
    LiveLedger ledger(machine.processes);
    const auto action = ledger.carryOut({Action::demote, "Foo", {61, 60}, 0, ""}, {machine.processes.proc(60)}, 1000);
    ASSERT_TRUE(action);
    EXPECT_EQ(action->pids, Pids{60});
}

}  // namespace ravik
