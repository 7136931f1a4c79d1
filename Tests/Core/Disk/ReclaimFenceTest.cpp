#include "Core/Disk/ReclaimFence.h"

#include <sys/mount.h>

#include <gmock/gmock.h>

#include "Tests/Core/Disk/DiskTree.h"

namespace ravik {

using namespace DiskScanner;  // NOLINT: the operations under test
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class ReclaimFence : public DiskTree {
protected:
    std::optional<ReclaimError> reclaimPath(const fs::path& path, HostKind kind = HostKind::linux) {
        const DiskTables& tables = diskTables(kind);
        const IsRunning isRunning = [&](const auto& owner) {
            if (onAsked) onAsked();
            return DiskScanner::isRunning(owner, running);
        };
        return reclaim({tables, home, isRunning, trash}, {path.string(), "kind", 1, "note"}, roots, tables.owners);
    }

    std::string outsideSentence(const fs::path& path) {
        return path.string() + " is not a cache or a build folder Ravik found, so it was left where it is.";
    }

    void expectRefused(const fs::path& path) {
        const auto error = reclaimPath(path);
        ASSERT_TRUE(error) << path;
        EXPECT_EQ(description(*error), outsideSentence(path));
        EXPECT_THAT(trash.moved, IsEmpty());
    }

    NotingTrash trash;
    std::function<void()> onAsked;
};

TEST_F(ReclaimFence, EveryTableEntryMayGo) {
    for (const HostKind kind : {HostKind::mac, HostKind::linux}) {
        for (const auto& cache : diskTables(kind).caches) {
            folder(home / cache.path);
            trash.moved.clear();
            EXPECT_FALSE(reclaimPath(home / cache.path, kind)) << cache.path;
            EXPECT_THAT(trash.moved, ElementsAre((home / cache.path).string()));
        }
    }
}

TEST_F(ReclaimFence, DirectChildrenOfTheTwoParentsMayGo) {
    folder(home / ".cache/ms-playwright/chromium-1140");
    folder(home / ".claude/projects/-home-x/deeper");
    folder(home / ".claude/projects/.hidden");
    EXPECT_FALSE(reclaimPath(home / ".cache/ms-playwright/chromium-1140"));
    EXPECT_FALSE(reclaimPath(home / ".claude/projects/-home-x"));
    trash.moved.clear();
    expectRefused(home / ".claude/projects/-home-x/deeper");
    expectRefused(home / ".claude/projects/.hidden");
    expectRefused(home / ".claude/projects");
    expectRefused(home / ".claude");
    expectRefused(home / ".cache/ms-playwright");
}

TEST_F(ReclaimFence, BuildFoldersInAProjectRootMayGo) {
    for (const auto name : diskTables(HostKind::linux).buildDirs) {
        folder(home / "Projects/x" / name);
        EXPECT_FALSE(reclaimPath(home / "Projects/x" / name)) << name;
    }
}

TEST_F(ReclaimFence, NothingElseMayGo) {
    for (const char* path : {"Documents", "Projects/x/src", "Projects/x", "Projects", "elsewhere/build", "build",
                             ".cache", ".npm", "Projects2/x/build", "Projects/x/Build", "Projects/x/build2"}) {
        folder(home / path);
        expectRefused(home / path);
    }
    expectRefused(home);
    expectRefused("/");
    expectRefused("");
    expectRefused("build");
    expectRefused("Projects/x/build");
}

TEST_F(ReclaimFence, AZeroByteDoesNotShortenAPath) {
    folder(home / "Projects/x/build");
    expectRefused(fs::path((home / "Projects/x/src").string() + std::string("\0/build", 7)));
    expectRefused(fs::path((home / "Projects/x/build").string() + std::string(1, '\0')));
}

TEST_F(ReclaimFence, ARootDoesNotVouchForItself) {
    roots = {home / "Projects/build"};
    folder(home / "Projects/build/build");
    expectRefused(home / "Projects/build");
    expectRefused(home / "Projects/build/");
    EXPECT_FALSE(reclaimPath(home / "Projects/build/build"));
}

TEST_F(ReclaimFence, DotsAndSlashesAreSeenThrough) {
    folder(home / "Projects/x/build");
    folder(home / "Documents/build");
    expectRefused(home / "Projects/../Documents/build");
    expectRefused(home / "Projects/x/build/..");
    expectRefused(home / "Projects/x/build/../../x");
    EXPECT_FALSE(reclaimPath(home / "Projects/./x//build/"));
    EXPECT_THAT(trash.moved, ElementsAre((home / "Projects/x/build").string()));
}

TEST_F(ReclaimFence, DotsBehindAMissingFolderDoNotHideALink) {
    folder(outside / "build");
    link(home / "Projects/link", outside);
    expectRefused(home / "Projects/missing/../link/build");
    expectRefused(home / "missing/../Projects/link/build");
}

TEST_F(ReclaimFence, ALinkIsJudgedByItsTarget) {
    folder(outside / "precious");
    folder(outside / "build");
    folder(home / "Projects/y/dist");
    link(home / "Projects/x/build", outside / "precious");
    link(home / "Projects/x/target", outside / "build");
    expectRefused(home / "Projects/x/build");
    expectRefused(home / "Projects/x/target");
    link(home / "Projects/x/dist", home / "Projects/y/dist");
    EXPECT_FALSE(reclaimPath(home / "Projects/x/dist"));
    EXPECT_THAT(trash.moved, ElementsAre((home / "Projects/y/dist").string()));
}

TEST_F(ReclaimFence, ALoopOfLinksGoesNowhere) {
    link(home / "Projects/x/build", "target");
    link(home / "Projects/x/target", "build");
    expectRefused(home / "Projects/x/build");
}

TEST_F(ReclaimFence, ARootThatIsALinkWorks) {
    folder(outside / "real/x/build");
    link(home / "Projects", outside / "real");
    EXPECT_FALSE(reclaimPath(home / "Projects/x/build"));
    EXPECT_FALSE(reclaimPath(outside / "real/x/build"));
    EXPECT_THAT(trash.moved, ElementsAre((outside / "real/x/build").string(), (outside / "real/x/build").string()));
}

TEST_F(ReclaimFence, ATableEntryThatLeadsToTheHomeFolderOrAboveNamesNothing) {
    folder(home / "Documents");
    link(home / ".cache/huggingface", home);
    link(home / ".cache/ms-playwright", home);
    link(home / ".claude/projects", home / "..");
    link(home / ".cache/uv", "/");
    expectRefused(home);
    expectRefused(home / ".cache/huggingface");
    expectRefused(home / ".cache/uv");
    expectRefused(home / "Documents");
    expectRefused(outside);
}

TEST_F(ReclaimFence, AFileIsNoFolder) {
    file(home / "Projects/x/build");
    expectRefused(home / "Projects/x/build");
}

TEST_F(ReclaimFence, NamesMayHoldAnything) {
    const std::string odd = "a\n\xff b";
    folder(home / "Projects" / odd / "build");
    folder(home / "Projects" / odd / "build\n");
    EXPECT_FALSE(reclaimPath(home / "Projects" / odd / "build"));
    trash.moved.clear();
    expectRefused(home / "Projects" / odd / "build\n");
}

TEST_F(ReclaimFence, ARunningOwnerKeepsItsCache) {
    const fs::path bundle = home / "Library/Application Support/Claude/vm_bundles";
    folder(bundle);
    running = {{.bundleName = "Claude", .localizedName = "Claude", .pid = 1}};
    const auto error = reclaimPath(bundle, HostKind::mac);
    ASSERT_TRUE(error);
    EXPECT_EQ(description(*error), "Claude is running and may be using it. Quit Claude first; nothing was changed.");
    EXPECT_THAT(trash.moved, IsEmpty());
    running.clear();
    EXPECT_FALSE(reclaimPath(bundle, HostKind::mac));
}

TEST_F(ReclaimFence, AnOwnersCacheIsKnownBehindALink) {
    folder(outside / "firefox");
    link(home / ".cache/mozilla", outside / "firefox");
    running = {{.bundleName = "", .localizedName = "Firefox", .pid = 1}};
    for (const fs::path& path : {home / ".cache/mozilla", outside / "firefox"}) {
        const auto error = reclaimPath(path);
        ASSERT_TRUE(error);
        EXPECT_TRUE(std::holds_alternative<OwnerRunning>(*error));
    }
}

TEST_F(ReclaimFence, ALinkSwappedInAfterTheCheckIsNotFollowed) {
    const fs::path cache = home / ".cache/mozilla";
    file(outside / "mozilla/precious");
    folder(cache);
    // The owner is asked about between the check and the move.
    onAsked = [&] {
        fs::rename(home / ".cache", home / "moved");
        fs::create_symlink(outside, home / ".cache");
    };
    expectRefused(cache);
}

TEST_F(ReclaimFence, AFolderSwappedInAfterTheCheckIsLeftAlone) {
    const fs::path cache = home / ".cache/mozilla";
    folder(cache);
    onAsked = [&] {
        fs::rename(cache, home / "moved");
        file(cache / "precious");
    };
    expectRefused(cache);
}

TEST_F(ReclaimFence, ALinkPutInPlaceOfTheFolderIsLeftAlone) {
    const fs::path cache = home / ".cache/mozilla";
    folder(cache);
    onAsked = [&] {
        fs::rename(cache, home / "moved");
        fs::create_symlink(outside, cache);
    };
    expectRefused(cache);
}

TEST_F(ReclaimFence, ATrashThatCannotTakeItIsQuoted) {
    file(home / ".npm/_npx/a", "kept");
    trash.refusal = "The Trash is full.";
    const auto error = reclaimPath(home / ".npm/_npx");
    ASSERT_TRUE(error);
    EXPECT_EQ(description(*error), "The Trash is full.");
    EXPECT_TRUE(fs::exists(home / ".npm/_npx/a"));
}

TEST_F(ReclaimFence, WhatHasGoneIsLeftToTheTrashToSay) {
    trash.refusal = "It is not there.";
    const auto error = reclaimPath(home / ".npm/_npx");
    ASSERT_TRUE(error);
    EXPECT_EQ(description(*error), "It is not there.");
}

TEST_F(ReclaimFence, AFolderInWhichSomethingIsMountedStays) {
    const fs::path build = home / "Projects/x/build";
    folder(build / "data");
    const int outcome = inChild([&] {
        if (!becomeAloneWithMounts()) return 99;
        if (mount("none", (build / "data").c_str(), "tmpfs", 0, nullptr) != 0) return 98;
        const auto error = reclaimPath(build);
        if (!error || !trash.moved.empty()) return 97;
        const bool said = description(*error) ==
                          "Another file system is mounted in " + build.string() + ", so it was left where it is.";
        return said ? 0 : 96;
    });
    EXPECT_EQ(outcome, 0);
    EXPECT_FALSE(reclaimPath(build));
}

}  // namespace ravik
