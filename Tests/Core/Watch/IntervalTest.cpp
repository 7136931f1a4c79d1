#include "Core/Watch/Interval.h"

#include <gtest/gtest.h>

namespace ravik {
namespace {

TEST(Interval, IsAnyNumberAboveZero) {
    EXPECT_EQ(parseInterval("5"), 5.0);
    EXPECT_EQ(parseInterval("0.5"), 0.5);
    EXPECT_EQ(parseInterval("1e3"), 1000.0);
    EXPECT_EQ(parseInterval("0.0001"), 0.0001);
}

TEST(Interval, IsNothingThatNoTimerCouldKeep) {
    for (const char* text :
         {"", "abc", "5s", " 5", "0", "-0", "-5", "nan", "NaN", "-nan", "inf", "-inf", "infinity", "1e999", "1,5"}) {
        EXPECT_EQ(parseInterval(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace ravik
