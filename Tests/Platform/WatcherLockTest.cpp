#include "Platform/Linux/WatcherLock.h"

#include <csignal>
#include <fstream>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Platform/Linux/ReadFile.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

struct WatcherLocks : ::testing::Test {
    WatcherLock lock(std::string name = "ravik watch") const { return {runtime, std::move(name), geteuid()}; }

    /// A child that holds the lock until it is ended; 0 if it did not get it.
    Pid startHolder() {
        int ready[2];
        if (pipe(ready) != 0) return 0;
        const Pid child = reaper.add(forkChild([&] {
            WatcherLock held = lock("the desktop app");
            const char got = held.acquire() ? 'n' : 'y';
            if (write(ready[1], &got, 1) != 1) _exit(1);
            while (true) pause();
        }));
        close(ready[1]);
        char got = 0;
        const bool told = read(ready[0], &got, 1) == 1;
        close(ready[0]);
        return told && got == 'y' ? child : 0;
    }

    std::string refusalOf(WatcherLock own) const {
        const auto refusal = own.acquire();
        if (!refusal) return "acquired";
        EXPECT_EQ(refusal->holder, 0);
        return refusal->sentence;
    }

    fakes::TemporaryFolder folder;
    fs::path runtime = folder.path() / "ravik";
    Reaper reaper;
};

}  // namespace

TEST_F(WatcherLocks, FirstOneWatchesInAFolderOfItsOwnersAlone) {
    WatcherLock own = lock();
    EXPECT_FALSE(own.acquire());
    EXPECT_EQ(modeOf(runtime), 0700u);
    EXPECT_EQ(modeOf(runtime / "watcher.lock"), 0600u);
    EXPECT_EQ(readFile((runtime / "watcher.lock").string()), std::to_string(getpid()) + "\nravik watch\n");
    EXPECT_FALSE(own.acquire()) << "the one who watches may ask again";
}

TEST_F(WatcherLocks, SecondOneIsToldWhoWatches) {
    const Pid holder = startHolder();
    ASSERT_NE(holder, 0);
    WatcherLock own = lock();
    const auto refusal = own.acquire();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->holder, holder);
    EXPECT_EQ(refusal->sentence, "the desktop app (process " + std::to_string(holder) +
                                     ") already watches this computer, and only one can.");
    EXPECT_EQ(readFile((runtime / "watcher.lock").string()), std::to_string(holder) + "\nthe desktop app\n")
        << "who is refused changes nothing";
}

TEST_F(WatcherLocks, OwnerThatWasKilledFreesIt) {
    const Pid holder = startHolder();
    ASSERT_NE(holder, 0);
    WatcherLock own = lock();
    ASSERT_TRUE(own.acquire());
    reaper.end(holder);
    EXPECT_FALSE(own.acquire());
    EXPECT_EQ(readFile((runtime / "watcher.lock").string()), std::to_string(getpid()) + "\nravik watch\n");
}

TEST_F(WatcherLocks, ReleasedLockIsFreeAndTellsOfNobody) {
    WatcherLock first = lock();
    WatcherLock second = lock();
    ASSERT_FALSE(first.acquire());
    ASSERT_TRUE(second.acquire());
    first.release();
    first.release();
    EXPECT_EQ(readFile((runtime / "watcher.lock").string()), "");
    EXPECT_FALSE(second.acquire());
    EXPECT_TRUE(first.acquire());
}

TEST_F(WatcherLocks, FileThatWasLeftBehindMeansNothing) {
    folder.write("ravik/watcher.lock", std::to_string(getppid()) + "\nravik watch\n");
    EXPECT_FALSE(lock().acquire());
}

TEST_F(WatcherLocks, NumberOfAProcessThatHasGoneIsNotTold) {
    const Pid holder = startHolder();
    ASSERT_NE(holder, 0);
    for (const char* text : {"2147483647\nravik watch\n", "", "x\ny\n", "-1\n\n"}) {
        std::ofstream(runtime / "watcher.lock", std::ios::trunc) << text;
        EXPECT_EQ(refusalOf(lock()), "Another process already watches this computer, and only one can.") << text;
    }
}

TEST_F(WatcherLocks, FolderOfSomebodyElseIsRefused) {
    if (geteuid() == 0) {
        ASSERT_EQ(mkdir(runtime.c_str(), 0700), 0);
        ASSERT_EQ(chown(runtime.c_str(), somebodyElse, somebodyElse), 0);
    } else {
        runtime = "/usr";  // root's
    }
    EXPECT_EQ(refusalOf(lock()), "Only one process can watch, and " + runtime.string() +
                                     " cannot hold the lock for it: it is somebody else's.");
    EXPECT_FALSE(fs::exists(runtime / "watcher.lock"));
}

TEST_F(WatcherLocks, FolderThatIsAFileOrALinkIsRefused) {
    const std::string no =
        "Only one process can watch, and " + runtime.string() + " cannot hold the lock for it: it is no folder.";
    folder.write("ravik", "a file");
    EXPECT_EQ(refusalOf(lock()), no);
    fs::remove(runtime);
    fs::create_directory(folder.path() / "elsewhere");
    fs::create_directory_symlink(folder.path() / "elsewhere", runtime);
    EXPECT_EQ(refusalOf(lock()), no);
    EXPECT_TRUE(fs::is_empty(folder.path() / "elsewhere"));
}

TEST_F(WatcherLocks, FolderThatOthersMayWriteInIsClosedToThem) {
    fs::create_directory(runtime);
    fs::permissions(runtime, fs::perms(0777));
    WatcherLock own = lock();
    EXPECT_FALSE(own.acquire());
    EXPECT_EQ(modeOf(runtime), 0700u);
}

TEST_F(WatcherLocks, LockFileOfSomebodyElseOrOfAnotherKindIsRefused) {
    fs::create_directory(runtime);
    const fs::path file = runtime / "watcher.lock";
    fs::create_symlink(folder.path() / "target", file);
    EXPECT_NE(refusalOf(lock()), "acquired");
    EXPECT_FALSE(fs::exists(folder.path() / "target"));
    fs::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_NE(refusalOf(lock()), "acquired");
    fs::remove(file);
    if (geteuid() == 0) {
        folder.write("ravik/watcher.lock", "1\ninit\n");
        ASSERT_EQ(chown(file.c_str(), somebodyElse, somebodyElse), 0);
        EXPECT_EQ(refusalOf(lock()), "Only one process can watch, and " + runtime.string() +
                                         " cannot hold the lock for it: the lock file is somebody else's.");
        fs::remove(file);
    }
    EXPECT_EQ(refusalOf(lock()), "acquired");
}

TEST_F(WatcherLocks, FolderThatCannotBeMadeIsRefused) {
    runtime = folder.path() / "missing" / "ravik";
    EXPECT_EQ(refusalOf(lock()), "Only one process can watch, and " + runtime.string() +
                                     " cannot hold the lock for it: it cannot be made.");
}

TEST_F(WatcherLocks, OfTwoAtOnceExactlyOneWatches) {
    for (int round = 0; round < 20; ++round) {
        int begin[2], told[2], end[2];
        ASSERT_EQ(pipe(begin) | pipe(told) | pipe(end), 0);
        Pid children[2];
        for (Pid& child : children) {
            child = reaper.add(forkChild([&] {
                close(begin[1]);
                close(end[1]);
                char nothing = 0;
                // Both begin when the pipe closes, and keep what they have until both have told.
                if (read(begin[0], &nothing, 1) != 0) _exit(1);
                WatcherLock own = lock();
                const char got = own.acquire() ? 'n' : 'y';
                if (write(told[1], &got, 1) != 1 || read(end[0], &nothing, 1) != 0) _exit(1);
            }));
        }
        for (const int gone : {begin[0], begin[1], told[1], end[0]}) close(gone);
        char answers[2] = {};
        for (char& answer : answers) ASSERT_EQ(read(told[0], &answer, 1), 1);
        close(end[1]);
        close(told[0]);
        for (const Pid child : children) {
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
        ASSERT_NE(answers[0], answers[1]) << "round " << round;
    }
}

TEST(LockHolder, IsReadFromAWholeFileOnly) {
    EXPECT_EQ(parseLockHolder("812\nravik watch\n"), (LockHolder{812, "ravik watch"}));
    EXPECT_EQ(parseLockHolder("812\n"), (LockHolder{812, ""}));
    for (const char* text : {"", "812", "\n", "0\nx\n", "-4\nx\n", "8 12\nx\n", "99999999999\nx\n", "x\n812\n"}) {
        EXPECT_EQ(parseLockHolder(text), LockHolder{}) << text;
    }
}

}  // namespace ravik::platform
