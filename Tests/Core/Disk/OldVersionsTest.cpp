#include <gmock/gmock.h>

#include "Core/Disk/DiskScanner.h"

namespace ravik {

using DiskScanner::oldVersions;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(OldVersions, AllButTheNewestOfEachFamilyAreOld) {
    EXPECT_THAT(oldVersions({"chromium-1155", "chromium-1140"}), ElementsAre("chromium-1140"));
    EXPECT_THAT(oldVersions({"webkit-20", "chromium-9", "webkit-3", "chromium-10", "chromium-11", "ffmpeg-1"}),
                ElementsAre("chromium-10", "chromium-9", "webkit-3"));
}

TEST(OldVersions, ASingleVersionIsNotOld) {
    EXPECT_THAT(oldVersions({"chromium-1140"}), IsEmpty());
    EXPECT_THAT(oldVersions({"chromium-1140", "firefox-1155"}), IsEmpty());
    EXPECT_THAT(oldVersions({}), IsEmpty());
}

TEST(OldVersions, VersionsCompareAsNumbers) {
    EXPECT_THAT(oldVersions({"chromium-999", "chromium-1000"}), ElementsAre("chromium-999"));
}

TEST(OldVersions, WhatIsNoDecimalNumberIsBelowEveryNumber) {
    EXPECT_THAT(oldVersions({"chromium-abc", "chromium-0"}), ElementsAre("chromium-abc"));
    EXPECT_THAT(oldVersions({"chromium-12ab", "chromium-1"}), ElementsAre("chromium-12ab"));
    EXPECT_THAT(oldVersions({"chromium-99999999999999999999", "chromium-1"}),
                ElementsAre("chromium-99999999999999999999"));
}

TEST(OldVersions, EqualVersionsCompareAsText) {
    EXPECT_THAT(oldVersions({"chromium-7", "chromium-07"}), ElementsAre("chromium-07"));
    EXPECT_THAT(oldVersions({"chromium-abd", "chromium-abc"}), ElementsAre("chromium-abc"));
}

TEST(OldVersions, OtherNamesAreLeftAlone) {
    EXPECT_THAT(oldVersions({".links", ".links-1", ".links-2", "chromium", "chromium-", "chromium-xyz", "chromium-1A",
                             "chromium-1\n", "chromium-1 "}),
                IsEmpty());
}

TEST(OldVersions, ALineFeedBehindTheDigitsMakesAFamilyOfItsOwn) {
    EXPECT_THAT(oldVersions({"chromium-9\n", "chromium-10\n", "chromium-1", "chromium-1\n\n", "chromium-0\n\n"}),
                ElementsAre("chromium-10\n"));
    EXPECT_THAT(oldVersions({"\xff-2", "\xff-1", "\xfe-3"}), ElementsAre("\xff-1"));
}

TEST(OldVersions, OnlyTheLastPieceIsTheVersion) {
    EXPECT_THAT(oldVersions({"chromium-headless-5", "chromium-6", "chromium-headless-7"}),
                ElementsAre("chromium-headless-5"));
}

}  // namespace ravik
