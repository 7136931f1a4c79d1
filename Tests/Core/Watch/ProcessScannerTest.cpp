#include "Core/Watch/ProcessScanner.h"

#include <map>

#include <gtest/gtest.h>

#include "Tests/Fakes/FakeClock.h"

namespace ravik {

namespace {

/// A table of exactly what a test puts into it, in the order in which it lists it.
class ListedProcesses : public ProcessTable {
public:
    ProcessReading& add(Pid pid) {
        pids.push_back(pid);
        ProcessReading& reading = readings[pid];
        reading.id = pid;
        reading.name = "tool";
        return reading;
    }

    double nanosPerTick() const override { return rate; }
    void list(Pids& listed) override { listed = pids; }
    bool read(Pid pid, ProcessReading& reading) override {
        asked.push_back(pid);
        const auto found = readings.find(pid);
        if (found == readings.end()) return false;
        reading = found->second;
        return true;
    }
    Pids listFresh() const override { return pids; }
    bool readFresh(Pid, ProcessReading&) const override { return false; }
    std::optional<Time> startTime(Pid) const override { return {}; }
    std::optional<std::string> commandLine(Pid) const override { return {}; }

    double rate = 1;
    Pids pids;
    Pids asked;
    std::map<Pid, ProcessReading> readings;
};

struct ProcessScannerTest : testing::Test {
    fakes::FakeClock clock;
    ListedProcesses table;
    ProcessScanner scanner{table, clock};
};

}  // namespace

TEST_F(ProcessScannerTest, CarriesEveryFieldOver) {
    ProcessReading& reading = table.add(812);
    reading.ppid = 7;
    reading.uid = 501;
    reading.name = "node";
    reading.arguments.emplace("node server.js");
    reading.started = 1'759'990'000;
    reading.startTicks = 4711;
    reading.footprintBytes = 300;
    reading.app.emplace("Editor");

    const std::vector<Proc> procs = scanner.scan();

    ASSERT_EQ(procs.size(), 1U);
    Proc expected;
    expected.id = 812;
    expected.ppid = 7;
    expected.uid = 501;
    expected.name = "node";
    expected.command = "node server.js";
    expected.started = 1'759'990'000;
    expected.startTicks = 4711;
    expected.footprintBytes = 300;
    expected.app.emplace("Editor");
    EXPECT_EQ(procs.front(), expected);
}

TEST_F(ProcessScannerTest, KeepsTheOrderOfTheList) {
    for (const Pid pid : {30, 10, 20}) table.add(pid);
    const std::vector<Proc> procs = scanner.scan();
    ASSERT_EQ(procs.size(), 3U);
    EXPECT_EQ(procs[0].id, 30);
    EXPECT_EQ(procs[1].id, 10);
    EXPECT_EQ(procs[2].id, 20);
}

TEST_F(ProcessScannerTest, FirstSightShowsNoCpuAndTheNextScanTheRealFigure) {
    table.add(5).cpuTicks = 1'000'000'000;
    EXPECT_EQ(scanner.scan().front().cpuPercent, 0);

    clock.advance(2);
    table.readings[5].cpuTicks = 1'500'000'000;
    EXPECT_DOUBLE_EQ(scanner.scan().front().cpuPercent, 25);
}

TEST_F(ProcessScannerTest, AppliesTheTimebase) {
    table.rate = 125.0 / 3.0;
    table.add(5).cpuTicks = 0;
    scanner.scan();

    clock.advance(1);
    table.readings[5].cpuTicks = 24'000'000;
    EXPECT_DOUBLE_EQ(scanner.scan().front().cpuPercent, 100.0);
}

TEST_F(ProcessScannerTest, SeveralCoresPassAHundred) {
    table.add(5).cpuTicks = 0;
    scanner.scan();
    clock.advance(1);
    table.readings[5].cpuTicks = 3'500'000'000;
    EXPECT_DOUBLE_EQ(scanner.scan().front().cpuPercent, 350);
}

TEST_F(ProcessScannerTest, ScansWithinOneClockReadingShowNoCpuButCountAnew) {
    table.add(5).cpuTicks = 0;
    scanner.scan();
    table.readings[5].cpuTicks = 900'000'000;
    EXPECT_EQ(scanner.scan().front().cpuPercent, 0);

    clock.advance(1);
    table.readings[5].cpuTicks = 1'000'000'000;
    EXPECT_DOUBLE_EQ(scanner.scan().front().cpuPercent, 10);
}

TEST_F(ProcessScannerTest, AClockThatWentBackShowsNoCpu) {
    table.add(5).cpuTicks = 0;
    scanner.scan();
    clock.advance(-3);
    table.readings[5].cpuTicks = 1'000'000'000;
    EXPECT_EQ(scanner.scan().front().cpuPercent, 0);
}

TEST_F(ProcessScannerTest, TicksThatWentDownShowOneEnormousFigure) {
    table.add(5).cpuTicks = 1'000;
    scanner.scan();

    clock.advance(1);
    table.readings[5].cpuTicks = 400;
    EXPECT_GT(scanner.scan().front().cpuPercent, 1e12);

    clock.advance(1);
    table.readings[5].cpuTicks = 100'000'400;
    EXPECT_DOUBLE_EQ(scanner.scan().front().cpuPercent, 10);
}

TEST_F(ProcessScannerTest, ARefusedReadingCountsAsNoTicksAndNoMemory) {
    ProcessReading& reading = table.add(5);
    reading.cpuTicks.reset();
    reading.footprintBytes.reset();
    scanner.scan();
    clock.advance(1);
    const Proc proc = scanner.scan().front();
    EXPECT_EQ(proc.cpuPercent, 0);
    EXPECT_EQ(proc.footprintBytes, 0U);

    clock.advance(1);
    table.readings[5].cpuTicks = 500'000'000;
    EXPECT_DOUBLE_EQ(scanner.scan().front().cpuPercent, 50);
    clock.advance(1);
    table.readings[5].cpuTicks.reset();
    EXPECT_GT(scanner.scan().front().cpuPercent, 1e12);
}

TEST_F(ProcessScannerTest, AReadingThatFailsOnceStartsAnew) {
    table.add(5).cpuTicks = 0;
    scanner.scan();
    const ProcessReading kept = table.readings[5];
    table.readings.erase(5);
    clock.advance(1);
    EXPECT_TRUE(scanner.scan().empty());
    EXPECT_EQ(scanner.remembered(), 0U);

    table.readings[5] = kept;
    table.readings[5].cpuTicks = 1'000'000'000;
    clock.advance(1);
    EXPECT_EQ(scanner.scan().front().cpuPercent, 0);
}

TEST_F(ProcessScannerTest, CommandFallsBackToThePathAndThenToTheName) {
    ProcessReading& both = table.add(1);
    both.arguments.emplace("tool --fast");
    both.path.emplace("/usr/bin/tool");
    table.add(2).path.emplace("/usr/bin/tool");
    table.add(3);

    const std::vector<Proc> procs = scanner.scan();
    ASSERT_EQ(procs.size(), 3U);
    EXPECT_EQ(procs[0].command, "tool --fast");
    EXPECT_EQ(procs[1].command, "/usr/bin/tool");
    EXPECT_EQ(procs[2].command, "tool");
}

TEST_F(ProcessScannerTest, PidsBelowOneAreNeverRead) {
    for (const Pid pid : {0, -1, 9, 0}) table.add(pid);
    const std::vector<Proc> procs = scanner.scan();
    ASSERT_EQ(procs.size(), 1U);
    EXPECT_EQ(procs.front().id, 9);
    EXPECT_EQ(table.asked, Pids{9});
}

TEST_F(ProcessScannerTest, WhatVanishesWhileItIsReadIsLeftOut) {
    table.add(4);
    table.add(6);
    table.readings.erase(4);
    const std::vector<Proc> procs = scanner.scan();
    ASSERT_EQ(procs.size(), 1U);
    EXPECT_EQ(procs.front().id, 6);
}

TEST_F(ProcessScannerTest, AnEmptyListClearsWhatIsRemembered) {
    table.add(4);
    table.add(6);
    scanner.scan();
    EXPECT_EQ(scanner.remembered(), 2U);
    table.pids.clear();
    EXPECT_TRUE(scanner.scan().empty());
    EXPECT_EQ(scanner.remembered(), 0U);
}

TEST_F(ProcessScannerTest, ForgetsWhoIsNoLongerListed) {
    table.add(4);
    table.add(6);
    scanner.scan();
    table.pids = {6, 8};
    table.readings[8].name = "new";
    scanner.scan();
    EXPECT_EQ(scanner.remembered(), 2U);

    table.pids = {4, 6, 8};
    table.readings[4].cpuTicks = 1'000'000'000;
    clock.advance(1);
    EXPECT_EQ(scanner.scan().front().cpuPercent, 0);
}

}  // namespace ravik
