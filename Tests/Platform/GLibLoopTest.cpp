#include "Platform/Linux/GLibLoop.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <limits>
#include <mutex>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Platform/Linux/Clock.h"
#include "Platform/Linux/WorkerPool.h"

namespace ravik::platform {

namespace {

double clockNow() { return SystemClock().monotonic(); }

}  // namespace

TEST(GLibLoop, RunsWhatIsPostedInItsOrder) {
    GLibLoop loop;
    std::string order;
    loop.post([&] {
        order += 'a';
        loop.post([&] {
            order += 'd';
            loop.quit();
        });
    });
    loop.post([&] { order += 'b'; });
    loop.post([&] { order += 'c'; });
    loop.run();
    EXPECT_EQ(order, "abcd");
}

TEST(GLibLoop, TakesPostsOfAnyThreadAndRunsThemOnItsOwn) {
    GLibLoop loop;
    const auto self = std::this_thread::get_id();
    constexpr int threads = 4;
    constexpr int each = 200;
    int ran = 0;
    std::vector<std::thread> posters;
    for (int n = 0; n < threads; ++n) {
        posters.emplace_back([&] {
            for (int k = 0; k < each; ++k) {
                loop.post([&] {
                    EXPECT_EQ(std::this_thread::get_id(), self);
                    if (++ran == threads * each) loop.quit();
                });
            }
        });
    }
    loop.run();
    for (auto& poster : posters) poster.join();
    EXPECT_EQ(ran, threads * each);
}

TEST(GLibLoop, FiresTimersByTheirTimeAndNotBefore) {
    GLibLoop loop;
    const double begun = clockNow();
    std::string order;
    // Far enough apart for a busy computer, on which both may have come due by the time that the loop turns.
    loop.after(0.5, [&] {
        order += 'b';
        EXPECT_GE(clockNow() - begun, 0.499);
        loop.quit();
    });
    loop.after(0.01, [&] { order += 'a'; });
    loop.run();
    EXPECT_EQ(order, "ab");
}

TEST(GLibLoop, TimeThatIsNoneFiresAtOnce) {
    GLibLoop loop;
    int fired = 0;
    loop.after(-5, [&] { ++fired; });
    loop.after(std::numeric_limits<double>::quiet_NaN(), [&] { ++fired; });
    loop.after(0.03, [&] { loop.quit(); });
    loop.after(1e300, [&] { ++fired; });
    loop.run();
    EXPECT_EQ(fired, 2);
}

TEST(GLibLoop, RepeatsUntilCancelledFromWithin) {
    GLibLoop loop;
    int fired = 0;
    MainLoop::Timer timer = 0;
    timer = loop.every(0, [&] {
        if (++fired == 3) {
            loop.cancel(timer);
            loop.after(0.02, [&] { loop.quit(); });
        }
    });
    EXPECT_NE(timer, 0u);
    loop.run();
    EXPECT_EQ(fired, 3);
}

TEST(GLibLoop, CancelledTimerNeverFires) {
    GLibLoop loop;
    bool fired = false;
    MainLoop::Timer second = 0;
    // Both fall due in the same turn; the first strikes out the second.
    loop.after(0.01, [&] { loop.cancel(second); });
    second = loop.after(0.01, [&] { fired = true; });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    loop.after(0.03, [&] {
        loop.cancel(second);
        loop.cancel(0);
        loop.quit();
    });
    loop.run();
    EXPECT_FALSE(fired);
}

TEST(GLibLoop, BackgroundWorkRunsBesideTheLoopAtLowerPriority) {
    GLibLoop loop;
    const auto self = std::this_thread::get_id();
    const int own = getpriority(PRIO_PROCESS, 0);
    bool done = false;
    loop.background([&] {
        EXPECT_NE(std::this_thread::get_id(), self);
        const int lowered = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
        EXPECT_TRUE(lowered > own || own >= 19) << lowered;
        loop.post([&] {
            done = true;
            loop.quit();
        });
    });
    loop.run();
    EXPECT_TRUE(done);
    EXPECT_EQ(getpriority(PRIO_PROCESS, 0), own);
}

TEST(GLibLoop, QuitBeforeRunEndsTheNextRunOnly) {
    GLibLoop loop;
    bool fired = false;
    loop.quit();
    loop.run();
    loop.after(0.01, [&] {
        fired = true;
        loop.quit();
    });
    loop.run();
    EXPECT_TRUE(fired);
}

TEST(GLibLoop, NothingOfAnEndedLoopRunsInTheNext) {
    bool ran = false;
    {
        GLibLoop gone;
        gone.post([&] { ran = true; });
        gone.after(0, [&] { ran = true; });
        gone.every(0.001, [&] { ran = true; });
    }
    GLibLoop loop;
    loop.after(0.02, [&] { loop.quit(); });
    loop.run();
    EXPECT_FALSE(ran);
}

TEST(GLibLoop, HearsEachEndingSignalOnTheLoop) {
    GLibLoop loop;
    const auto self = std::this_thread::get_id();
    std::vector<int> heard;
    loop.onEndingSignal([&](int number) {
        EXPECT_EQ(std::this_thread::get_id(), self);
        heard.push_back(number);
        if (heard.size() == 1) kill(getpid(), SIGINT);
        if (heard.size() == 2) kill(getpid(), SIGHUP);
        if (heard.size() == 3) loop.quit();
    });
    loop.post([] { kill(getpid(), SIGTERM); });
    loop.run();
    EXPECT_EQ(heard, (std::vector<int>{SIGTERM, SIGINT, SIGHUP}));
}

TEST(GLibLoopDeathTest, IgnoredHangUpStaysIgnored) {
    // GLib hears signals on a thread of its own, which a mere fork would not have.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            signal(SIGHUP, SIG_IGN);
            int heard = 0;
            GLibLoop loop;
            loop.onEndingSignal([&](int number) {
                heard = number;
                loop.quit();
            });
            loop.post([&loop] {
                kill(getpid(), SIGHUP);
                loop.after(0.02, [] { kill(getpid(), SIGTERM); });
            });
            loop.run();
            _exit(heard == SIGTERM ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(WorkerPool, LongWorkDoesNotHoldUpShortWork) {
    std::mutex mutex;
    std::condition_variable changed;
    bool shortDone = false;
    bool longSawIt = false;
    {
        WorkerPool pool;
        pool.run([&] {
            std::unique_lock lock(mutex);
            longSawIt = changed.wait_for(lock, std::chrono::seconds(20), [&] { return shortDone; });
        });
        pool.run([&] {
            const std::lock_guard lock(mutex);
            shortDone = true;
            changed.notify_all();
        });
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return shortDone; });
    }
    EXPECT_TRUE(longSawIt);
}

TEST(WorkerPool, ServesMoreWorkThanItHasThreads) {
    constexpr int works = 200;
    std::mutex mutex;
    std::condition_variable changed;
    int done = 0;
    std::atomic<int> busy = 0;
    std::atomic<int> most = 0;
    WorkerPool pool;
    for (int n = 0; n < works; ++n) {
        pool.run([&] {
            int seen = ++busy;
            for (int known = most; seen > known && !most.compare_exchange_weak(known, seen);) {}
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            --busy;
            const std::lock_guard lock(mutex);
            ++done;
            changed.notify_all();
        });
    }
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(20), [&] { return done == works; }));
    EXPECT_LE(most, static_cast<int>(WorkerPool::mostThreads));
}

}  // namespace ravik::platform
