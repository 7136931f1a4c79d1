#include "Core/Disk/Descent.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ravik {

std::optional<FolderIdentity> FolderIdentity::of(int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) return {};
    return FolderIdentity{status.st_dev, status.st_ino};
}

Descent::~Descent() {
    while (!m_levels.empty()) closeTop();
}

void Descent::closeTop() {
    if (m_levels.back().stream) closedir(m_levels.back().stream);
    m_levels.pop_back();
}

void Descent::enter(int descriptor) {
    DIR* stream = fdopendir(descriptor);
    if (!stream) {
        close(descriptor);
        return;
    }
    m_levels.push_back({stream, {}, 0});
    if (m_levels.size() <= openLevels) return;
    Level& high = m_levels[m_levels.size() - 1 - openLevels];
    if (!high.stream) return;
    const auto self = FolderIdentity::of(dirfd(high.stream));
    if (!self) return;
    high.self = *self;
    closedir(high.stream);
    high.stream = nullptr;
}

const dirent* Descent::next() {
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (const dirent* entry = readdir(level.stream)) {
            ++level.read;
            return entry;
        }
        climb();
    }
    return nullptr;
}

void Descent::climb() {
    if (m_levels.size() < 2 || m_levels[m_levels.size() - 2].stream) {
        closeTop();
        return;
    }
    const int descriptor = openat(folder(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    closeTop();
    Level& level = m_levels.back();
    const auto self = descriptor < 0 ? std::nullopt : FolderIdentity::of(descriptor);
    // A folder that was moved in the meantime leads elsewhere: what is left above it is given up.
    level.stream = self == level.self ? fdopendir(descriptor) : nullptr;
    if (!level.stream) {
        if (descriptor >= 0) close(descriptor);
        while (!m_levels.empty()) closeTop();
        return;
    }
    for (std::size_t skipped = 0; skipped < level.read && readdir(level.stream); ++skipped) {}
}

}  // namespace ravik
