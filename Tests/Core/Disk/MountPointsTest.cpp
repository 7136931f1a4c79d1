#include "Core/Disk/MountPoints.h"

#include <gmock/gmock.h>

namespace ravik {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(MountPoints, AreTheFifthFieldWithEscapesUndone) {
    EXPECT_THAT(parseMountPoints("29 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
                                 "30 29 0:26 / /media/a\\040b\\134c\\012d rw - tmpfs none rw\n"),
                ElementsAre("/", "/media/a b\\c\nd"));
}

TEST(MountPoints, TornLinesGiveNothing) {
    EXPECT_THAT(parseMountPoints(""), IsEmpty());
    EXPECT_THAT(parseMountPoints("\n\n29 1 254:0\n29 1 254:0 /"), IsEmpty());
    EXPECT_THAT(parseMountPoints("29 1 254:0 / /last"), ElementsAre("/last"));
    EXPECT_THAT(parseMountPoints("1 2 3 4 /x\\04 r\n1 2 3 4 /y\\999 r"), ElementsAre("/x\\04", "/y\\999"));
}

TEST(MountPoints, BelowMeansBelow) {
    EXPECT_THAT(mountPointsBelow("/proc/self/no-such-folder"), IsEmpty());
    EXPECT_THAT(mountPointsBelow("/"), ::testing::Contains("/proc"));
    EXPECT_THAT(mountPointsBelow("/proc"), ::testing::Not(::testing::Contains("/proc")));
    EXPECT_THAT(mountPointsBelow("/pro"), IsEmpty());
}

}  // namespace ravik
