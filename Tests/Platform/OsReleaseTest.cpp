#include "Platform/Linux/OsRelease.h"

#include <gtest/gtest.h>

namespace ravik::platform {

TEST(OsRelease, JoinsIdAndVersion) {
    EXPECT_EQ(osReleaseName("NAME=\"Debian GNU/Linux\"\nVERSION_ID=\"12\"\nID=debian\n"), "debian 12");
    EXPECT_EQ(osReleaseName("ID='arch'"), "arch");
    EXPECT_EQ(osReleaseName("ID_LIKE=debian\nVERSION_ID=1"), "1");
    EXPECT_EQ(osReleaseName(""), "");
}

}  // namespace ravik::platform
