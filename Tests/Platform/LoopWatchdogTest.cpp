#include "Platform/Linux/LoopWatchdog.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <thread>
#include <vector>

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/GLibLoop.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

constexpr double limit = 0.2;

void block(double seconds) { std::this_thread::sleep_for(std::chrono::duration<double>(seconds)); }

struct LoopWatchdogTest : testing::Test {
    GLibLoop loop;
    std::mutex mutex;
    std::vector<LoopWatchdog::Hang> told;

    LoopWatchdog::Observer note() {
        return [this](const LoopWatchdog::Hang& hang) {
            const std::lock_guard lock(mutex);
            told.push_back(hang);
        };
    }
    /// Those that ended.
    std::vector<double> ended() {
        const std::lock_guard lock(mutex);
        std::vector<double> lengths;
        for (const auto& hang : told) {
            if (hang.over) lengths.push_back(hang.seconds);
        }
        return lengths;
    }
    void runFor(double seconds) {
        loop.after(seconds, [this] { loop.quit(); });
        loop.run();
    }
};

/// How often the thread of that name has run, by the kernel's count.
long switchesOf(const std::string& name) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream status(entry.path() / "status");
        std::string line;
        std::getline(status, line);
        if (line != "Name:\t" + name) continue;
        while (std::getline(status, line)) {
            if (line.starts_with("voluntary_ctxt_switches:")) return std::stol(line.substr(line.find('\t')));
        }
    }
    return -1;
}

}  // namespace

TEST_F(LoopWatchdogTest, TellsOfAHangWhileItLastsAndAtItsEnd) {
    {
        const LoopWatchdog watchdog(limit, note());
        loop.post([this] {
            block(3 * limit);
            const std::lock_guard lock(mutex);
            EXPECT_FALSE(told.empty());
        });
        runFor(4 * limit);
    }
    ASSERT_GE(told.size(), 2u);
    EXPECT_FALSE(told.front().over);
    EXPECT_NEAR(told.front().seconds, limit, 0.1);
    EXPECT_TRUE(told.back().over);
    EXPECT_NEAR(told.back().seconds, 3 * limit, 0.15);
    EXPECT_EQ(ended().size(), 1u);
}

TEST_F(LoopWatchdogTest, EachHangHasANumberOfItsOwn) {
    {
        const LoopWatchdog watchdog(limit, note());
        loop.post([] { block(2 * limit); });
        loop.after(3 * limit, [] { block(2 * limit); });
        runFor(7 * limit);
    }
    EXPECT_EQ(ended().size(), 2u);
    EXPECT_EQ(told.front().number, 1);
    EXPECT_EQ(told.back().number, 2);
}

TEST_F(LoopWatchdogTest, ALoopThatTurnsInTimeIsNeverToldOf) {
    {
        const LoopWatchdog watchdog(limit, note());
        for (int each = 1; each <= 8; ++each) loop.after(each * 0.05, [] { block(limit / 4); });
        runFor(3 * limit);
    }
    EXPECT_TRUE(told.empty());
}

TEST_F(LoopWatchdogTest, ALoopThatWaitsDoesNotHang) {
    {
        const LoopWatchdog watchdog(limit, note());
        runFor(3 * limit);
    }
    EXPECT_TRUE(told.empty());
}

TEST_F(LoopWatchdogTest, IsNotWokenByALoopThatTurnsInTime) {
    const LoopWatchdog watchdog(limit, note());
    runFor(0.05);
    const long before = switchesOf("watchdog");
    ASSERT_GE(before, 0);
    int turns = 0;
    const auto timer = loop.every(0.001, [&] { ++turns; });
    runFor(3 * limit);
    loop.cancel(timer);
    EXPECT_GT(turns, 50);
    EXPECT_EQ(switchesOf("watchdog"), before);
}

TEST_F(LoopWatchdogTest, AHangAtTheEndIsToldToo) {
    {
        const LoopWatchdog watchdog(limit, note());
        loop.post([this] { loop.quit(); });
        loop.run();
        block(2 * limit);
    }
    ASSERT_EQ(ended().size(), 1u);
}

TEST_F(LoopWatchdogTest, LeavesTheLoopAsItFoundIt) {
    const GPollFunc before = g_main_context_get_poll_func(nullptr);
    { const LoopWatchdog watchdog(limit, note()); }
    EXPECT_EQ(g_main_context_get_poll_func(nullptr), before);
    { const LoopWatchdog again(limit, note()); }
    runFor(0.01);
}

TEST_F(LoopWatchdogTest, AProcessThatWasStoppedDidNotHang) {
    PidPipe pipe;
    Reaper reaper;
    const Pid child = reaper.add(forkChild([&] {
        std::atomic<int> hangs = 0;
        {
            const LoopWatchdog watchdog(1.0, [&](const LoopWatchdog::Hang&) { ++hangs; });
            GLibLoop own;
            own.post([&] {
                raise(SIGSTOP);
                // Long enough for the watchdog to look, shorter than what it tells.
                block(0.3);
                own.quit();
            });
            own.run();
        }
        pipe.tell(1000 + hangs);
    }));
    int status = 0;
    waitpid(child, &status, WUNTRACED);
    ASSERT_TRUE(WIFSTOPPED(status));
    block(3.5);
    kill(child, SIGCONT);
    EXPECT_EQ(pipe.hear(), 1000);
}

}  // namespace ravik::platform
