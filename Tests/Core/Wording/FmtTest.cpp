#include "Core/Wording/Fmt.h"

#include <gtest/gtest.h>

namespace ravik {

TEST(Fmt, PluralAddsAnSOrAnEs) {
    EXPECT_EQ(Fmt::plural(1, "process"), "1 process");
    EXPECT_EQ(Fmt::plural(0, "process"), "0 processes");
    EXPECT_EQ(Fmt::plural(2, "process"), "2 processes");
    EXPECT_EQ(Fmt::plural(2, "agent session"), "2 agent sessions");
    EXPECT_EQ(Fmt::plural(3, "child", "children"), "3 children");
}

TEST(Fmt, AmountTurnsToGigabytesAtAThousandMebibytes) {
    using Parts = std::array<std::string, 2>;
    EXPECT_EQ(Fmt::amount(999ull << 20), (Parts{"999", "MB"}));
    EXPECT_EQ(Fmt::amount(1000ull << 20), (Parts{"1.0", "GB"}));
    EXPECT_EQ(Fmt::amount((125ull << 23) - 1), (Parts{"999", "MB"}));
}

TEST(Fmt, MegabytesAreCutAndGrouped) {
    EXPECT_EQ(Fmt::mb(0), "0\u00a0MB");
    EXPECT_EQ(Fmt::mb((1ull << 20) * 1234 + 99), "1,234\u00a0MB");
    EXPECT_EQ(Fmt::mb((1ull << 20) * 1234567), "1,234,567\u00a0MB");
}

TEST(Fmt, RamIsRoundedToWholeGigabytes) {
    EXPECT_EQ(Fmt::ram(17179869184), "16 GB");
    EXPECT_EQ(Fmt::ram(16ull * 1000 * 1000 * 1000), "15 GB");
}

TEST(Fmt, CutsBetweenUnicodeScalars) {
    EXPECT_EQ(Fmt::firstScalars("aé€😀b", 4), "aé€😀");
    EXPECT_EQ(Fmt::firstScalars("ab", 5), "ab");
    EXPECT_EQ(Fmt::firstScalars("\xff\xff"
                                "a",
                                2),
              "\xff\xff");
}

}  // namespace ravik
