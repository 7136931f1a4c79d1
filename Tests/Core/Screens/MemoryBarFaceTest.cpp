#include "Core/Screens/MemoryBarFace.h"

#include <gtest/gtest.h>

#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik {

using namespace fakes;

namespace {

using Kind = MemoryPicture::Segment::Kind;

MemoryPicture picture(std::vector<MemoryPicture::Segment> segments, std::uint64_t ram = 16 * GiB) {
    MemoryPicture made;
    made.segments = std::move(segments);
    made.ram = ram;
    return made;
}

}  // namespace

TEST(MemoryBarFace, PutsTheAppsSideBySideWithTheirPartsInside) {
    const MemoryBarFace bar(picture({{"Arc", "Arc", {}, 8 * GiB, 1 * GiB, 4 * GiB, {}},
                                     {"rest", "Everything else", {}, 4 * GiB, 0, 0, {}, Kind::rest}}));
    ASSERT_EQ(bar.segments.size(), 2u);
    EXPECT_EQ(bar.segments[0].start, 0);
    EXPECT_EQ(bar.segments[0].stays, 3.0 / 16);
    EXPECT_EQ(bar.segments[0].quit, 4.0 / 16);
    EXPECT_EQ(bar.segments[0].free, 1.0 / 16);
    EXPECT_FALSE(bar.segments[0].isRest);
    EXPECT_EQ(bar.segments[1].start, 0.5);
    EXPECT_EQ(bar.segments[1].stays, 0.25);
    EXPECT_TRUE(bar.segments[1].isRest);
    EXPECT_EQ(bar.ramAt, 1);
    EXPECT_EQ(bar.heldAt, 0.75);
    EXPECT_FALSE(bar.spills());
}

TEST(MemoryBarFace, WhatIsHeldBeyondTheMemoryMakesTheBarLonger) {
    const MemoryBarFace bar(picture({{"Arc", "Arc", {}, 20 * GiB, 0, 0, {}}}));
    EXPECT_EQ(bar.ramAt, 0.8);
    EXPECT_EQ(bar.heldAt, 1);
    EXPECT_TRUE(bar.spills());
}

TEST(MemoryBarFace, OnAnothersScaleTwoBarsCanBeCompared) {
    const MemoryPicture before = picture({{"Arc", "Arc", {}, 20 * GiB, 10 * GiB, 0, {}}});
    const MemoryBarFace after(before.after(), MemoryBarFace::scale(before));
    EXPECT_EQ(after.heldAt, 0.5);
    EXPECT_EQ(after.ramAt, 0.8);
}

TEST(MemoryBarFace, MemoryThatTwoFindingsClaimIsDrawnOnce) {
    const MemoryBarFace bar(picture({{"Arc", "Arc", {}, 8 * GiB, 6 * GiB, 6 * GiB, {}}}));
    EXPECT_EQ(bar.segments[0].stays, 0);
    EXPECT_EQ(bar.segments[0].free, 6.0 / 16);
    EXPECT_EQ(bar.segments[0].quit, 2.0 / 16);
}

TEST(MemoryBarFace, AnAppThatIsCalledLikeTheRestIsAnApp) {
    const MemoryBarFace bar(picture({{"rest", "rest", {}, 4 * GiB, 0, 0, {}}}));
    EXPECT_FALSE(bar.segments.at(0).isRest);
}

TEST(MemoryBarFace, WithoutAnyMemoryNothingIsDrawn) {
    const MemoryBarFace bar(picture({}, 0));
    EXPECT_TRUE(bar.segments.empty());
    EXPECT_EQ(bar.heldAt, 0);
    EXPECT_FALSE(bar.spills());
}

}  // namespace ravik
