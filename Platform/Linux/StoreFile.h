#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace ravik::platform {

/// Waits at most two seconds for the exclusive lock on a file, made if need be; held until it is destroyed or its
/// process ends, in whatever way. Between processes, and between two of these in one.
class FileLock {
public:
    explicit FileLock(const std::filesystem::path& path);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    /// True also where the file system knows no locks: then nothing is guarded, and nothing refused.
    bool held() const { return m_held; }

private:
    int m_file = -1;
    bool m_held = false;
};

/// Which writing of a file this is: the same as long as nobody has written it anew.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t modifiedNanos = 0;
    std::int64_t changedNanos = 0;
    std::int64_t size = -1;  // -1: there is no file

    static FileStamp of(const std::filesystem::path& path);
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Puts `bytes` in the place of the file, mode 0600: written to a new file beside it, brought to the disk, renamed.
/// Whoever reads sees the old file or the new one, also after a crash. False if it could not be done; then the old
/// one stands. One writer at a time.
bool replaceFile(const std::filesystem::path& path, std::string_view bytes);

/// Gives the file a second name beside it, "<name>.unreadable" with a number where that is taken. False if it could
/// not be done.
bool keepAside(const std::filesystem::path& path);

/// Makes the missing folders of a path, for their owner alone. False if one is still missing.
bool makePrivateFolders(const std::filesystem::path& folder);

}  // namespace ravik::platform
