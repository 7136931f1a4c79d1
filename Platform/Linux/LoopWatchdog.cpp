#include "Platform/Linux/LoopWatchdog.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include <glib.h>
#include <pthread.h>
#include <sys/timerfd.h>
#include <time.h>
#include <unistd.h>

#include "Platform/Linux/Descriptor.h"

namespace ravik::platform {

namespace {

/// A timer that rings this much late was not held up by the loop.
constexpr double tolerated = 1.0;
constexpr double earliest = 1e-9;

double now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

struct LoopWatchdog::Guard {
    Guard(double seconds, Observer told)
        : limit(seconds), observer(std::move(told)), timer(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)) {
        if (!timer) return;
        thread = std::thread([this] { watch(); });
        pollBefore = g_main_context_get_poll_func(nullptr);
        current = this;
        g_main_context_set_poll_func(nullptr, poll);
    }

    ~Guard() {
        if (!timer) return;
        g_main_context_set_poll_func(nullptr, pollBefore);
        current = nullptr;
        rest();
        {
            const std::lock_guard lock(mutex);
            stopping = true;
            ring(earliest);
        }
        thread.join();
    }

    static gint poll(GPollFD* files, guint count, gint timeout) {
        Guard& guard = *current;
        guard.rest();
        const gint ready = guard.pollBefore(files, count, timeout);
        const int error = errno;
        guard.work();
        errno = error;
        return ready;
    }

    /// At this moment of the monotonic clock; 0: never.
    void ring(double at) const {
        itimerspec when{};
        when.it_value.tv_sec = static_cast<time_t>(at);
        when.it_value.tv_nsec = static_cast<long>((at - std::floor(at)) * 1e9);
        timerfd_settime(timer.get(), TFD_TIMER_ABSTIME, &when, nullptr);
    }

    void work() {
        const std::lock_guard lock(mutex);
        busySince = now();
        deadline = busySince + limit;
        ring(deadline);
    }

    void rest() {
        const std::lock_guard lock(mutex);
        if (hang) {
            ended.push_back({*hang, now() - busySince, true});
            hang.reset();
            ring(earliest);
        } else if (ended.empty()) {
            ring(0);
        }
        busySince = 0;
    }

    void watch() {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) sigdelset(&all, fault);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        pthread_setname_np(pthread_self(), "watchdog");

        bool last = false;
        while (!last) {
            std::uint64_t rings = 0;
            if (read(timer.get(), &rings, sizeof rings) < 0 && errno != EINTR) return;
            std::vector<Hang> news;
            {
                const std::lock_guard lock(mutex);
                news = std::exchange(ended, {});
                look(news);
                last = stopping;
            }
            for (const Hang& one : news) observer(one);
        }
    }

    void look(std::vector<Hang>& news) {
        if (busySince <= 0) return;
        const double time = now();
        const double late = time - deadline;
        if (late > tolerated) {
            // As if it had not been.
            busySince = hang ? busySince + late : time;
            deadline = hang ? time : time + limit;
        }
        if (time >= deadline) {
            if (!hang) hang = ++hangs;
            const double lasted = time - busySince;
            news.push_back({*hang, lasted, false});
            deadline = time + std::max(limit, lasted);
        }
        ring(deadline);
    }

    static inline Guard* current = nullptr;

    const double limit;
    const Observer observer;
    const Descriptor timer;
    GPollFunc pollBefore = nullptr;

    std::mutex mutex;      // guards what follows, and the setting of the timer
    double busySince = 0;  // 0: it waits
    double deadline = 0;
    std::optional<int> hang;
    int hangs = 0;
    std::vector<Hang> ended;
    bool stopping = false;

    std::thread thread;
};

LoopWatchdog::LoopWatchdog(double limit, Observer observer)
    : m_guard(std::make_unique<Guard>(limit, std::move(observer))) {}

LoopWatchdog::~LoopWatchdog() = default;

}  // namespace ravik::platform
