#include "Core/Watch/Monitor.h"

#include <chrono>
#include <cmath>

#include <gtest/gtest.h>

#include "Core/Wording/Fmt.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik {

namespace {

using fakes::FakeMachine;
using fakes::FakeProcess;
using nlohmann::json;

constexpr std::uint64_t mib = 1ull << 20;

class MonitorTest : public testing::Test {
protected:
    MonitorTest() {
        machine.clock.advance(100000);
        machine.host.pid = 50;
        add(50, "ravik").command = "/opt/ravik/bin/ravik-desktop";
    }

    FakeProcess& add(Pid pid, std::string name, std::uint64_t bytes = 10 * mib) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = 2;
        process.command = "/srv/" + name;
        process.name = std::move(name);
        process.started = machine.clock.now() - 10;
        process.footprintBytes = bytes;
        return machine.processes.add(process);
    }

    FakeProcess& orphan(Pid pid, std::string name) {
        FakeProcess& process = add(pid, std::move(name), 100 * mib);
        process.ppid = 1;
        process.started = machine.clock.now() - 7200;
        return process;
    }

    std::unique_ptr<Monitor> make(Monitor::Role role = Monitor::Role::watcher) {
        return std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, role);
    }

    FakeMachine machine;
    fakes::LogFolder logFolder{machine.clock};
};

}  // namespace

TEST_F(MonitorTest, HoldsAPlaceholderBeforeTheFirstReading) {
    const auto monitor = make();
    EXPECT_FALSE(monitor->snapshot().sampled);
    EXPECT_EQ(monitor->snapshot().stats, SystemStats{});
    EXPECT_EQ(monitor->snapshot().stats.gpuPercent, -1);
    EXPECT_EQ(monitor->snapshot().takenAt, machine.clock.now());
}

TEST_F(MonitorTest, StartTicksAtOnceAndThenByTheInterval) {
    const auto monitor = make();
    monitor->start();
    machine.loop.settle();
    EXPECT_TRUE(monitor->snapshot().sampled);
    machine.loop.runFor(12);
    EXPECT_EQ(logFolder.lines("tick").size(), 3u);
    EXPECT_EQ(monitor->history().size(), 3u);
}

TEST_F(MonitorTest, AFiringDuringATickOnlyCountsAsSkipped) {
    const auto monitor = make();
    machine.loop.holdBackground = true;
    monitor->start();
    machine.loop.runFor(15);
    EXPECT_TRUE(logFolder.lines().empty());
    machine.loop.holdBackground = false;
    machine.loop.settle();
    const auto lines = logFolder.lines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0]["kind"], "skippedTicks");
    EXPECT_EQ(lines[0]["n"], 3);
    EXPECT_EQ(lines[1]["kind"], "tick");
    machine.loop.runFor(5);
    EXPECT_EQ(logFolder.lines("skippedTicks").size(), 1u);
}

TEST_F(MonitorTest, OnceRetiredItHoldsNothingAndLooksAtNothing) {
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

TEST_F(MonitorTest, TheTickLineHoldsTheReading) {
    machine.readings.swapUsed = 3ull << 29;
    machine.readings.diskFree = 100ull << 30;
    machine.readings.load = 1.25;
    machine.readings.gpu = 42;
    add(60, "big", 300 * mib);
    const auto monitor = make();
    monitor->refresh();
    machine.loop.settle();
    const json line = logFolder.lines("tick").at(0);
    EXPECT_EQ(line["session"], "0123ABCD");
    EXPECT_EQ(line["swapGB"], 1.5);
    EXPECT_EQ(line["swapOutMBps"], 0.0);
    EXPECT_EQ(line["memFreePct"], 50);
    EXPECT_EQ(line["diskFreeGB"], 100.0);
    EXPECT_EQ(line["load"], 1.25);
    EXPECT_EQ(line["gpu"], 42);
    EXPECT_EQ(line["procs"], 2);
    EXPECT_EQ(line["orphans"], 0);
    EXPECT_EQ(line["hogs"], 0);
    EXPECT_EQ(line["sessions"], 0);
    EXPECT_EQ(line["breaches"], json::array());
    EXPECT_EQ(line["top"], json::parse(R"([["big",300],["ravik-desktop",10]])"));
}

TEST_F(MonitorTest, AtMostFiveGroupsStandInTop) {
    for (Pid pid = 60; pid < 67; ++pid) add(pid, "p" + std::to_string(pid), pid * mib);
    const auto monitor = make();
    monitor->readNow();
    monitor->refresh();
    machine.loop.settle();
    const json top = logFolder.lines("tick").at(0)["top"];
    ASSERT_EQ(top.size(), 5u);
    EXPECT_EQ(top[0], json::array({"p66", 66}));
}

TEST_F(MonitorTest, NoGroupsGiveAnEmptyTop) {
    machine.processes.end(50);
    const auto monitor = make();
    monitor->refresh();
    machine.loop.settle();
    EXPECT_EQ(logFolder.lines("tick").at(0)["top"], json::array());
    EXPECT_TRUE(logFolder.lines("self").empty());
}

TEST_F(MonitorTest, WritesALineOfItself) {
    const auto monitor = make();
    monitor->refresh();
    machine.loop.settle();
    const json line = logFolder.lines("self").at(0);
    EXPECT_EQ(line["mb"], 10);
    EXPECT_EQ(line["cpu"], 0.0);
}

TEST_F(MonitorTest, AReaderWritesNoLines) {
    orphan(200, "server");
    const auto monitor = make(Monitor::Role::reader);
    monitor->readNow();
    EXPECT_TRUE(monitor->snapshot().sampled);
    EXPECT_FALSE(monitor->snapshot().findings.empty());
    EXPECT_TRUE(logFolder.lines().empty());
}

TEST_F(MonitorTest, AReaderTicksAndTellsNobody) {
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

TEST_F(MonitorTest, AReaderTakesOverWhenTheLockIsFree) {
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

TEST_F(MonitorTest, ANewWatcherLetsGoOfWhatAnEarlierOneHeld) {
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

TEST_F(MonitorTest, AReaderThatDoesNotWaitForItStaysOne) {
    const auto monitor = make(Monitor::Role::reader);
    monitor->start();
    machine.loop.runFor(20);
    EXPECT_EQ(monitor->role(), Monitor::Role::reader);
    EXPECT_FALSE(machine.watchLock.held);
}

TEST_F(MonitorTest, HistorySpansAnHour) {
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(4000);
    EXPECT_EQ(monitor->history().size(), 720u);
    monitor->setInterval(7);
    machine.loop.runFor(7);
    EXPECT_EQ(monitor->history().size(), 514u);
}

TEST_F(MonitorTest, ANonsensicalIntervalCountsAsTheShortest) {
    const auto monitor = make();
    monitor->setInterval(0);
    monitor->start();
    machine.loop.runFor(0.01);
    EXPECT_GE(monitor->history().size(), 2u);
    monitor->setInterval(-3);
    machine.loop.runFor(0.01);
    EXPECT_GE(monitor->history().size(), 4u);
    monitor->setInterval(std::nan(""));
    EXPECT_EQ(monitor->interval(), 0.001);
}

TEST_F(MonitorTest, ANewIntervalTicksAtOnce) {
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(1);
    monitor->setInterval(30);
    machine.loop.settle();
    EXPECT_EQ(monitor->history().size(), 2u);
    machine.loop.runFor(29);
    EXPECT_EQ(monitor->history().size(), 2u);
    machine.loop.runFor(1);
    EXPECT_EQ(monitor->history().size(), 3u);
}

TEST_F(MonitorTest, AFindingIsLoggedOnceARunAndInEveryDiagnosis) {
    orphan(200, "server");
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(5);
    const FakeProcess kept = *machine.processes.find(200);
    machine.processes.end(200);
    machine.loop.runFor(5);
    machine.processes.add(kept);
    machine.loop.runFor(5);
    EXPECT_EQ(logFolder.lines("finding").size(), 1u);
    const auto diagnoses = logFolder.lines("diagnosis");
    ASSERT_EQ(diagnoses.size(), 3u);
    EXPECT_EQ(diagnoses[2]["findings"], json::array({"orphan:200"}));
    EXPECT_EQ(diagnoses[2]["reclaimableMB"], 100);
    const json line = logFolder.lines("finding").at(0);
    EXPECT_EQ(line["id"], "orphan:200");
    EXPECT_EQ(line["severity"], 1);
    EXPECT_EQ(line["title"], "server has run 2 h with no terminal");
    EXPECT_EQ(line["gainMB"], 100);
}

TEST_F(MonitorTest, EvidenceIsCutTo160CharactersInTheLog) {
    // Four leftover groups with long names make a long evidence.
    for (Pid pid = 200; pid < 204; ++pid) {
        orphan(pid, "node").command = "/tmp/mcp-" + std::string(60, static_cast<char>('a' + pid - 200));
    }
    const auto monitor = make();
    monitor->refresh();
    machine.loop.settle();
    ASSERT_GT(monitor->snapshot().findings.at(0).evidence.size(), 200u);
    const std::string logged = logFolder.lines("finding").at(0)["evidence"];
    EXPECT_EQ(logged, std::string(Fmt::firstScalars(monitor->snapshot().findings[0].evidence, 160)));
}

TEST_F(MonitorTest, TheFirstAlertIsNotHeldBackAndLaterOnesKeepTheirDistance) {
    machine.readings.diskFree = 5ull << 30;  // critical "disk", and a breach
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(595);
    EXPECT_TRUE(logFolder.lines("notify").empty());
    machine.loop.runFor(5);
    const auto first = logFolder.lines("notify");
    ASSERT_EQ(first.size(), 1u);
    EXPECT_EQ(first[0]["causes"], json::array({"breach", "disk"}));
    EXPECT_EQ(first[0]["breaches"], json::array({"disk 5 GB free"}));
    EXPECT_EQ(first[0]["title"], "Only 5 GB of disk is free — swap cannot grow");
    ASSERT_EQ(machine.notifier.posted.size(), 1u);
}

TEST_F(MonitorTest, ACauseDueTooSoonAfterAnAlertIsTriedAgain) {
    machine.readings.diskFree = 5ull << 30;
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(300);
    // Swapping starts 300 s later, so it is due 300 s after the first alert.
    std::uint64_t pages = 0;
    const auto swap = machine.loop.every(1, [&] { machine.readings.memoryReading->swapOutPages = pages += 10000; });
    machine.loop.runFor(300);
    ASSERT_EQ(logFolder.lines("notify").size(), 1u);
    machine.loop.runFor(600);
    EXPECT_EQ(logFolder.lines("notify").size(), 1u);
    machine.loop.runFor(5);
    const auto alerts = logFolder.lines("notify");
    ASSERT_EQ(alerts.size(), 2u);
    EXPECT_EQ(alerts[1]["causes"], json::array({"thrash"}));
    machine.loop.cancel(swap);
}

TEST_F(MonitorTest, AStoredThresholdsValueIsRewrittenAtOnce) {
    json stored = Thresholds{}.encode();
    stored["swapGB"] = 4;
    machine.defaults.values["thresholds"] = stored;
    const auto monitor = make();
    EXPECT_EQ(monitor->thresholds().swapGB, 4.0);
    EXPECT_EQ(machine.defaults.writes, 1);
}

TEST_F(MonitorTest, AnUnreadableThresholdsValueStaysAsItIs) {
    for (const json& stored : {json("nonsense"), json{{"swapGB", 4}}, [] {
                                   json wrong = Thresholds{}.encode();
                                   wrong["diskFreeGB"] = "many";
                                   return wrong;
                               }()}) {
        machine.defaults.values["thresholds"] = stored;
        EXPECT_EQ(make()->thresholds(), Thresholds{});
        EXPECT_EQ(machine.defaults.values["thresholds"], stored);
    }
    EXPECT_EQ(machine.defaults.writes, 0);
}

TEST_F(MonitorTest, AKeptCommandCountsFromTheNextTick) {
    orphan(200, "server");
    const auto monitor = make();
    monitor->start();
    machine.loop.settle();
    EXPECT_NE(monitor->snapshot().freeableBytes(), 0u);
    machine.defaults.values["keepRunning"] = json::array({"/srv/server"});
    machine.loop.runFor(5);
    EXPECT_EQ(monitor->snapshot().freeableBytes(), 0u);
}

TEST_F(MonitorTest, LimitsChangedByAnotherProcessCountFromTheNextTick) {
    const auto monitor = make();
    monitor->start();
    machine.loop.settle();
    Thresholds limits;
    limits.memoryFreePct = 90;
    machine.defaults.values["thresholds"] = limits.encode();
    machine.defaults.changedBehind = true;
    machine.loop.runFor(5);
    EXPECT_EQ(monitor->snapshot().breaches, std::vector<std::string>{"memory free 50%"});
}

TEST_F(MonitorTest, LimitsTakenAwayByAnotherProcessFallBackToTheDefaults) {
    for (const std::optional<json>& left : {std::optional<json>(), std::optional<json>("nonsense")}) {
        Thresholds limits;
        limits.autoEndLeftovers = true;
        machine.defaults.values["thresholds"] = limits.encode();
        const auto monitor = make();
        monitor->start();
        machine.loop.settle();
        EXPECT_TRUE(monitor->thresholds().autoEndLeftovers);
        machine.defaults.values.erase("thresholds");
        if (left) machine.defaults.values["thresholds"] = *left;
        machine.defaults.changedBehind = true;
        machine.loop.runFor(5);
        EXPECT_EQ(monitor->thresholds(), Thresholds{});
        EXPECT_EQ(machine.defaults.values.contains("thresholds"), left.has_value());
    }
}

TEST_F(MonitorTest, AFixByAnotherProcessIsTheLastFixFromTheNextTick) {
    const auto monitor = make();
    int told = 0;
    const auto held = monitor->observe([&](Monitor::Change change) { told += change == Monitor::Change::lastFix; });
    monitor->start();
    machine.clock.advance(0.5);
    monitor->recordFix("Ended 1 process, freed 80 MB");
    machine.defaults.changedBehind = true;
    machine.loop.runFor(5);
    EXPECT_EQ(told, 1);
    machine.defaults.values["lastFix"] = {{"at", "2026-03-01T09:30:15Z"}, {"line", "Ended 2 processes, freed 1.0 GB"}};
    machine.defaults.changedBehind = true;
    machine.loop.runFor(5);
    EXPECT_EQ(told, 2);
    EXPECT_EQ(monitor->lastFix(), (LastFix{1772357415, "Ended 2 processes, freed 1.0 GB"}));
}

TEST_F(MonitorTest, TellsAnObserverNothingOnceItsSubscriptionHasEnded) {
    auto monitor = make();
    int told = 0;
    auto held = monitor->observe([&](Monitor::Change) { ++told; });
    monitor->setInterval(2);
    EXPECT_EQ(told, 1);
    held.end();
    monitor->setInterval(3);
    EXPECT_EQ(told, 1);
}

TEST_F(MonitorTest, AScreenMayGoWhileTheReadingIsPublishedAndOutliveTheMonitor) {
    auto monitor = make();
    int closed = 0;
    int open = 0;
    Subscription screen = monitor->observe([&](Monitor::Change change) {
        if (change != Monitor::Change::snapshot) return;
        ++closed;
        screen.end();
    });
    Subscription other = monitor->observe([&](Monitor::Change change) { open += change == Monitor::Change::snapshot; });
    monitor->start();
    machine.loop.runFor(10);
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(open, 3);
    monitor.reset();
    other.end();
}

TEST_F(MonitorTest, OneLimitThatGivesWayToAnotherKeepsTheClockOfTheBreach) {
    machine.readings.load = 17;
    const auto monitor = make();
    monitor->start();
    machine.loop.runFor(300);
    machine.readings.load = 0.5;
    machine.readings.swapUsed = 9ull << 30;
    machine.loop.runFor(295);
    EXPECT_TRUE(logFolder.lines("notify").empty());
    machine.loop.runFor(5);
    const auto lines = logFolder.lines("notify");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["causes"], json::array({"breach"}));
}

TEST_F(MonitorTest, WhetherNotificationsAreDeniedIsLoggedWhenItChanges) {
    const auto monitor = make();
    EXPECT_EQ(monitor->notificationsDenied(), std::nullopt);
    monitor->checkNotifications();
    monitor->checkNotifications();
    EXPECT_EQ(monitor->notificationsDenied(), false);
    machine.notifier.denied = true;
    monitor->checkNotifications();
    monitor->checkNotifications();
    EXPECT_EQ(monitor->notificationsDenied(), true);
    const auto lines = logFolder.lines("notifications");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0]["denied"], false);
    EXPECT_EQ(lines[1]["denied"], true);
}

TEST_F(MonitorTest, TheRuleForLeftoversEndsWhatIsOldAndSafe) {
    orphan(200, "node").command = "/tmp/mcp-a";
    orphan(201, "node").command = "/tmp/mcp-b";
    machine.processes.find(201)->started = machine.clock.now() - 3601;
    FakeProcess& git = add(202, "git");
    git.ppid = 201;
    orphan(203, "node").command = "/tmp/mcp-kept";
    machine.defaults.values["keepRunning"] = json::array({"/tmp/mcp-kept"});
    const auto monitor = make();
    Thresholds limits;
    limits.autoEndLeftovers = true;
    limits.autoLeftoverMinHours = 1.5;
    monitor->setThresholds(limits);
    monitor->refresh();
    machine.loop.settle();
    EXPECT_EQ(machine.processes.find(200), nullptr);
    EXPECT_NE(machine.processes.find(201), nullptr);
    EXPECT_NE(machine.processes.find(203), nullptr);
    const json line = logFolder.lines("autopilot").at(0);
    EXPECT_EQ(line["ended"], 1);
    EXPECT_EQ(line["mb"], 100);
    EXPECT_EQ(line["survivors"], json::array());
}

TEST_F(MonitorTest, TicksRunAThousandTimesFasterThanTime) {
    for (Pid pid = 1000; pid < 1298; ++pid) add(pid, "p" + std::to_string(pid % 60));
    orphan(200, "server");
    const auto monitor = make();
    // A whole day where the compiler has optimised; the fifth of an hour elsewhere.
#ifdef NDEBUG
    const double span = 86400;
#else
    const double span = 720;
#endif
    const auto begin = std::chrono::steady_clock::now();
    monitor->start();
    machine.loop.runFor(span);
    const double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    EXPECT_EQ(logFolder.lines("tick").size(), static_cast<std::size_t>(span / 5) + 1);
    std::printf("%g ticks of 300 processes took %.1f s, %.0f times faster than time\n", span / 5, took, span / took);
#ifdef NDEBUG
    EXPECT_GE(span / took, 1000.0);
#endif
}

}  // namespace ravik
