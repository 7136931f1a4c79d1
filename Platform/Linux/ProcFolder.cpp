#include "Platform/Linux/ProcFolder.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>

namespace ravik::platform {

namespace {

/// "PID/FILE", without an allocation.
class Path {
public:
    explicit Path(Pid pid, const char* file = nullptr) {
        char* end = std::to_chars(m_text.data(), m_text.data() + m_text.size(), pid).ptr;
        if (file) {
            *end++ = '/';
            std::memcpy(end, file, std::strlen(file) + 1);
        } else {
            *end = '\0';
        }
    }
    const char* get() const { return m_text.data(); }

private:
    std::array<char, 32> m_text;
};

// Digits from the first to the last; 0 otherwise.
Pid pidOf(const char* name) {
    Pid pid = 0;
    for (; *name; ++name) {
        if (*name < '0' || *name > '9') return 0;
        pid = pid * 10 + (*name - '0');
    }
    return pid;
}

}  // namespace

ProcFolder::ProcFolder(const std::string& root) : m_folder(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    struct statfs system {};
    m_isLive = m_folder && fstatfs(m_folder.get(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

void ProcFolder::list(Pids& pids, ReadBuffer& buffer) const {
    pids.clear();
    // A handle of its own: the position in the folder belongs to the handle, and two threads may list.
    const Descriptor folder(openat(m_folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder) return;
    while (buffer.size() < 32768) buffer.grow();
    for (;;) {
        const long got = syscall(SYS_getdents64, folder.get(), buffer.data(), buffer.size());
        if (got <= 0) return;
        for (long at = 0; at < got;) {
            // The kernel's record: inode and offset (8 bytes each), length (2), type (1), name.
            unsigned short length = 0;
            std::memcpy(&length, buffer.data() + at + 16, sizeof length);
            if (const Pid pid = pidOf(buffer.data() + at + 19); pid > 0) pids.push_back(pid);
            at += length;
        }
    }
}

Descriptor ProcFolder::open(Pid pid, const char* file) const {
    return Descriptor(openat(m_folder.get(), Path(pid, file).get(), O_RDONLY | O_CLOEXEC));
}

Descriptor ProcFolder::open(const char* file) const {
    return Descriptor(openat(m_folder.get(), file, O_RDONLY | O_CLOEXEC));
}

std::optional<std::string_view> ProcFolder::read(const Descriptor& file, ReadBuffer& buffer) {
    if (!file) return {};
    std::size_t filled = 0;
    for (;;) {
        const ssize_t got =
            pread(file.get(), buffer.data() + filled, buffer.size() - filled, static_cast<off_t>(filled));
        if (got < 0) {
            if (errno == EINTR) continue;
            return {};
        }
        filled += static_cast<std::size_t>(got);
        // These files give all they have in one reading that offers room enough.
        if (got == 0 || filled < buffer.size()) return std::string_view(buffer.data(), filled);
        buffer.grow();
    }
}

std::optional<std::string_view> ProcFolder::read(Pid pid, const char* file, ReadBuffer& buffer) const {
    return read(open(pid, file), buffer);
}

std::optional<std::uint32_t> ProcFolder::owner(Pid pid) const {
    struct stat folder {};
    if (fstatat(m_folder.get(), Path(pid).get(), &folder, 0) != 0) return {};
    return folder.st_uid;
}

std::optional<std::string> ProcFolder::executable(Pid pid) const {
    std::array<char, PATH_MAX> target;
    const ssize_t got = readlinkat(m_folder.get(), Path(pid, "exe").get(), target.data(), target.size());
    if (got <= 0) return {};
    return std::string(target.data(), static_cast<std::size_t>(got));
}

std::optional<std::uint64_t> cpuNanoseconds(Pid pid) {
    // The kernel's number for the scheduler's clock of a whole process.
    const auto clock = static_cast<clockid_t>((~static_cast<unsigned>(pid) << 3) | 2);
    timespec used{};
    if (clock_gettime(clock, &used) != 0) return {};
    return static_cast<std::uint64_t>(used.tv_sec) * 1'000'000'000U + static_cast<std::uint64_t>(used.tv_nsec);
}

bool exists(Pid pid) { return kill(pid, 0) == 0 || errno != ESRCH; }

}  // namespace ravik::platform
