#include "Tests/Core/Watch/MonitorScene.h"

namespace ravik {

namespace {

class MonitorRoleTest : public fakes::MonitorScene {};

}  // namespace

TEST_F(MonitorRoleTest, OnceRetiredItHoldsNothingAndLooksAtNothing) {
    machine.readings.load = 20;
    machine.defaults.values["autopilotApproved"] = nlohmann::json::array({"demote"});
    add(200, "burner").cpuPercent = 90;
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(11);
    ASSERT_TRUE(machine.processes.find(200)->demoted);
    const std::size_t ticks = logFolder.lines("tick").size();
    machine.loop.holdBackground = true;
    monitor->refresh();
    monitor->retire();
    EXPECT_FALSE(machine.processes.find(200)->demoted);
    machine.loop.holdBackground = false;
    machine.loop.runFor(20);
    monitor->refresh();
    machine.loop.settle();
    EXPECT_FALSE(machine.processes.find(200)->demoted);
    EXPECT_EQ(logFolder.lines("tick").size(), ticks);
    EXPECT_EQ(logFolder.lines("autopilotRelease").size(), 1u);
}

TEST_F(MonitorRoleTest, AReaderWritesNoLines) {
    orphan(200, "server");
    const auto monitor = make(Monitor::Role::reader);
    monitor->readNow();
    EXPECT_TRUE(monitor->snapshot().sampled);
    EXPECT_FALSE(monitor->snapshot().findings.empty());
    EXPECT_TRUE(logFolder.lines().empty());
}

TEST_F(MonitorRoleTest, AReaderTicksAndTellsNobody) {
    orphan(200, "server");
    machine.readings.load = 100;
    machine.watchLock.refusal = WatchLock::Refusal{812, "ravik watch (process 812) already watches."};
    const auto monitor = make(Monitor::Role::reader);
    monitor->takeOverWhenFree();
    monitor->start();
    machine.loop.runFor(3600);
    EXPECT_EQ(monitor->role(), Monitor::Role::reader);
    EXPECT_EQ(monitor->history().size(), 720u);
    EXPECT_FALSE(monitor->snapshot().findings.empty());
    EXPECT_TRUE(logFolder.lines().empty());
    EXPECT_TRUE(machine.notifier.posted.empty());
    EXPECT_TRUE(monitor->shadow().empty());
}

TEST_F(MonitorRoleTest, AReaderTakesOverWhenTheLockIsFree) {
    orphan(200, "server");
    machine.readings.load = 100;
    machine.watchLock.refusal = WatchLock::Refusal{812, "ravik watch (process 812) already watches."};
    const auto monitor = make(Monitor::Role::reader);
    int changes = 0;
    const auto observing =
        monitor->observe([&](Monitor::Change change) { changes += change == Monitor::Change::role; });
    monitor->takeOverWhenFree();
    monitor->start();
    machine.loop.runFor(12);
    ASSERT_TRUE(logFolder.lines().empty());

    machine.watchLock.refusal.reset();
    machine.loop.runFor(5);
    EXPECT_EQ(monitor->role(), Monitor::Role::watcher);
    EXPECT_TRUE(machine.watchLock.held);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(monitor->history().size(), 4u) << "what it has seen so far stays";
    EXPECT_EQ(logFolder.lines("tick").size(), 1u);
    EXPECT_EQ(logFolder.lines("finding").size(), 1u);
    machine.loop.runFor(3600);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(machine.notifier.posted.size(), 1u);
}

TEST_F(MonitorRoleTest, ANewWatcherLetsGoOfWhatAnEarlierOneHeld) {
    machine.processes.leftovers.push_back({"pause", "Slack", {300}, machine.clock.now()});
    machine.watchLock.refusal = WatchLock::Refusal{812, "ravik watch (process 812) already watches."};
    const auto monitor = make(Monitor::Role::reader);
    monitor->takeOverWhenFree();
    monitor->start();
    machine.loop.runFor(6);
    EXPECT_TRUE(monitor->releasedAtStart().empty()) << "the levers are the other one's";
    machine.watchLock.refusal.reset();
    machine.loop.runFor(6);
    EXPECT_EQ(monitor->releasedAtStart(), std::vector<std::string>{"Slack"});
    EXPECT_EQ(logFolder.lines("autopilotRelease").at(0)["why"], "restart");
}

TEST_F(MonitorRoleTest, AReaderThatDoesNotWaitForItStaysOne) {
    const auto monitor = make(Monitor::Role::reader);
    monitor->start();
    machine.loop.runFor(20);
    EXPECT_EQ(monitor->role(), Monitor::Role::reader);
    EXPECT_FALSE(machine.watchLock.held);
}

}  // namespace ravik
