#include "Core/Watch/SystemStatsSampler.h"

#include <limits>

#include <gtest/gtest.h>

#include "Tests/Fakes/FakeClock.h"
#include "Tests/Fakes/FakeDesktop.h"

namespace ravik {

namespace {

struct SystemStatsSampling : ::testing::Test {
    SystemStatsSampling() { readings.memoryReading = MemoryReading{4ull << 30, 777777, 16384}; }

    SystemStats after(double seconds, std::uint64_t swapOutPages) {
        clock.advance(seconds);
        if (readings.memoryReading) readings.memoryReading->swapOutPages = swapOutPages;
        return sampler.sample();
    }

    fakes::FakeClock clock;
    fakes::FakeReadings readings;
    SystemStatsSampler sampler{readings, clock};
};

}  // namespace

TEST_F(SystemStatsSampling, FirstSampleHasNoRateWhateverTheCounterSays) {
    EXPECT_EQ(sampler.sample().swapOutBytesPerSec, 0);
}

TEST_F(SystemStatsSampling, RateIsBytesASecondSinceThePreviousSample) {
    after(0, 5000);
    EXPECT_EQ(after(5, 6000).swapOutBytesPerSec, 3276800.0);
    EXPECT_EQ(after(5, 6000).swapOutBytesPerSec, 0);
    EXPECT_EQ(after(0.5, 6001).swapOutBytesPerSec, 32768.0);
}

TEST_F(SystemStatsSampling, FailedMemoryReadingAveragesOverBothPeriods) {
    after(0, 5000);
    const auto good = readings.memoryReading;
    readings.memoryReading.reset();
    const SystemStats failed = after(5, 0);
    EXPECT_EQ(failed.swapOutBytesPerSec, 0);
    EXPECT_EQ(failed.memoryFreePercent, 0);
    readings.memoryReading = good;
    EXPECT_EQ(after(5, 6000).swapOutBytesPerSec, 1638400.0);
}

TEST_F(SystemStatsSampling, ClockThatStandsOrGoesBackGivesNoRateButMovesTheMark) {
    after(0, 5000);
    EXPECT_EQ(after(0, 6000).swapOutBytesPerSec, 0);
    EXPECT_EQ(after(-10, 7000).swapOutBytesPerSec, 0);
    EXPECT_EQ(after(1, 7001).swapOutBytesPerSec, 16384.0);
}

TEST_F(SystemStatsSampling, CounterMayWrap) {
    after(0, std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(after(1, 1).swapOutBytesPerSec, 32768.0);
}

TEST_F(SystemStatsSampling, CounterThatFellGivesAnAbsurdRateForOneSampleOnly) {
    after(0, 5000);
    EXPECT_GT(after(1, 10).swapOutBytesPerSec, 1e20);
    EXPECT_EQ(after(1, 11).swapOutBytesPerSec, 16384.0);
}

TEST_F(SystemStatsSampling, FreeMemoryIsCutToAWholePercent) {
    readings.memoryReading->availableBytes = (100000ull + 50000 + 10000) * 16384;
    readings.installed = 17179869184;
    EXPECT_EQ(sampler.sample().memoryFreePercent, 15);
    readings.memoryReading->availableBytes = readings.installed;
    EXPECT_EQ(sampler.sample().memoryFreePercent, 100);
    readings.memoryReading->availableBytes = 1;
    EXPECT_EQ(sampler.sample().memoryFreePercent, 0);
}

TEST_F(SystemStatsSampling, UnknownInstalledMemoryGivesNoFreePercent) {
    readings.installed = 0;
    EXPECT_EQ(sampler.sample().memoryFreePercent, 0);
}

TEST_F(SystemStatsSampling, EachReadingFallsBackByItself) {
    readings.swapUsed.reset();
    readings.diskFree.reset();
    readings.load.reset();
    readings.cores.reset();
    readings.gpu.reset();
    readings.memoryReading->availableBytes = 8ull << 30;
    readings.installed = 16ull << 30;
    SystemStats expected;
    expected.memoryFreePercent = 50;
    EXPECT_EQ(sampler.sample(), expected);
    EXPECT_EQ(expected.gpuPercent, -1);
}

TEST_F(SystemStatsSampling, ReadingsAreTakenAsTheyCome) {
    readings.memoryReading->availableBytes = 4ull << 30;
    readings.installed = 16ull << 30;
    readings.swapUsed = 123;
    readings.diskFree = 456;
    readings.load = 7.25;
    readings.cores = 12;
    readings.gpu = 104;
    EXPECT_EQ(sampler.sample(), (SystemStats{123, 0, 25, 456, 7.25, 12, 104}));
    readings.gpu = 0;
    EXPECT_EQ(sampler.sample().gpuPercent, 0);
}

}  // namespace ravik
