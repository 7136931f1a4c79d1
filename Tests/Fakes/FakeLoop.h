#pragma once

#include <deque>
#include <map>
#include <mutex>
#include <vector>

#include "Tests/Fakes/FakeClock.h"

namespace ravik::fakes {

/// A main loop that is cranked by hand: time passes only while it runs, and background work runs in between.
class FakeLoop : public MainLoop {
public:
    explicit FakeLoop(FakeClock& clock) : m_clock(clock) {}

    void post(std::function<void()> work) override { m_posted.push_back(std::move(work)); }
    Timer after(double seconds, std::function<void()> work) override;
    Timer every(double seconds, std::function<void()> work) override;
    void cancel(Timer timer) override;
    void background(std::function<void()> work) override { m_background.push_back(std::move(work)); }
    /// Runs for a simulated year at most.
    void run() override;
    void quit() override { m_quit = true; }

    /// Runs all that is posted and all background work, without letting time pass.
    void settle();
    /// Lets time pass, firing timers in their order and settling after each.
    void runFor(double seconds);

    /// Held-back background work stays queued: a tick that does not come back.
    bool holdBackground = false;
    std::size_t timers() const { return m_timers.size(); }

private:
    struct Entry {
        Time due = 0;
        double period = 0;  // 0: once
        std::function<void()> work;
    };

    FakeClock& m_clock;
    std::deque<std::function<void()>> m_posted;
    std::deque<std::function<void()>> m_background;
    std::map<Timer, Entry> m_timers;
    Timer m_next = 1;
    bool m_quit = false;
};

}  // namespace ravik::fakes
