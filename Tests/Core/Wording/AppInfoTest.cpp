#include "Core/Wording/AppInfo.h"

#include <gtest/gtest.h>

namespace ravik {

TEST(AppInfo, WritesExactMomentsInUtcAndSaysSo) {
    EXPECT_EQ(AppInfo::clock(1772357415.9), "09:30:15Z");
    EXPECT_EQ(AppInfo::dayMinute(1772357415.9), "2026-03-01 09:30Z");
}

}  // namespace ravik
