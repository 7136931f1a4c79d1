#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "Core/Disk/FolderMeasures.h"
#include "Tests/Core/Disk/DiskTree.h"

namespace ravik {

using DiskScanner::directorySize;
using DiskScanner::newestMtime;
namespace fs = std::filesystem;

class DirectorySize : public DiskTree {};

TEST_F(DirectorySize, AddsWhatIsAllocatedNotWhatIsWritten) {
    fill(home / "a", 8 * MiB);
    fill(home / "a/b/c", 3 * MiB);
    fs::resize_file(home / "a/data0", 1);
    file(home / "a/sparse");
    fs::resize_file(home / "a/sparse", 1'000 * MiB);
    struct stat data {};
    struct stat sparse {};
    ASSERT_EQ(stat((home / "a/data0").c_str(), &data), 0);
    ASSERT_EQ(stat((home / "a/sparse").c_str(), &sparse), 0);
    const auto rest = static_cast<std::uint64_t>(data.st_blocks + sparse.st_blocks) * 512;
    EXPECT_LT(rest, 4 * MiB);
    EXPECT_EQ(directorySize(home / "a"), 4 * MiB + 3 * MiB + rest);
}

TEST_F(DirectorySize, AFolderThatCannotBeWalkedMeasuresNothing) {
    file(home / "file");
    EXPECT_EQ(directorySize(home / "missing"), 0u);
    EXPECT_EQ(directorySize(home / "file"), 0u);
    EXPECT_EQ(newestMtime(home / "missing"), distantPast);
}

TEST_F(DirectorySize, LeavesOutHiddenFilesAndAllBelowHiddenFolders) {
    fill(home / "a", MiB);
    fill(home / "a/.hidden/deep", MiB);
    fill(home / "a", MiB, ".data");
    EXPECT_EQ(directorySize(home / "a"), MiB);
}

TEST_F(DirectorySize, AFolderThatIsItselfHiddenIsMeasured) {
    fill(home / ".npm", 2 * MiB);
    EXPECT_EQ(directorySize(home / ".npm"), 2 * MiB);
}

TEST_F(DirectorySize, FollowsNoLinkAndSurvivesALoopOfThem) {
    fill(outside / "big", 8 * MiB);
    fill(home / "a", MiB);
    link(home / "a/out", outside / "big");
    link(home / "a/file", outside / "big/data0");
    link(home / "a/up", "..");
    link(home / "a/self", "self");
    link(home / "a/x/y", "../x");
    EXPECT_EQ(directorySize(home / "a"), MiB);
    link(home / "b", home / "a");
    EXPECT_EQ(directorySize(home / "b"), 0u);
}

TEST_F(DirectorySize, AFileCountsUnderEachOfItsNames) {
    fill(home / "a", MiB);
    folder(home / "a/sub");
    fs::create_hard_link(home / "a/data0", home / "a/again");
    fs::create_hard_link(home / "a/data0", home / "a/sub/third");
    EXPECT_EQ(directorySize(home / "a"), 3 * MiB);
}

TEST_F(DirectorySize, NamesMayHoldAnything) {
    const std::string odd = "line\nbreak \xff\xfe\x01";
    fill(home / "a" / odd, MiB, odd);
    EXPECT_EQ(directorySize(home / "a"), MiB);
    EXPECT_EQ(directorySize(home / "a" / odd), MiB);
}

TEST_F(DirectorySize, ATreeDeeperThanTheDescriptorsIsMeasuredWhole) {
    // More levels than a process may open files, and a path longer than any call takes.
    const fs::path start = home / "deep";
    folder(start);
    int at = open(start.c_str(), O_RDONLY | O_DIRECTORY);
    constexpr int levels = 3000;
    for (int level = 0; level < levels; ++level) {
        ASSERT_EQ(mkdirat(at, "folder", 0755), 0);
        const int side = openat(at, "z", O_CREAT | O_WRONLY, 0644);
        ASSERT_EQ(posix_fallocate(side, 0, 4096), 0);
        close(side);
        const int next = openat(at, "folder", O_RDONLY | O_DIRECTORY);
        close(at);
        at = next;
    }
    close(at);
    EXPECT_EQ(directorySize(start), levels * 4096u);
}

TEST_F(DirectorySize, AWideTreeIsMeasuredWhole) {
    for (int top = 0; top < 300; ++top) {
        for (const char* sub : {"", "a", "b/c"}) fill(home / "wide" / std::to_string(top) / sub, 4096);
    }
    EXPECT_EQ(directorySize(home / "wide"), 900 * 4096u);
}

TEST_F(DirectorySize, AnUnreadableFolderContributesNothing) {
    fill(home / "a/open", MiB);
    fill(home / "a/shut", MiB);
    fill(home / "a/unsearchable", MiB);
    fs::permissions(home / "a/shut", fs::perms::none);
    fs::permissions(home / "a/unsearchable", fs::perms::others_read | fs::perms::owner_read);
    const int megabytes = inChild([&] {
        if (!becomeOrdinaryUser()) return 99;
        return static_cast<int>(directorySize(home / "a") / MiB);
    });
    EXPECT_EQ(megabytes, 1);
    fs::permissions(home / "a/shut", fs::perms::owner_all);
    fs::permissions(home / "a/unsearchable", fs::perms::owner_all);
}

TEST_F(DirectorySize, LeavesOutWhatIsMountedInside) {
    fill(home / "a", MiB);
    fill(home / "other", 4 * MiB);
    folder(home / "a/memory");
    folder(home / "a/sub/bound");
    const int megabytes = inChild([&] {
        if (!becomeAloneWithMounts()) return 99;
        if (mount("none", (home / "a/memory").c_str(), "tmpfs", 0, nullptr) != 0) return 98;
        if (mount((home / "other").c_str(), (home / "a/sub/bound").c_str(), nullptr, MS_BIND, nullptr) != 0) return 97;
        fill(home / "a/memory/in", 2 * MiB);
        if (directorySize(home / "a/memory") != 2 * MiB) return 96;
        return static_cast<int>(directorySize(home / "a") / MiB);
    });
    EXPECT_EQ(megabytes, 1);
}

TEST_F(DirectorySize, FoldersThatVanishOnTheWayAreNoHarm) {
    fill(home / "a/stays", MiB);
    std::atomic<bool> stop = false;
    std::thread remover([&] {
        while (!stop) {
            for (int n = 0; n < 40; ++n) folder(home / "a/fleeting" / std::to_string(n) / "x/y");
            fs::remove_all(home / "a/fleeting");
        }
    });
    for (int round = 0; round < 300; ++round) EXPECT_EQ(directorySize(home / "a"), MiB);
    stop = true;
    remover.join();
}

TEST_F(DirectorySize, EndsEarlyAndLeavesNoDescriptorOpen) {
    const auto descriptors = [] {
        return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    };
    for (int top = 0; top < 200; ++top) fill(home / "wide" / std::to_string(top) / "a", 4096);
    const auto before = descriptors();
    std::atomic<bool> cancelled = true;
    EXPECT_EQ(directorySize(home / "wide", &cancelled), 0u);
    for (int round = 0; round < 50; ++round) {
        cancelled = false;
        std::thread canceller([&] { cancelled = true; });
        EXPECT_LE(directorySize(home / "wide", &cancelled), 200 * 4096u);
        canceller.join();
    }
    EXPECT_EQ(descriptors(), before);
}

TEST_F(DirectorySize, NewestTimeIsThatOfAnythingInsideButNotOfTheFolderItself) {
    file(home / "t/a/one");
    file(home / "t/a/.hidden");
    link(home / "t/a/link", outside);
    for (const char* name : {"t/a/one", "t/a/.hidden", "t/a/link", "t/a"}) age(home / name, 40);
    age(home / "t", 0);
    EXPECT_DOUBLE_EQ(newestMtime(home / "t"), now - 40 * day);
    age(home / "t/a/.hidden", 1);
    EXPECT_DOUBLE_EQ(newestMtime(home / "t"), now - 40 * day);
    age(home / "t/a/link", 31);
    EXPECT_DOUBLE_EQ(newestMtime(home / "t"), now - 31 * day);
    age(home / "t/a", 30);
    EXPECT_DOUBLE_EQ(newestMtime(home / "t"), now - 30 * day);
    age(home / "t/a/one", 2);
    EXPECT_DOUBLE_EQ(newestMtime(home / "t"), now - 2 * day);
}

}  // namespace ravik
