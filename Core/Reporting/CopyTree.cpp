#include "Core/Reporting/CopyTree.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ravik {

namespace fs = std::filesystem;

namespace {

using Failure = std::optional<std::string>;

constexpr std::size_t pieceBytes = 1 << 17;

Failure failure(const fs::path& path, int error) {
    return fmt::format("{} could not be copied ({}).", path.string(), std::generic_category().message(error));
}

class Copier {
public:
    explicit Copier(const std::function<bool()>& cancelled) : m_cancelled(cancelled) {}

    Failure copy(const fs::path& from, const fs::path& to, const struct stat& about) {
        if (S_ISDIR(about.st_mode)) return copyFolder(from, to);
        if (S_ISLNK(about.st_mode)) return copyLink(from, to);
        if (S_ISREG(about.st_mode)) return copyFile(from, to);
        return {};
    }

private:
    Failure copyFolder(const fs::path& from, const fs::path& to) {
        if (mkdir(to.c_str(), 0700) != 0) return failure(from, errno);
        std::error_code error;
        for (fs::directory_iterator entry(from, error), end; !error && entry != end; entry.increment(error)) {
            struct stat about {};
            if (lstat(entry->path().c_str(), &about) != 0) continue;
            if (auto why = copy(entry->path(), to / entry->path().filename(), about)) return why;
        }
        if (error && error != std::errc::no_such_file_or_directory) return failure(from, error.value());
        return {};
    }

    static Failure copyLink(const fs::path& from, const fs::path& to) {
        std::error_code error;
        fs::copy_symlink(from, to, error);
        if (error && error != std::errc::no_such_file_or_directory) return failure(from, error.value());
        return {};
    }

    Failure copyFile(const fs::path& from, const fs::path& to) {
        // Between the look and the opening a pipe may have taken the name: it is neither waited for nor read.
        const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
        if (source < 0) return errno == ENOENT ? Failure() : failure(from, errno);
        struct stat about {};
        Failure why;
        if (fstat(source, &about) == 0 && S_ISREG(about.st_mode)) why = copyBytes(source, from, to, about);
        close(source);
        return why;
    }

    Failure copyBytes(int source, const fs::path& from, const fs::path& to, const struct stat& about) {
        const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (target < 0) return failure(from, errno);
        Failure why;
        auto left = static_cast<std::uint64_t>(about.st_size);
        while (left > 0 && !why) {
            if (m_cancelled && m_cancelled()) {
                why = "It was interrupted.";
                break;
            }
            const ssize_t got = read(source, m_piece.get(), std::min<std::uint64_t>(left, pieceBytes));
            if (got == 0) break;
            if (got > 0) {
                left -= static_cast<std::uint64_t>(got);
                why = write(target, static_cast<std::size_t>(got), from);
            } else if (errno != EINTR) {
                why = failure(from, errno);
            }
        }
        if (close(target) != 0 && !why) why = failure(from, errno);
        std::error_code ignored;
        if (!why) fs::last_write_time(to, fs::last_write_time(from, ignored), ignored);
        return why;
    }

    Failure write(int target, std::size_t bytes, const fs::path& from) {
        std::size_t done = 0;
        while (done < bytes) {
            const ssize_t put = ::write(target, m_piece.get() + done, bytes - done);
            if (put < 0 && errno != EINTR) return failure(from, errno);
            if (put > 0) done += static_cast<std::size_t>(put);
        }
        return {};
    }

    const std::function<bool()>& m_cancelled;
    std::unique_ptr<char[]> m_piece = std::make_unique<char[]>(pieceBytes);
};

}  // namespace

std::optional<std::string> copyTree(const fs::path& from, const fs::path& to, const std::function<bool()>& cancelled) {
    std::error_code error;
    const fs::path real = fs::canonical(from, error);
    struct stat about {};
    if (error || lstat(real.c_str(), &about) != 0) return failure(from, error ? error.value() : errno);
    return Copier(cancelled).copy(real, to, about);
}

}  // namespace ravik
