#include <chrono>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "Platform/Computer.h"
#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik {

TEST(CreationDate, OfANewFileIsNowAndOfNoneAbsent) {
    const fakes::TemporaryFolder folder;
    const auto before = std::chrono::system_clock::now().time_since_epoch();
    std::ofstream(folder.path() / "fresh") << "x";
    const auto made = creationDate(folder.path() / "fresh");
    ASSERT_TRUE(made) << "this file system keeps no creation dates";
    EXPECT_NEAR(*made, std::chrono::duration<double>(before).count(), 5);
    EXPECT_EQ(creationDate(folder.path() / "missing"), std::nullopt);
}

TEST(CreationDate, OfALinkIsItsOwn) {
    const fakes::TemporaryFolder folder;
    std::filesystem::create_symlink("nowhere", folder.path() / "link");
    EXPECT_TRUE(creationDate(folder.path() / "link"));
}

}  // namespace ravik
