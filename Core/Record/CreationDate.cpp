#include "Core/Record/CreationDate.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace ravik {

namespace {

constexpr double nanosecond = 1e-9;

}  // namespace

std::optional<Time> creationDate(const std::filesystem::path& path) {
#ifdef __APPLE__
    struct stat found{};
    if (lstat(path.c_str(), &found) != 0) return {};
    const auto& made = found.st_birthtimespec;
#else
    struct statx found{};
    if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME, &found) != 0) return {};
    if ((found.stx_mask & STATX_BTIME) == 0) return {};
    const auto& made = found.stx_btime;
#endif
    return static_cast<Time>(made.tv_sec) + static_cast<Time>(made.tv_nsec) * nanosecond;
}

}  // namespace ravik
