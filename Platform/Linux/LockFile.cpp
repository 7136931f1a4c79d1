#include "Platform/Linux/LockFile.h"

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

constexpr int lookAgain = 20;
constexpr int lookAgainMicroseconds = 10'000;

LockHolder livingHolder(const fs::path& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    char bytes[256];
    const ssize_t got = file ? pread(file.get(), bytes, sizeof bytes, 0) : 0;
    const LockHolder holder = parseLockHolder({bytes, got > 0 ? static_cast<std::size_t>(got) : 0});
    // What stands there may be an earlier owner's, in the moment before the present one has written.
    const bool lives = holder.pid > 0 && (kill(holder.pid, 0) == 0 || errno == EPERM);
    return lives ? holder : LockHolder{};
}

/// Where this fails the lock holds all the same, and others hear of a process without a number.
void tellOthers(int file, std::string_view text) {
    [[maybe_unused]] const bool told =
        ftruncate(file, 0) == 0 && pwrite(file, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

}  // namespace

LockHolder parseLockHolder(std::string_view lockFile) {
    const std::size_t feed = lockFile.find('\n');
    if (feed == std::string_view::npos) return {};
    LockHolder holder;
    const auto [end, error] = std::from_chars(lockFile.data(), lockFile.data() + feed, holder.pid);
    if (error != std::errc{} || end != lockFile.data() + feed || holder.pid < 1) return {};
    const std::string_view rest = lockFile.substr(feed + 1);
    holder.name = rest.substr(0, rest.find('\n'));
    return holder;
}

LockFile::LockFile(fs::path folder, std::string file, std::string holder, std::uint32_t uid)
    : m_folder(std::move(folder)), m_file(std::move(file)), m_holder(std::move(holder)), m_uid(uid) {}

bool LockFile::openFolder(Descriptor& folder) {
    m_why = "it cannot be made";
    if (mkdir(m_folder.c_str(), 0700) != 0 && errno != EEXIST) return false;
    // Anyone may have laid a link or a folder of theirs in the place of one below /tmp.
    folder = Descriptor(open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    m_why = errno == ENOTDIR || errno == ELOOP ? "it is no folder" : "it cannot be opened";
    if (!folder) return false;
    struct stat found {};
    m_why = "it is somebody else's";
    if (fstat(folder.get(), &found) != 0 || found.st_uid != m_uid) return false;
    m_why = "others may write in it";
    return (found.st_mode & 077) == 0 || fchmod(folder.get(), 0700) == 0;
}

bool LockFile::openFile(const Descriptor& folder, Descriptor& file) {
    m_why = "the lock file cannot be opened";
    file =
        Descriptor(openat(folder.get(), m_file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    struct stat found {};
    if (!file || fstat(file.get(), &found) != 0) return false;
    m_why = "the lock file is somebody else's";
    if (found.st_uid != m_uid) return false;
    m_why = "the lock file is none";
    return S_ISREG(found.st_mode);
}

LockFile::Answer LockFile::take() {
    if (m_held) return Answer::mine;
    Descriptor folder;
    Descriptor file;
    if (!openFolder(folder) || !openFile(folder, file)) return Answer::unusable;
    int locked = 0;
    do {
        locked = flock(file.get(), LOCK_EX | LOCK_NB);
    } while (locked != 0 && errno == EINTR);
    if (locked != 0 && errno == EWOULDBLOCK) return Answer::theirs;
    m_why = "its file system knows no locks";
    if (locked != 0) return Answer::unusable;

    tellOthers(file.get(), fmt::format("{}\n{}\n", getpid(), m_holder));
    // A folder under a lock is passed over when old files in /tmp are swept away.
    flock(folder.get(), LOCK_SH | LOCK_NB);
    m_held = std::move(file);
    m_heldFolder = std::move(folder);
    return Answer::mine;
}

LockHolder LockFile::holder() const {
    LockHolder found = livingHolder(m_folder / m_file);
    for (int look = 0; found.pid == 0 && look < lookAgain; ++look) {
        usleep(lookAgainMicroseconds);
        found = livingHolder(m_folder / m_file);
    }
    return found;
}

void LockFile::release() {
    if (!m_held) return;
    tellOthers(m_held.get(), "");
    m_held.close();
    m_heldFolder.close();
}

}  // namespace ravik::platform
