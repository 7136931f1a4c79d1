#include "Platform/Linux/WorkerPool.h"

#include <utility>

#include <sys/resource.h>
#include <unistd.h>

namespace ravik::platform {

namespace {

constexpr int utilityNice = 5;

}  // namespace

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        m_waiting.clear();
    }
    m_wake.notify_all();
    for (auto& thread : m_threads) thread.join();
}

void WorkerPool::run(std::function<void()> work) {
    const std::lock_guard lock(m_mutex);
    if (m_ending) return;
    m_waiting.push_back(std::move(work));
    if (m_idle < m_waiting.size() && m_threads.size() < mostThreads) {
        m_threads.emplace_back([this] { serve(); });
    } else {
        m_wake.notify_one();
    }
}

void WorkerPool::serve() {
    // On Linux this speaks of the calling thread alone.
    const int present = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
    setpriority(PRIO_PROCESS, static_cast<id_t>(gettid()), present + utilityNice);

    std::unique_lock lock(m_mutex);
    while (true) {
        ++m_idle;
        m_wake.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        --m_idle;
        if (m_waiting.empty()) return;
        auto work = std::move(m_waiting.front());
        m_waiting.pop_front();
        lock.unlock();
        work();
        work = nullptr;
        lock.lock();
    }
}

}  // namespace ravik::platform
