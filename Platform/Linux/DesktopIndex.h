#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Platform/Linux/DesktopEntry.h"

namespace ravik::platform {

/// What the index has to know of the file system.
struct ProgramFiles {
    /// The path of a program that is named or given by path; empty if there is none.
    std::function<std::string(const std::string& program)> find;
    /// The path behind all links; the path itself if it leads nowhere.
    std::function<std::string(const std::string& path)> resolve;
};

/// Which desktop entry a program on disk belongs to: by the very file that the entry starts, or by the folder that an
/// application has to itself below /opt, /usr/lib and their like. An interpreter belongs to nobody; the script it
/// runs may. Views of entries stay valid while the index lives.
class DesktopIndex {
public:
    /// An id that was added before stays as it was: earlier folders go before later ones.
    void add(DesktopEntry entry, const ProgramFiles& files);

    bool isEmpty() const { return m_entries.empty(); }
    const DesktopEntry* byId(std::string_view id) const;

    /// True if a file belongs to the entry: an executable, or the script of an interpreter.
    bool owns(const DesktopEntry& entry, const std::string& path) const;
    /// The entry that a process of this file with this command line most likely was started by; null if there is none.
    const DesktopEntry* owner(const std::string& path, std::string_view command) const;

private:
    struct Member {
        const DesktopEntry* entry;
        std::vector<std::string> arguments;
    };
    using Members = std::vector<Member>;
    using Table = std::unordered_map<std::string, Members>;

    void addLaunch(const DesktopEntry& entry, const std::string& exec, const ProgramFiles& files);
    void addProgram(const Member& member, const std::string& program, const ProgramFiles& files);
    const Members* membersOf(const std::string& path) const;

    std::unordered_map<std::string, std::unique_ptr<DesktopEntry>> m_entries;
    Table m_byPath;
    Table m_byFolder;
    /// The first six characters of the image's name, which its mount point keeps.
    Table m_byImage;
    Table m_bySnap;
    Table m_byFlatpakCommand;
};

/// The folder that an application has to itself, given the file that starts it; empty where the file lies among
/// others' files. Pure.
std::string applicationFolder(std::string_view path);

}  // namespace ravik::platform
