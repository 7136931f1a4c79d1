#include "Tests/Fakes/FakeLoop.h"

#include <algorithm>

namespace ravik::fakes {

MainLoop::Timer FakeLoop::after(double seconds, std::function<void()> work) {
    m_timers[m_next] = {m_clock.now() + std::max(seconds, 0.0), 0, std::move(work)};
    return m_next++;
}

MainLoop::Timer FakeLoop::every(double seconds, std::function<void()> work) {
    const double period = std::max(seconds, 0.001);
    m_timers[m_next] = {m_clock.now() + period, period, std::move(work)};
    return m_next++;
}

void FakeLoop::cancel(Timer timer) { m_timers.erase(timer); }

void FakeLoop::run() {
    m_quit = false;
    runFor(365 * 86400.0);
}

void FakeLoop::settle() {
    while (!m_posted.empty() || (!m_background.empty() && !holdBackground)) {
        auto& queue = m_posted.empty() ? m_background : m_posted;
        const auto work = std::move(queue.front());
        queue.pop_front();
        work();
    }
}

void FakeLoop::runFor(double seconds) {
    const Time end = m_clock.now() + seconds;
    settle();
    while (!m_quit) {
        const auto next = std::ranges::min_element(
            m_timers, [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
        if (next == m_timers.end() || next->second.due > end) break;
        m_clock.time = std::max(m_clock.now(), next->second.due);
        const auto work = next->second.work;
        if (next->second.period > 0) {
            next->second.due += next->second.period;
        } else {
            m_timers.erase(next);
        }
        work();
        settle();
    }
    if (!m_quit) m_clock.time = end;
}

}  // namespace ravik::fakes
