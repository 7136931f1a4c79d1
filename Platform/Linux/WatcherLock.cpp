#include "Platform/Linux/WatcherLock.h"

#include <fmt/format.h>

namespace ravik::platform {

WatcherLock::WatcherLock(std::filesystem::path folder, std::string name, std::uint32_t uid)
    : m_lock(std::move(folder), "watcher.lock", std::move(name), uid) {}

std::optional<WatchLock::Refusal> WatcherLock::acquire() {
    switch (m_lock.take()) {
        case LockFile::Answer::mine: return {};
        case LockFile::Answer::unusable:
            return Refusal{0, fmt::format("Only one process can watch, and {} cannot hold the lock for it: {}.",
                                          m_lock.folder().string(), m_lock.why())};
        case LockFile::Answer::theirs: break;
    }
    const LockHolder holder = m_lock.holder();
    if (holder.pid == 0) return Refusal{0, "Another process already watches this computer, and only one can."};
    return Refusal{holder.pid, fmt::format("{} (process {}) already watches this computer, and only one can.",
                                           holder.name.empty() ? "Another process" : holder.name, holder.pid)};
}

}  // namespace ravik::platform
