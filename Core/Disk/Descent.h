#pragma once

#include <dirent.h>
#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace ravik {

/// What makes a folder itself, however it is reached.
struct FolderIdentity {
    dev_t device = 0;
    ino_t inode = 0;

    static std::optional<FolderIdentity> of(int descriptor);
    friend bool operator==(const FolderIdentity&, const FolderIdentity&) = default;
};

/// A way down into a tree and back up, entry by entry. Only the lowest levels stay open; a higher one is opened again
/// through the ".." of the one below it, so that depth costs no descriptors. One thread.
class Descent {
public:
    static constexpr std::size_t openLevels = 32;

    /// Takes the descriptor of a folder; it is closed at the end.
    explicit Descent(int descriptor) { enter(descriptor); }
    ~Descent();
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;

    /// The next entry of the folder that the descent is in; climbs where there is none left. Null at the end.
    const dirent* next();
    /// Descriptor of the folder that holds the entry last given.
    int folder() const { return dirfd(m_levels.back().stream); }
    /// Goes down into an open folder and owns its descriptor.
    void enter(int descriptor);

private:
    struct Level {
        DIR* stream = nullptr;  // null: closed until the descent is back
        FolderIdentity self;    // known while closed
        std::size_t read = 0;   // entries given so far
    };

    void climb();
    void closeTop();

    std::vector<Level> m_levels;
};

}  // namespace ravik
