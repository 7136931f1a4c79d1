#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace ravik::platform {

/// A few threads of lowered priority. One is started where none is idle, so work that takes minutes does not keep
/// a tick waiting. Any thread.
class WorkerPool {
public:
    WorkerPool() = default;
    /// Waits for what has begun; what has not is dropped.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Begins at once while fewer than mostThreads are busy, else when one is free, in the order given.
    void run(std::function<void()> work);

    static constexpr std::size_t mostThreads = 8;

private:
    void serve();

    std::mutex m_mutex;  // guards what follows
    std::condition_variable m_wake;
    std::deque<std::function<void()>> m_waiting;
    std::vector<std::thread> m_threads;
    std::size_t m_idle = 0;
    bool m_ending = false;
};

}  // namespace ravik::platform
