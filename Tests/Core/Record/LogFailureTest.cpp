#include <csignal>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include "Tests/Core/Record/LogScene.h"

namespace ravik {

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

constexpr int couldNotMount = 77;

/// Exit status of a child of this test that does `work`; -1 if it was ended by a signal.
int inChild(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int freeDescriptors() {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator("/proc/self/fd")) ++count;
    return count;
}

using LogFailure = LogScene;

/// Mounts a file system of 64 KiB on `at`, seen by this process alone.
bool mountSmallDisk(const fs::path& at) {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
    return mount("tmpfs", at.c_str(), "tmpfs", 0, "size=64k") == 0;
}

/// Every line parses, but for those cut short by the full disk.
int wholeLines(const fs::path& file, std::string& lastKind) {
    int whole = 0;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        const json value = json::parse(line, nullptr, false);
        if (value.is_discarded()) continue;
        ++whole;
        lastKind = value.at("kind");
    }
    return whole;
}

}  // namespace

TEST_F(LogFailure, TwoProcessesInterleaveWholeLines) {
    constexpr int each = 10000;
    pid_t writers[2];
    for (int writer = 0; writer < 2; ++writer) {
        writers[writer] = fork();
        if (writers[writer] == 0) {
            {
                Log log(plain());
                for (int n = 0; n < each; ++n) {
                    const std::string pad(n % 97 == 0 ? 9000 : n % 200, 'x');
                    log.event("tick", {{"writer", writer}, {"n", n}, {"pad", pad}});
                }
            }
            _exit(0);
        }
    }
    for (const pid_t writer : writers) {
        int status = 0;
        ASSERT_EQ(waitpid(writer, &status, 0), writer);
        ASSERT_EQ(status, 0);
    }
    std::map<int, int> next;
    for (const auto& line : linesOf(today())) {
        const json value = json::parse(line);
        ASSERT_EQ(value.at("n"), next[value.at("writer")]++);
    }
    EXPECT_EQ(next[0], each);
    EXPECT_EQ(next[1], each);
}

TEST_F(LogFailure, FolderThatCannotBeMadeLosesLinesAndNothingElse) {
    std::ofstream(root / "state") << "a file where the folder should be";
    const int before = freeDescriptors();
    {
        Log log(plain());
        for (int n = 0; n < 100; ++n) log.event("tick");
        log.flush();
    }
    EXPECT_EQ(freeDescriptors(), before);
    EXPECT_TRUE(fs::is_regular_file(root / "state"));
}

TEST_F(LogFailure, DayThatCouldNotBeOpenedIsLostAndTheNextIsNot) {
    fs::create_directories(folder / today());
    Log log(plain());
    log.event("lost");
    log.flush();
    fs::remove(folder / today());
    log.event("lostToo");
    log.flush();
    EXPECT_TRUE(namesIn(folder).empty());
    now = now + 86400;
    log.event("kept");
    log.flush();
    EXPECT_EQ(kindsOf(today()), std::vector<std::string>{"kept"});
}

TEST_F(LogFailure, DeletedFolderComesBackWithTheNextDay) {
    Log log(plain());
    log.event("first");
    log.flush();
    fs::remove_all(folder);
    log.event("lost");
    log.flush();
    EXPECT_FALSE(fs::exists(folder));
    now = now + 86400;
    log.event("kept");
    log.flush();
    EXPECT_EQ(kindsOf(today()), std::vector<std::string>{"kept"});
}

TEST_F(LogFailure, DeviceThatIsAlwaysFullIsSuffered) {
    fs::create_directories(folder);
    fs::create_symlink("/dev/full", folder / today());
    {
        Log log(plain());
        for (int n = 0; n < 100; ++n) log.event("tick");
        log.flush();
        now = now + 86400;
        log.event("kept");
    }
    EXPECT_EQ(kindsOf(today()), std::vector<std::string>{"kept"});
}

TEST_F(LogFailure, LineBehindOneCutShortStaysReadable) {
    const int status = inChild([this] {
        signal(SIGXFSZ, SIG_IGN);
        Log log(plain());
        log.event("whole");
        log.flush();
        // Room for half of the next line.
        const rlim_t end = fs::file_size(folder / today()) + 20;
        const rlimit narrow{end, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &narrow);
        log.event("cutShort");
        log.event("dropped");
        log.flush();
        const bool cut = fs::file_size(folder / today()) == end;
        const rlimit wide{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &wide);
        log.event("wholeAgain");
        log.flush();
        return cut ? 0 : 1;
    });
    ASSERT_EQ(status, 0);
    const auto lines = linesOf(today());
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(json::parse(lines[0]).at("kind"), "whole");
    EXPECT_EQ(lines[1].size(), 20u);
    EXPECT_EQ(json::parse(lines[2]).at("kind"), "wholeAgain");
}

TEST_F(LogFailure, FullDiskDropsLinesUntilThereIsRoom) {
    fs::create_directories(folder);
    const int status = inChild([this] {
        if (!mountSmallDisk(folder)) return couldNotMount;
        const fs::path filler = folder / "filler";
        Log log(plain());
        log.event("before");
        log.flush();
        {
            std::ofstream fill(filler);
            fill << std::string(256 << 10, 'f');
        }
        for (int n = 0; n < 500; ++n) log.event("tick", {{"pad", std::string(100, 'x')}});
        log.flush();
        std::string last;
        const int whole = wholeLines(folder / today(), last);
        if (whole < 1 || whole >= 501) return 1;
        fs::remove(filler);
        log.event("after");
        log.flush();
        return wholeLines(folder / today(), last) == whole + 1 && last == "after" ? 0 : 2;
    });
    if (status == couldNotMount) {
        // The device that is always full and the line cut short stand for it where nothing may be mounted.
        std::cout << "no file system can be mounted here; the full disk itself was not seen\n";
        return;
    }
    EXPECT_EQ(status, 0);
}

TEST_F(LogFailure, ReadOnlyFolderLosesLinesAndNothingElse) {
    fs::create_directories(folder);
    const int status = inChild([this] {
        if (!mountSmallDisk(folder)) return couldNotMount;
        if (mount(nullptr, folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) return couldNotMount;
        Log log(plain());
        for (int n = 0; n < 10; ++n) log.event("tick");
        log.flush();
        return fs::is_empty(folder) ? 0 : 1;
    });
    if (status == couldNotMount) {
        std::cout << "no file system can be mounted here; permissions stand for it\n";
        fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
        Log(plain()).event("tick");
        EXPECT_TRUE(fs::is_empty(folder) || geteuid() == 0);
        fs::permissions(folder, fs::perms::owner_all);
        return;
    }
    EXPECT_EQ(status, 0);
}

}  // namespace ravik
