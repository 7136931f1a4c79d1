#include "Tests/Core/Disk/DiskTree.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <fstream>

namespace ravik {

namespace fs = std::filesystem;

DiskTree::DiskTree() {
    fs::permissions(m_base, fs::perms::owner_all | fs::perms::others_exec | fs::perms::others_read);
    home = m_base / "home";
    outside = m_base / "outside";
    folder(home);
    folder(outside);
    roots = {home / "Projects"};
}

void DiskTree::fill(const fs::path& where, std::uint64_t bytes, const std::string& name) {
    folder(where);
    // Small pieces, so that the file system needs no block of its own to say where they lie.
    constexpr std::uint64_t piece = 4 * MiB;
    for (std::uint64_t made = 0, part = 0; made < bytes; ++part) {
        const std::uint64_t length = std::min(piece, bytes - made);
        const fs::path path = where / (name + std::to_string(part));
        const int fd = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        struct stat status {};
        ASSERT_EQ(posix_fallocate(fd, 0, static_cast<off_t>(length)), 0);
        ASSERT_EQ(fstat(fd, &status), 0);
        close(fd);
        ASSERT_EQ(static_cast<std::uint64_t>(status.st_blocks) * 512, length) << path;
        made += length;
    }
}

void DiskTree::file(const fs::path& path, const std::string& text) {
    folder(path.parent_path());
    std::ofstream(path) << text;
}

void DiskTree::link(const fs::path& path, const fs::path& target) {
    folder(path.parent_path());
    fs::create_symlink(target, path);
}

void DiskTree::age(const fs::path& path, double days) {
    const double at = now - days * day;
    timespec times[2];
    times[0] = times[1] = {static_cast<time_t>(std::floor(at)), static_cast<long>((at - std::floor(at)) * 1e9)};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << path;
}

DiskScanner::Scope DiskTree::scope(HostKind kind) {
    return {.tables = diskTables(kind), .home = home, .now = now, .isRunning = [this](const auto& owner) {
                return DiskScanner::isRunning(owner, running);
            }};
}

std::vector<Reclaimable> DiskTree::scan(HostKind kind) { return DiskScanner::scan(scope(kind), roots, {}).value(); }

std::vector<std::string> DiskTree::scannedIds(HostKind kind) {
    std::vector<std::string> ids;
    for (const Reclaimable& row : scan(kind)) ids.push_back(row.id);
    return ids;
}

int inChild(const std::function<int()>& check) {
    const pid_t child = fork();
    if (child == 0) _exit(check());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

bool becomeOrdinaryUser() {
    constexpr uid_t nobody = 65534;
    if (getuid() != 0) return true;
    return setgid(nobody) == 0 && setuid(nobody) == 0;
}

bool becomeAloneWithMounts() {
    const int flags = getuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    return unshare(flags) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

}  // namespace ravik
