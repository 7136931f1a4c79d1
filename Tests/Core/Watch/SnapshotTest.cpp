#include "Core/Watch/Snapshot.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

Finding finding(std::string id, Remedy remedy, std::uint64_t gain) {
    Finding made;
    made.id = std::move(id);
    made.remedy = std::move(remedy);
    made.gainBytes = gain;
    return made;
}

}  // namespace

TEST(Snapshot, OnlyTreesWithoutACautionCanBeFreedInOneClick) {
    Snapshot snapshot;
    snapshot.findings = {finding("orphan:7", KillTrees{{7}}, 1), finding("browser:Arc", QuitApp{"Arc"}, 10),
                         finding("orphan:8", KillTrees{{8}}, 100), finding("disk", Advice{"look"}, 1000),
                         finding("hog:9", KillTrees{{9}}, 10000)};
    snapshot.findings[2].caution = "ends a build";
    const auto freeable = snapshot.freeable();
    ASSERT_EQ(freeable.size(), 2u);
    EXPECT_EQ(freeable[0]->id, "orphan:7");
    EXPECT_EQ(freeable[1]->id, "hog:9");
    EXPECT_EQ(snapshot.freeableBytes(), 10001u);
    EXPECT_EQ(snapshot.reclaimableBytes(), 11111u);
}

}  // namespace ravik
