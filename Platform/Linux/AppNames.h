#pragma once

#include <ctime>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "Core/Base/Pids.h"
#include "Core/Base/Text.h"
#include "Platform/Linux/DesktopIndex.h"
#include "Platform/Linux/LinuxServices.h"

namespace ravik::platform {

/// Which desktop application a process belongs to, by the desktop entries installed. One thread at a time.
class AppNames : public ApplicationUnits {
public:
    struct Folders {
        /// Of desktop entries; what an earlier one holds goes before a later one's.
        std::vector<std::filesystem::path> applications;
        /// The PATH.
        std::vector<std::filesystem::path> programs;

        static Folders fromEnvironment();
    };

    explicit AppNames(Folders folders = Folders::fromEnvironment(), std::string procRoot = "/proc");

    /// Builds the index if it never was, or the folders have changed. Call once a scan.
    void refresh();
    /// Changes with the index: answers of another generation may differ.
    std::uint64_t generation() const { return m_generation; }

    /// What is asked about a process.
    struct Subject {
        std::string_view name;
        /// Empty where it cannot be read.
        std::string executable;
        /// What an interpreter runs; empty if it is none.
        std::string script;
        std::string_view command;
        /// Its control group's deepest unit.
        std::string_view unit;
    };
    struct Answer {
        std::optional<Text> app;
        /// From an ancestor: it holds only as long as that is the parent.
        bool isInherited = false;
        /// False for what only starts others.
        bool handsDown = true;
    };
    /// What is known of an ancestor.
    struct Ancestor {
        std::string_view executable;
        Pid parent = 0;
        const Answer* answer = nullptr;
    };
    /// Absent where the walk ends: no such process, or an adopter.
    using Ancestors = std::function<std::optional<Ancestor>(Pid)>;

    Answer ask(const Subject& subject, Pid parent, const Ancestors& ancestors) const;
    /// True if the name of no process can be found, so that nothing need be read to ask.
    bool knowsNone() const { return m_index->isEmpty(); }

    // ApplicationUnits
    std::optional<Application> ofUnit(std::string_view unit) override;
    bool belongs(const Proc& proc, const std::string& id) override;

private:
    struct Stamp {
        std::filesystem::path folder;
        timespec changed{};
        friend bool operator==(const Stamp& a, const Stamp& b) {
            return a.folder == b.folder && a.changed.tv_sec == b.changed.tv_sec &&
                   a.changed.tv_nsec == b.changed.tv_nsec;
        }
    };

    void build();
    void addFolder(const std::filesystem::path& root, const std::filesystem::path& folder);
    bool ownedBy(const DesktopEntry& entry, const std::string& executable, const std::string& script) const;
    const DesktopEntry* entryOfUnit(std::string_view unit) const;
    const Text& nameOf(const DesktopEntry& entry) const;

    Folders m_folders;
    std::string m_procRoot;
    std::unique_ptr<DesktopIndex> m_index;
    std::vector<Stamp> m_stamps;
    bool m_isBuilt = false;
    std::uint64_t m_generation = 0;
    /// One text for all processes of an application.
    mutable std::unordered_map<const DesktopEntry*, Text> m_names;
};

/// The words of an argument area as an interpreter reads them give its script's whole path; empty if it runs none.
/// A relative script cannot be told without its folder and is none.
std::string scriptPathOf(const std::vector<std::string_view>& arguments);

}  // namespace ravik::platform
