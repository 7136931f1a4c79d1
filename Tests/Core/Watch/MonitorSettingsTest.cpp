#include "Tests/Core/Watch/MonitorScene.h"

namespace ravik {

namespace {

using fakes::FakeProcess;
using nlohmann::json;

class MonitorSettingsTest : public fakes::MonitorScene {};

}  // namespace

TEST_F(MonitorSettingsTest, AStoredThresholdsValueIsRewrittenAtOnce) {
    json stored = Thresholds{}.encode();
    stored["swapGB"] = 4;
    machine.defaults.values["thresholds"] = stored;
    const auto monitor = make();
    EXPECT_EQ(monitor->thresholds().swapGB, 4.0);
    EXPECT_EQ(machine.defaults.writes, 1);
}

TEST_F(MonitorSettingsTest, AnUnreadableThresholdsValueStaysAsItIs) {
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

TEST_F(MonitorSettingsTest, AKeptCommandCountsFromTheNextTick) {
    orphan(200, "server");
    const auto monitor = make();
    monitor->start();
    machine.loop.settle();
    EXPECT_NE(monitor->snapshot().freeableBytes(), 0u);
    machine.defaults.values["keepRunning"] = json::array({"/srv/server"});
    machine.loop.runFor(5);
    EXPECT_EQ(monitor->snapshot().freeableBytes(), 0u);
}

TEST_F(MonitorSettingsTest, LimitsChangedByAnotherProcessCountFromTheNextTick) {
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

TEST_F(MonitorSettingsTest, LimitsTakenAwayByAnotherProcessFallBackToTheDefaults) {
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

TEST_F(MonitorSettingsTest, AFixByAnotherProcessIsTheLastFixFromTheNextTick) {
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

TEST_F(MonitorSettingsTest, OneLimitThatGivesWayToAnotherKeepsTheClockOfTheBreach) {
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

TEST_F(MonitorSettingsTest, TheRuleForLeftoversEndsWhatIsOldAndSafe) {
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

}  // namespace ravik
