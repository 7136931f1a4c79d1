#include "Core/Wording/Fmt.h"
#include "Tests/Core/Watch/MonitorScene.h"

namespace ravik {

namespace {

using fakes::FakeProcess;
using fakes::mib;
using nlohmann::json;

class MonitorLinesTest : public fakes::MonitorScene {};

}  // namespace

TEST_F(MonitorLinesTest, TheTickLineHoldsTheReading) {
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

TEST_F(MonitorLinesTest, AtMostFiveGroupsStandInTop) {
    for (Pid pid = 60; pid < 67; ++pid) add(pid, "p" + std::to_string(pid), pid * mib);
    const auto monitor = make();
    monitor->readNow();
    monitor->refresh();
    machine.loop.settle();
    const json top = logFolder.lines("tick").at(0)["top"];
    ASSERT_EQ(top.size(), 5u);
    EXPECT_EQ(top[0], json::array({"p66", 66}));
}

TEST_F(MonitorLinesTest, NoGroupsGiveAnEmptyTop) {
    machine.processes.end(50);
    const auto monitor = make();
    monitor->refresh();
    machine.loop.settle();
    EXPECT_EQ(logFolder.lines("tick").at(0)["top"], json::array());
    EXPECT_TRUE(logFolder.lines("self").empty());
}

TEST_F(MonitorLinesTest, WritesALineOfItself) {
    const auto monitor = make();
    monitor->refresh();
    machine.loop.settle();
    const json line = logFolder.lines("self").at(0);
    EXPECT_EQ(line["mb"], 10);
    EXPECT_EQ(line["cpu"], 0.0);
}

TEST_F(MonitorLinesTest, AFindingIsLoggedOnceARunAndInEveryDiagnosis) {
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

TEST_F(MonitorLinesTest, EvidenceIsCutTo160CharactersInTheLog) {
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

TEST_F(MonitorLinesTest, WhetherNotificationsAreDeniedIsLoggedWhenItChanges) {
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

}  // namespace ravik
