#include "Platform/Linux/StoreFile.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fmt/format.h>

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

constexpr int lockTries = 200;
constexpr useconds_t betweenTries = 10'000;
constexpr int mostCopies = 100;

std::int64_t nanos(const timespec& at) { return at.tv_sec * 1'000'000'000LL + at.tv_nsec; }

bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

void bringToDisk(const fs::path& folder) {
    const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0) return;
    fsync(opened);
    close(opened);
}

}  // namespace

FileLock::FileLock(const fs::path& path) {
    m_file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_file < 0) return;
    for (int tries = 0; tries < lockTries; ++tries) {
        if (flock(m_file, LOCK_EX | LOCK_NB) == 0 || (errno != EWOULDBLOCK && errno != EINTR)) {
            m_held = true;
            return;
        }
        usleep(betweenTries);
    }
}

FileLock::~FileLock() {
    if (m_file >= 0) close(m_file);
}

FileStamp FileStamp::of(const fs::path& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) return {};
    return {found.st_dev, found.st_ino, nanos(found.st_mtim), nanos(found.st_ctim), found.st_size};
}

bool replaceFile(const fs::path& path, std::string_view bytes) {
    const fs::path fresh = fs::path(path) += ".new";
    unlink(fresh.c_str());
    const int file = open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0) return false;
    bool done = writeAll(file, bytes) && fsync(file) == 0;
    done = close(file) == 0 && done;
    done = done && rename(fresh.c_str(), path.c_str()) == 0;
    if (!done) {
        unlink(fresh.c_str());
        return false;
    }
    bringToDisk(path.parent_path());
    return true;
}

bool keepAside(const fs::path& path) {
    for (int number = 1; number <= mostCopies; ++number) {
        const fs::path aside = fs::path(path) += number == 1 ? ".unreadable" : fmt::format(".unreadable-{}", number);
        if (link(path.c_str(), aside.c_str()) == 0) return true;
        if (errno == EEXIST) continue;
        std::error_code error;
        return fs::copy_file(path, aside, error);
    }
    return false;
}

bool makePrivateFolders(const fs::path& folder) {
    struct stat found {};
    if (stat(folder.c_str(), &found) == 0) return S_ISDIR(found.st_mode);
    if (!folder.has_relative_path() || !makePrivateFolders(folder.parent_path())) return false;
    return mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST;
}

}  // namespace ravik::platform
