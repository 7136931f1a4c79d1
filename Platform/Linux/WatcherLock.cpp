#include "Platform/Linux/WatcherLock.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

constexpr const char* fileName = "watcher.lock";

WatchLock::Refusal unusable(const fs::path& folder, std::string_view why) {
    return {0, fmt::format("Only one process can watch, and {} cannot hold the lock for it: {}.", folder.string(), why)};
}

WatchLock::Refusal heldBy(const Watcher& watcher) {
    if (watcher.pid == 0) return {0, "Another process already watches this computer, and only one can."};
    return {watcher.pid, fmt::format("{} (process {}) already watches this computer, and only one can.",
                                     watcher.name.empty() ? "Another process" : watcher.name, watcher.pid)};
}

constexpr int lookAgain = 20;
constexpr int lookAgainMicroseconds = 10'000;

Watcher holder(int file) {
    char bytes[256];
    const ssize_t got = pread(file, bytes, sizeof bytes, 0);
    const Watcher watcher = parseWatcher({bytes, got > 0 ? static_cast<std::size_t>(got) : 0});
    // What stands there may be an earlier owner's, in the moment before the present one has written.
    const bool lives = watcher.pid > 0 && (kill(watcher.pid, 0) == 0 || errno == EPERM);
    return lives ? watcher : Watcher{};
}

/// Where this fails the lock holds all the same, and others hear of a process without a number.
void tellOthers(int file, std::string_view text) {
    [[maybe_unused]] const bool told =
        ftruncate(file, 0) == 0 && pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

}  // namespace

Watcher parseWatcher(std::string_view lockFile) {
    const std::size_t feed = lockFile.find('\n');
    if (feed == std::string_view::npos) return {};
    Watcher watcher;
    const auto [end, error] = std::from_chars(lockFile.data(), lockFile.data() + feed, watcher.pid);
    if (error != std::errc{} || end != lockFile.data() + feed || watcher.pid < 1) return {};
    const std::string_view rest = lockFile.substr(feed + 1);
    watcher.name = rest.substr(0, rest.find('\n'));
    return watcher;
}

WatcherLock::WatcherLock(fs::path folder, std::string name, std::uint32_t uid)
    : m_folder(std::move(folder)), m_name(std::move(name)), m_uid(uid) {}

std::optional<WatchLock::Refusal> WatcherLock::openFolder(Descriptor& folder) const {
    if (mkdir(m_folder.c_str(), 0700) != 0 && errno != EEXIST) return unusable(m_folder, "it cannot be made");
    // Anyone may have laid a link or a folder of theirs in the place of one below /tmp.
    folder = Descriptor(open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder) {
        const bool noFolder = errno == ENOTDIR || errno == ELOOP;
        return unusable(m_folder, noFolder ? "it is no folder" : "it cannot be opened");
    }
    struct stat found {};
    if (fstat(folder.get(), &found) != 0 || found.st_uid != m_uid) return unusable(m_folder, "it is somebody else's");
    if ((found.st_mode & 077) != 0 && fchmod(folder.get(), 0700) != 0) {
        return unusable(m_folder, "others may write in it");
    }
    return {};
}

std::optional<WatchLock::Refusal> WatcherLock::acquire() {
    if (m_held) return {};
    Descriptor folder;
    if (auto refusal = openFolder(folder)) return refusal;

    Descriptor file(openat(folder.get(), fileName, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat found {};
    if (!file || fstat(file.get(), &found) != 0) return unusable(m_folder, "the lock file cannot be opened");
    if (found.st_uid != m_uid) return unusable(m_folder, "the lock file is somebody else's");
    if (!S_ISREG(found.st_mode)) return unusable(m_folder, "the lock file is none");

    int locked = 0;
    do {
        locked = flock(file.get(), LOCK_EX | LOCK_NB);
    } while (locked != 0 && errno == EINTR);
    if (locked != 0 && errno == EWOULDBLOCK) {
        // Who has just taken it may not have said so yet.
        Watcher watcher = holder(file.get());
        for (int look = 0; watcher.pid == 0 && look < lookAgain; ++look) {
            usleep(lookAgainMicroseconds);
            watcher = holder(file.get());
        }
        return heldBy(watcher);
    }
    if (locked != 0) return unusable(m_folder, "its file system knows no locks");

    tellOthers(file.get(), fmt::format("{}\n{}\n", getpid(), m_name));
    // A folder under a lock is passed over when old files in /tmp are swept away.
    flock(folder.get(), LOCK_SH | LOCK_NB);
    m_held = std::move(file);
    m_heldFolder = std::move(folder);
    return {};
}

void WatcherLock::release() {
    if (!m_held) return;
    tellOthers(m_held.get(), "");
    m_held.close();
    m_heldFolder.close();
}

}  // namespace ravik::platform
