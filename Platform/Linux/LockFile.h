#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "Core/Base/Pids.h"
#include "Platform/Linux/Descriptor.h"

namespace ravik::platform {

/// Who holds a lock, out of its file: a line with the pid, a line with the name.
struct LockHolder {
    Pid pid = 0;
    std::string name;

    friend bool operator==(const LockHolder&, const LockHolder&) = default;
};
/// Pid 0 and no name for anything else.
LockHolder parseLockHolder(std::string_view lockFile);

/// A lock in the run-time folder that one process of a user holds. The kernel gives it back when its owner ends, in
/// whatever way, so a file that is left behind means nothing. Refuses a folder that another user could have laid out.
class LockFile {
public:
    enum class Answer { mine, theirs, unusable };

    /// `folder` is made if need be, mode 0700; `holder` is what others are told of this process ("ravik watch").
    LockFile(std::filesystem::path folder, std::string file, std::string holder, std::uint32_t uid);

    /// Never waits. Holding it already is no refusal.
    Answer take();
    void release();

    /// After `theirs`: who holds it, pid 0 if that cannot be told. Who has just taken it gets 0.2 s to say so.
    LockHolder holder() const;
    /// After `unusable`: why, as the end of a sentence ("it is no folder").
    std::string_view why() const { return m_why; }
    const std::filesystem::path& folder() const { return m_folder; }

private:
    bool openFolder(Descriptor& folder);
    bool openFile(const Descriptor& folder, Descriptor& file);

    std::filesystem::path m_folder;
    std::string m_file;
    std::string m_holder;
    std::uint32_t m_uid;
    std::string_view m_why;
    Descriptor m_held;
    Descriptor m_heldFolder;
};

}  // namespace ravik::platform
