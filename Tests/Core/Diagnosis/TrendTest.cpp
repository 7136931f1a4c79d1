#include "Core/Diagnosis/Trend.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using fakes::Making;

namespace {

Snapshot at(Time takenAt, double cpu = 0, std::uint64_t bytes = 0) {
    Snapshot snap;
    snap.takenAt = takenAt;
    snap.processes = {Making(7, "x").cpu(cpu).uid(0)};
    if (bytes > 0) snap.groups = {AppGroup{"x", bytes, 0, {}}};
    return snap;
}

}  // namespace

TEST(Trend, OneTickBelowTheLimitStartsTheClockAgain) {
    Trend trend;
    trend.record(at(100, 50), {});
    EXPECT_EQ(trend.busySince, (std::unordered_map<Pid, Time>{{7, 100}}));
    trend.record(at(105, 80), {});
    EXPECT_EQ(trend.busySince, (std::unordered_map<Pid, Time>{{7, 100}}));
    trend.record(at(110, 49.9), {});
    EXPECT_TRUE(trend.busySince.empty());
    trend.record(at(115, 50), {});
    EXPECT_EQ(trend.busySince, (std::unordered_map<Pid, Time>{{7, 115}}));
}

TEST(Trend, AnEndedProcessIsForgotten) {
    Trend trend;
    trend.record(at(100, 90), {});
    Snapshot none = at(105);
    none.processes.clear();
    trend.record(none, {});
    EXPECT_TRUE(trend.busySince.empty());
}

TEST(Trend, SamplesStandAMinuteApart) {
    Trend trend;
    for (Time time = 1000; time <= 1300; time += 5) trend.record(at(time), {});
    ASSERT_EQ(trend.held.size(), 6u);
    for (std::size_t sample = 0; sample < 6; ++sample) EXPECT_EQ(trend.held[sample].at, 1000 + 60.0 * sample);
}

TEST(Trend, NeverHoldsMoreThanSixteenSamples) {
    Trend trend;
    for (Time time = 0; time <= 4 * fakes::hour; time += 5) {
        trend.record(at(time), {});
        ASSERT_LE(trend.held.size(), 16u);
    }
    EXPECT_EQ(trend.held.size(), 16u);
}

TEST(Trend, ASampleLivesFifteenMinutes) {
    Trend trend;
    trend.record(at(0), {});
    trend.record(at(900), {});
    ASSERT_EQ(trend.held.size(), 2u);
    EXPECT_EQ(trend.held[0].at, 0);
    trend.record(at(900.5), {});
    ASSERT_EQ(trend.held.size(), 1u);
    EXPECT_EQ(trend.held[0].at, 900);
}

TEST(Trend, LowIsTheLeastAndTheEarlier) {
    Trend trend;
    trend.record(at(0, 0, 500), {});
    trend.record(at(60, 0, 300), {});
    trend.record(at(120, 0, 400), {});
    trend.record(at(180, 0, 300), {});
    EXPECT_EQ(trend.low("x"), (Trend::Low{300, 60}));
}

TEST(Trend, AnUnknownGroupHeldNothing) {
    Trend trend;
    EXPECT_EQ(trend.low("y"), std::nullopt);
    trend.record(at(0, 0, 500), {});
    trend.record(at(60, 0, 500), {});
    EXPECT_EQ(trend.low("y"), (Trend::Low{0, 0}));
}

}  // namespace ravik
