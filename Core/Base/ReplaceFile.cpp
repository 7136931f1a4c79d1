#include "Core/Base/ReplaceFile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace ravik {

namespace {

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t done = ::write(fd, bytes.data(), bytes.size());
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(done));
    }
    return true;
}

}  // namespace

bool replaceFile(const std::filesystem::path& file, std::string_view bytes) {
    // A name of its own beside the target: two writers never share one, and the rename stays on one file system.
    std::string fresh = (file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(fresh.data());
    if (fd < 0) return false;
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    const bool written = writeAll(fd, bytes) && ::fsync(fd) == 0;
    const bool closed = ::close(fd) == 0;
    if (written && closed && std::rename(fresh.c_str(), file.c_str()) == 0) return true;
    ::unlink(fresh.c_str());
    return false;
}

}  // namespace ravik
