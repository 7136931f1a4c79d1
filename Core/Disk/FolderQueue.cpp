#include "Core/Disk/FolderQueue.h"

namespace ravik {

bool FolderQueue::offer(int descriptor) {
    if (m_full.load(std::memory_order_relaxed)) return false;
    {
        const std::scoped_lock lock(m_mutex);
        if (m_count == capacity) return false;
        m_waiting[(m_oldest + m_count++) % capacity] = descriptor;
        m_full.store(m_count == capacity, std::memory_order_relaxed);
    }
    m_changed.notify_one();
    return true;
}

void FolderQueue::enter() {
    const std::scoped_lock lock(m_mutex);
    ++m_working;
}

int FolderQueue::take() {
    std::unique_lock lock(m_mutex);
    --m_working;
    m_changed.wait(lock, [&] { return m_count > 0 || m_working == 0; });
    if (m_count == 0) {
        m_changed.notify_all();
        return -1;
    }
    ++m_working;
    const int descriptor = m_waiting[m_oldest];
    m_oldest = (m_oldest + 1) % capacity;
    --m_count;
    m_full.store(false, std::memory_order_relaxed);
    return descriptor;
}

}  // namespace ravik
