#include <sys/stat.h>

#include <gmock/gmock.h>

#include "Tests/Core/Disk/DiskTree.h"

namespace ravik {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

class DiskScan : public DiskTree {
protected:
    using Steps = std::vector<std::pair<int, int>>;

    Steps steps(HostKind kind) {
        Steps seen;
        DiskScanner::scan(scope(kind), roots, [&](int done, int total) { seen.emplace_back(done, total); });
        return seen;
    }
};

TEST_F(DiskScan, AMissingCacheIsNoRow) { EXPECT_THAT(scan(), IsEmpty()); }

TEST_F(DiskScan, ACacheOfExactlyFiftyMebibytesIsLeftOut) {
    fill(home / ".npm/_cacache", 50 * MiB);
    EXPECT_THAT(scan(), IsEmpty());
    fill(home / ".npm/_cacache", 4096, "more");
    EXPECT_THAT(scan(), ElementsAre(Reclaimable{(home / ".npm/_cacache").string(), "npm cache", 50 * MiB + 4096,
                                                "recreated on next use"}));
}

TEST_F(DiskScan, AnOwnedCacheSaysWhoDownloadsItAgain) {
    fill(home / "Library/Application Support/Claude/vm_bundles", 60 * MiB);
    EXPECT_THAT(
        scan(HostKind::mac),
        ElementsAre(Reclaimable{(home / "Library/Application Support/Claude/vm_bundles").string(),
                                "Claude app VM bundle", 60 * MiB, "downloaded again when Claude next needs it"}));
}

TEST_F(DiskScan, TheCacheOfARunningOwnerIsSkipped) {
    fill(home / ".cache/mozilla", 60 * MiB);
    running = {{.bundleName = "firefox", .localizedName = "Firefox", .pid = 1}};
    EXPECT_THAT(scan(), IsEmpty());
    running.clear();
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(DiskScan, ACacheThatIsALinkIsNotMeasured) {
    fill(outside / "models", 60 * MiB);
    link(home / ".cache/huggingface", outside / "models");
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(DiskScan, OnlySupersededBrowsersAreListed) {
    const auto parent = home / ".cache/ms-playwright";
    fill(parent / "chromium-1140", 21 * MiB);
    fill(parent / "chromium-1155", 30 * MiB);
    fill(parent / "firefox-9", 30 * MiB);
    fill(parent / ".links", 30 * MiB);
    EXPECT_THAT(scan(), ElementsAre(Reclaimable{(parent / "chromium-1140").string(), "Old Playwright browser", 21 * MiB,
                                                "a newer chromium is installed"}));
}

TEST_F(DiskScan, AnOldBrowserOfExactlyTwentyMebibytesIsLeftOut) {
    const auto parent = home / ".cache/ms-playwright";
    fill(parent / "chromium-1140", 20 * MiB);
    folder(parent / "chromium-1155");
    EXPECT_THAT(scan(), IsEmpty());
    fill(parent / "chromium-1140/one", 4096);
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(DiskScan, TranscriptsAreListedOnceTheyAreIdleForMoreThanThirtyDays) {
    const auto project = home / ".claude/projects/-home-x";
    fill(project, 24 * MiB);
    for (int part = 0; part < 6; ++part) age(project / ("data" + std::to_string(part)), 30);
    EXPECT_THAT(scan(), IsEmpty());
    for (int part = 0; part < 6; ++part) age(project / ("data" + std::to_string(part)), 31.4);
    EXPECT_THAT(scan(), ElementsAre(Reclaimable{project.string(), "Claude Code transcripts", 24 * MiB,
                                                "last session 31 days ago · your history, not a cache"}));
    age(project / "data3", 2);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(DiskScan, TranscriptsOfExactlyTwentyMebibytesAreLeftOut) {
    const auto project = home / ".claude/projects/-home-x";
    fill(project, 20 * MiB);
    for (int part = 0; part < 5; ++part) age(project / ("data" + std::to_string(part)), 40);
    EXPECT_THAT(scan(), IsEmpty());
    fill(project, 4096, "more");
    age(project / "more0", 40);
    EXPECT_THAT(scan(), SizeIs(1));
}

TEST_F(DiskScan, HiddenTranscriptFoldersAreSkipped) {
    fill(home / ".claude/projects/.hidden", 30 * MiB);
    for (int part = 0; part < 8; ++part) age(home / ".claude/projects/.hidden" / ("data" + std::to_string(part)), 40);
    EXPECT_THAT(scan(), IsEmpty());
}

TEST_F(DiskScan, LargestComesFirstAndEqualSizesKeepTheOrderOfTheSteps) {
    fill(home / ".npm/_npx", 60 * MiB);
    fill(home / ".cache/uv", 60 * MiB);
    fill(home / ".cache/ccache", 70 * MiB);
    fill(home / "Projects/x/dist", 64 * MiB);
    EXPECT_THAT(scannedIds(), ElementsAre((home / ".cache/ccache").string(), (home / "Projects/x/dist").string(),
                                          (home / ".npm/_npx").string(), (home / ".cache/uv").string()));
}

TEST_F(DiskScan, CountsEveryStepFromTheFirstToTheLast) {
    folder(home / "Projects/a");
    folder(home / "Projects/b");
    folder(home / "Projects/target");
    folder(home / "Projects/.hidden");
    file(home / "Projects/file");
    Steps mac;
    for (int done = 1; done <= 20; ++done) mac.emplace_back(done, 20);
    EXPECT_EQ(steps(HostKind::mac), mac);
    Steps linux;
    for (int done = 1; done <= 33; ++done) linux.emplace_back(done, 33);
    EXPECT_EQ(steps(HostKind::linux), linux);
}

TEST_F(DiskScan, WithoutProjectsTheStepsAreTheCachesAndTheTwoParents) {
    EXPECT_THAT(steps(HostKind::mac).back(), Pair(17, 17));
    EXPECT_THAT(steps(HostKind::linux).back(), Pair(30, 30));
}

TEST_F(DiskScan, ACacheIsReportedBeforeItIsMeasuredAndAProjectAfter) {
    // Each callback makes what the step then measures, or no longer measures.
    folder(home / "Projects/a");
    const auto rows = DiskScanner::scan(scope(HostKind::mac), roots, [&](int done, int) {
        if (done == 2) fill(home / ".npm/_cacache", 60 * MiB);
        if (done == 18) fill(home / "Projects/a/dist", 60 * MiB);
    });
    ASSERT_THAT(*rows, SizeIs(1));
    EXPECT_EQ(rows->front().kind, "npm cache");
}

TEST_F(DiskScan, CanBeInterruptedAtEveryStep) {
    fill(home / ".npm/_cacache", 60 * MiB);
    folder(home / "Projects/a");
    for (int stop = 1; stop <= 31; ++stop) {
        std::atomic<bool> cancelled = false;
        auto watched = scope();
        watched.cancelled = &cancelled;
        int last = 0;
        const auto rows = DiskScanner::scan(watched, roots, [&](int done, int) {
            last = done;
            cancelled = done == stop;
        });
        EXPECT_EQ(rows, std::nullopt);
        EXPECT_EQ(last, stop);
    }
}

TEST_F(DiskScan, ChangesNothing) {
    fill(home / ".npm/_cacache", 60 * MiB);
    fill(home / "Projects/a/dist", 60 * MiB);
    const auto picture = [&] {
        std::vector<std::tuple<std::string, std::int64_t, std::int64_t>> all;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
            struct stat status {};
            EXPECT_EQ(lstat(entry.path().c_str(), &status), 0);
            all.emplace_back(entry.path().string(), status.st_mtim.tv_sec, status.st_ctim.tv_nsec);
        }
        return all;
    };
    const auto before = picture();
    scan();
    EXPECT_EQ(picture(), before);
}

TEST_F(DiskScan, AnUnreadableFolderContributesNothing) {
    fill(home / ".npm/_cacache", 60 * MiB);
    fill(home / "Projects/a/dist", 60 * MiB);
    fill(home / "Projects/shut/dist", 60 * MiB);
    fill(home / ".claude/projects/x", 60 * MiB);
    for (const char* shut : {"Projects/shut", ".claude/projects"}) {
        std::filesystem::permissions(home / shut, std::filesystem::perms::none);
    }
    EXPECT_EQ(inChild([&] { return becomeOrdinaryUser() ? static_cast<int>(scan().size()) : 99; }), 2);
    for (const char* shut : {"Projects/shut", ".claude/projects"}) {
        std::filesystem::permissions(home / shut, std::filesystem::perms::owner_all);
    }
}

TEST_F(DiskScan, ARootThatCannotBeListedAddsNoSteps) {
    roots = {home / "missing", home / "Projects"};
    file(home / "missing");
    folder(home / "Projects/a");
    EXPECT_THAT(steps(HostKind::linux).back(), Pair(31, 31));
}

}  // namespace ravik
