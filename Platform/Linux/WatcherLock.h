#pragma once

#include "Platform/Linux/LockFile.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// The lock "watcher.lock" in the run-time folder. Main loop.
class WatcherLock : public WatchLock {
public:
    /// `folder` is made if need be, mode 0700; `name` is what others are told of this process ("ravik watch").
    WatcherLock(std::filesystem::path folder, std::string name, std::uint32_t uid);

    /// Holding it already is no refusal.
    std::optional<Refusal> acquire() override;
    bool tryAcquire() override { return m_lock.take() == LockFile::Answer::mine; }
    void release() override { m_lock.release(); }

private:
    LockFile m_lock;
};

}  // namespace ravik::platform
