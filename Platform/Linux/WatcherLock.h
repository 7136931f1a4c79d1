#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "Platform/Linux/Descriptor.h"
#include "Platform/Platform.h"

namespace ravik::platform {

/// The lock "watcher.lock" in the run-time folder. The kernel gives it back when its owner ends, in whatever way, so
/// a file that is left behind means nothing. Refuses a folder that another user could have laid out. Main loop.
class WatcherLock : public WatchLock {
public:
    /// `folder` is made if need be, mode 0700; `name` is what others are told of this process ("ravik watch").
    WatcherLock(std::filesystem::path folder, std::string name, std::uint32_t uid);

    /// Holding it already is no refusal.
    std::optional<Refusal> acquire() override;
    void release() override;

private:
    /// The open run-time folder, or why it cannot be used.
    std::optional<Refusal> openFolder(Descriptor& folder) const;

    std::filesystem::path m_folder;
    std::string m_name;
    std::uint32_t m_uid;
    Descriptor m_held;
    Descriptor m_heldFolder;
};

/// Who watches, out of the lock file: a line with the pid, a line with the name.
struct Watcher {
    Pid pid = 0;
    std::string name;

    friend bool operator==(const Watcher&, const Watcher&) = default;
};
/// Pid 0 and no name for anything else.
Watcher parseWatcher(std::string_view lockFile);

}  // namespace ravik::platform
