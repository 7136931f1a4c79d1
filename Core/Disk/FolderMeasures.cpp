#include "Core/Disk/FolderMeasures.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include "Core/Disk/TreeWalk.h"

namespace ravik::DiskScanner {

namespace {

struct CloseStream {
    void operator()(DIR* stream) const { closedir(stream); }
};
using Stream = std::unique_ptr<DIR, CloseStream>;

bool isOfItself(std::string_view name) { return name == "." || name == ".."; }

}  // namespace

std::uint64_t directorySize(const std::filesystem::path& folder, const std::atomic<bool>* cancelled) {
    return walkTree(folder, TreeQuestion::bytes, cancelled).bytes;
}

Time newestMtime(const std::filesystem::path& folder, const std::atomic<bool>* cancelled) {
    return walkTree(folder, TreeQuestion::newest, cancelled).newest;
}

Time newestSourceMtime(const std::filesystem::path& folder, const DiskTables& tables) {
    Time newest = distantPast;
    const Stream stream(opendir(folder.c_str()));
    if (!stream) return newest;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (isOfItself(name) || name == ".git" || tables.buildDirs.contains(name)) continue;
        struct stat status;
        if (fstatat(dirfd(stream.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        newest = std::max(newest, modificationTime(status));
    }
    return newest;
}

std::vector<Child> children(const std::filesystem::path& folder, Hidden hidden) {
    std::vector<Child> found;
    const Stream stream(opendir(folder.c_str()));
    if (!stream) return found;
    while (const dirent* entry = readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (isOfItself(name) || (hidden == Hidden::skip && name.starts_with('.'))) continue;
        bool isFolder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN) {
            struct stat status;
            isFolder = fstatat(dirfd(stream.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                       S_ISDIR(status.st_mode);
        }
        found.push_back({std::string(name), isFolder});
    }
    std::ranges::sort(found, {}, &Child::name);
    return found;
}

}  // namespace ravik::DiskScanner
