#include <fcntl.h>
#include <sys/stat.h>

#include "Platform/Computer.h"

namespace ravik {

std::optional<Time> creationDate(const std::filesystem::path& path) {
    constexpr double nanosecond = 1e-9;
    struct statx found {};
    if (statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME, &found) != 0) return {};
    if ((found.stx_mask & STATX_BTIME) == 0) return {};
    return static_cast<Time>(found.stx_btime.tv_sec) + static_cast<Time>(found.stx_btime.tv_nsec) * nanosecond;
}

}  // namespace ravik
