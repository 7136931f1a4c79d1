#pragma once

#include <algorithm>
#include <array>
#include <csignal>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/Clock.h"

namespace ravik::bench {

inline constexpr int familySize = 10;

/// An hour ahead, so that processes which have just been started count as old.
class AheadClock : public platform::SystemClock {
public:
    Time now() const override { return SystemClock::now() + 3600; }
};

/// Processes that sleep until they are woken, in families of ten, ended with their owner.
class Sleepers {
public:
    explicit Sleepers(int count) : m_light(count / 4), m_sound(count - count / 4) {
        if (pipe2(m_lightBell.data(), O_CLOEXEC) != 0 || pipe2(m_soundBell.data(), O_CLOEXEC) != 0) return;
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        for (int started = 0; started < count; started += familySize) {
            const pid_t head = fork();
            if (head > 0) m_heads.push_back(head);
            if (head != 0) continue;
            endWithParent();
            const int end = std::min(started + familySize, count);
            for (int member = started + 1; member < end; ++member) {
                if (fork() != 0) continue;
                endWithParent();
                sleepForEver(member);
            }
            sleepForEver(started);
        }
        usleep(300'000);
    }
    ~Sleepers() {
        for (const pid_t head : m_heads) kill(head, SIGKILL);
        // The heads, then the members that have come down to us.
        while (waitpid(-1, nullptr, 0) > 0) {}
        for (const int end : m_lightBell) close(end);
        for (const int end : m_soundBell) close(end);
    }
    Sleepers(const Sleepers&) = delete;
    Sleepers& operator=(const Sleepers&) = delete;

    /// Lets a quarter of them run for a moment, always the same.
    void wakeQuarter() const { ring(m_lightBell[1], m_light); }
    void wakeAll() const {
        ring(m_soundBell[1], m_sound);
        wakeQuarter();
    }

private:
    static void endWithParent() { prctl(PR_SET_PDEATHSIG, SIGKILL); }
    [[noreturn]] void sleepForEver(int member) const {
        const int bell = member < m_light ? m_lightBell[0] : m_soundBell[0];
        char heard = 0;
        for (;;) {
            // The nap leaves the next ring to another.
            if (read(bell, &heard, 1) == 1)
                usleep(30'000);
            else
                pause();
        }
    }
    static void ring(int bell, int count) {
        const std::string rings(static_cast<std::size_t>(count), '!');
        if (write(bell, rings.data(), rings.size()) == count) usleep(100'000);
    }

    int m_light;
    int m_sound;
    std::array<int, 2> m_lightBell{-1, -1};
    std::array<int, 2> m_soundBell{-1, -1};
    std::vector<pid_t> m_heads;
};

/// CPU time of this thread.
inline double seconds(const std::function<void()>& work) {
    const auto now = [] {
        timespec used{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
        return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
    };
    const double begin = now();
    work();
    return now() - begin;
}

inline double median(std::vector<double> figures) {
    std::ranges::sort(figures);
    return figures.empty() ? 0 : figures[figures.size() / 2];
}

}  // namespace ravik::bench
