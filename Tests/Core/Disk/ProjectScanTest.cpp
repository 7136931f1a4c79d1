#include "Core/Disk/ProjectScan.h"

#include <gmock/gmock.h>

#include "Tests/Core/Disk/DiskTree.h"

namespace ravik {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class ProjectScan : public DiskTree {
protected:
    /// A project whose one source was last touched that many days ago.
    std::filesystem::path project(const std::string& name, double days, std::uint64_t bytes) {
        auto path = home / "Projects" / name;
        fill(path / "node_modules", bytes);
        file(path / "package.json");
        age(path / "package.json", days);
        return path;
    }
};

TEST_F(ProjectScan, ListsABuildFolderOfAProjectIdleForMoreThanThirtyDays) {
    const auto path = project("x", 31, 30 * MiB);
    EXPECT_THAT(scan(), ElementsAre(Reclaimable{(path / "node_modules").string(), "node_modules", 30 * MiB,
                                                "project idle 31 days"}));
}

TEST_F(ProjectScan, LeavesOutAProjectThatWasTouched) {
    project("x", 29, 30 * MiB);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, ExactlyThirtyDaysAreNotEnough) {
    const auto path = project("x", 30, 30 * MiB);
    EXPECT_THAT(scan(), IsEmpty());
    age(path / "package.json", 30 + 1 / day);
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(ProjectScan, ExactlyTwentyMebibytesAreNotEnough) {
    const auto path = project("x", 31, 20 * MiB);
    EXPECT_THAT(scan(), IsEmpty());
    fill(path / "node_modules/one", 4096);
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(ProjectScan, AHiddenSourceKeepsTheProjectAlive) {
    const auto path = project("x", 100, 30 * MiB);
    file(path / ".env");
    age(path / ".env", 3);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, BuildFoldersAndGitSayNothingAboutTheSources) {
    const auto path = project("x", 100, 30 * MiB);
    folder(path / ".git");
    folder(path / ".next");
    age(path / ".git", 1);
    age(path / ".next", 1);
    age(path / "node_modules", 1);
    ASSERT_THAT(scan(), SizeIs(1));
    EXPECT_EQ(scan()[0].note, "project idle 100 days");
}

TEST_F(ProjectScan, AFolderWithNothingButBuildOutputIsIdleSinceTheDistantPast) {
    const auto path = home / "Projects/x";
    fill(path / "build", 30 * MiB);
    folder(path / ".git");
    // 1,760,000,000 s behind 1970 and 62,135,596,800 s before it: 739,532.37 days.
    EXPECT_THAT(scan(),
                ElementsAre(Reclaimable{(path / "build").string(), "build", 30 * MiB, "project idle 739532 days"}));
}

TEST_F(ProjectScan, OnlyDirectChildrenTellTheAge) {
    const auto path = project("x", 40, 30 * MiB);
    file(path / "src/deep/new.js");
    age(path / "src", 40);
    EXPECT_THAT(scan(), SizeIs(1));
    age(path / "src", 1);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, SeesTheTopAndOneLevelBelow) {
    const auto path = home / "Projects/x";
    for (const char* where : {"dist", "a/dist", "a/b/dist"}) fill(path / where, 30 * MiB);
    for (const char* where : {"a", "a/b"}) age(path / where, 50);
    EXPECT_THAT(scannedIds(), ElementsAre((path / "a/dist").string(), (path / "dist").string()));
}

TEST_F(ProjectScan, TheAgeBelowIsThatOfTheFolderBelow) {
    const auto path = home / "Projects/x";
    fill(path / "a/dist", 30 * MiB);
    file(path / "a/main.c");
    age(path / "a/main.c", 45);
    file(path / "README");
    age(path / "README", 0);
    ASSERT_THAT(scan(), SizeIs(1));
    EXPECT_EQ(scan()[0].note, "project idle 45 days");
}

TEST_F(ProjectScan, NeverEntersABuildFolder) {
    const auto path = home / "Projects/x";
    fill(path / "build/dist", 19 * MiB);
    fill(path / "target/venv", 30 * MiB);
    EXPECT_THAT(scannedIds(), ElementsAre((path / "target").string()));
}

TEST_F(ProjectScan, AFolderNamedLikeABuildDirectlyUnderARootIsNoProject) {
    fill(home / "Projects/target/node_modules", 30 * MiB);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, HiddenFoldersAreNotReached) {
    fill(home / "Projects/x/.venv", 30 * MiB);
    fill(home / "Projects/.hidden/node_modules", 30 * MiB);
    fill(home / "Projects/x/.hidden/node_modules", 30 * MiB);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, LinksAreNotFollowedOutOfARoot) {
    fill(outside / "y/node_modules", 30 * MiB);
    link(home / "Projects/y", outside / "y");
    link(home / "Projects/x/node_modules", outside / "y/node_modules");
    link(home / "Projects/x/sub", outside / "y");
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, ARootThatIsALinkIsListed) {
    fill(outside / "real/x/node_modules", 30 * MiB);
    link(home / "Projects", outside / "real");
    EXPECT_THAT(scannedIds(), ElementsAre((home / "Projects/x/node_modules").string()));
}

TEST_F(ProjectScan, NamesMayHoldAnything) {
    const std::string odd = "a\nb\xff";
    fill(home / "Projects" / odd / "build", 30 * MiB);
    EXPECT_THAT(scannedIds(), ElementsAre((home / "Projects" / odd / "build").string()));
}

TEST_F(ProjectScan, FilesNamedLikeBuildFoldersAreNone) {
    fill(home / "Projects/x", 30 * MiB, "build");
    file(home / "Projects/x/build");
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(ProjectScan, ADepthBelowOneGivesNothing) {
    const auto path = project("x", 31, 30 * MiB);
    EXPECT_THAT(DiskScanner::staleBuildDirs(scope(), path, 0), IsEmpty());
    EXPECT_THAT(DiskScanner::staleBuildDirs(scope(), path, 1), SizeIs(1));
}

TEST_F(ProjectScan, OverlappingRootsListAFolderOnce) {
    fill(home / "Projects/x/a/dist", 30 * MiB);
    age(home / "Projects/x/a", 50);
    roots.push_back(home / "Projects/x");
    EXPECT_THAT(scan(), SizeIs(1));
}

}  // namespace ravik
