#pragma once

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>

namespace ravik {

/// Open folders on their way from one worker of a walk to another. Holds few, so that a wide tree costs no memory:
/// who finds it full walks the folder himself. The oldest goes first: it lies highest and holds the most.
class FolderQueue {
public:
    static constexpr std::size_t capacity = 32;

    /// The queue owns the descriptor after a yes. Any worker.
    bool offer(int descriptor);
    /// Waits for a folder; -1 once there is none and nobody is left at work who could offer one.
    int take();
    /// A worker that is about to call take() for the first time. The first one must have entered before any take().
    void enter();

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::array<int, capacity> m_waiting{};
    std::size_t m_oldest = 0;
    std::size_t m_count = 0;
    std::atomic<bool> m_full = false;
    int m_working = 0;
};

}  // namespace ravik
