#include <chrono>
#include <cmath>

#include "Tests/Core/Watch/MonitorScene.h"

namespace ravik {

namespace {

using nlohmann::json;

class MonitorTest : public fakes::MonitorScene {};

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
