#include "Platform/Linux/BootTime.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include "Platform/Linux/Clock.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

TEST(BootTime, IsFoundAmongTheOtherLines) {
    EXPECT_EQ(parseBootTime("cpu  1 2 3\nintr 9 9\nctxt 12\nbtime 1760000123\nprocesses 7\n"), 1760000123);
    EXPECT_EQ(parseBootTime("btime 5"), 5);
    EXPECT_EQ(parseBootTime("cpu 1\nxbtime 4\n"), std::nullopt);
    EXPECT_EQ(parseBootTime("btime x\n"), std::nullopt);
    EXPECT_EQ(parseBootTime(""), std::nullopt);
}

TEST(BootTime, StartIsCutToWholeSeconds) {
    EXPECT_EQ(startedAt(0, 1000, 100), 1000.0);
    EXPECT_EQ(startedAt(99, 1000, 100), 1000.0);
    EXPECT_EQ(startedAt(100, 1000, 100), 1001.0);
    EXPECT_EQ(startedAt(199, 1000, 100), 1001.0);
    EXPECT_EQ(startedAt(1024 * 7 + 1023, 0, 1024), 7.0);
}

TEST(BootTime, StampIsReadBehindTheLastParenthesis) {
    const char* plain = "812 (node) S 1 812 812 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 11 0 123456 9 9";
    EXPECT_EQ(parseStartStamp(plain), (StartStamp{'S', 123456}));
    const char* odd = "812 (a) Z 9 (b c) Z 1 812 812 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 11 0 18446744073709551615 9";
    EXPECT_EQ(parseStartStamp(odd), (StartStamp{'Z', 18446744073709551615u}));
    EXPECT_TRUE(parseStartStamp(odd)->hasEnded());
    EXPECT_FALSE(parseStartStamp(plain)->hasEnded());
}

TEST(BootTime, StampOfATornLineIsAbsent) {
    EXPECT_EQ(parseStartStamp(""), std::nullopt);
    EXPECT_EQ(parseStartStamp("812 (node"), std::nullopt);
    EXPECT_EQ(parseStartStamp("812 (node) "), std::nullopt);
    EXPECT_EQ(parseStartStamp("812 (node) S 1 812 812 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 11 0"), std::nullopt);
    EXPECT_EQ(parseStartStamp("812 (node) S 1 812 812 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 11 0 x"), std::nullopt);
}

TEST(BootTime, OwnStartLiesBetweenBootAndNow) {
    const auto stat = readFile("/proc/self/stat");
    ASSERT_TRUE(stat);
    const auto stamp = parseStartStamp(*stat);
    ASSERT_TRUE(stamp);
    EXPECT_FALSE(stamp->hasEnded());
    const Time started = startedAt(stamp->ticks);
    EXPECT_GE(started, static_cast<Time>(bootTime()));
    EXPECT_LE(started, SystemClock().now() + 1);
    EXPECT_GT(started, SystemClock().now() - 3600);
    EXPECT_GT(bootTime(), 1'500'000'000);
}

TEST(ReadFile, MissingFileIsAbsentAndAnEmptyOneEmpty) {
    EXPECT_EQ(readFile("/proc/self/no-such-entry"), std::nullopt);
    EXPECT_EQ(readFile("/dev/null"), "");
    EXPECT_EQ(readFile("/"), std::nullopt);
}

}  // namespace ravik::platform
