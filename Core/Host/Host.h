#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Core/Base/Pids.h"

namespace ravik {

/// The words that differ between systems. Every sentence is written once, with these filled in.
struct Nouns {
    std::string_view machine;          // "Mac"
    std::string_view yourMachine;      // "your Mac"
    std::string_view yourMachineCap;   // "Your Mac"
    std::string_view theMachine;       // "the Mac"
    std::string_view system;           // "macOS"
    std::string_view partOfSystem;     // "part of macOS"
    std::string_view systemWord;       // "macOS", the word in a row
    std::string_view statusArea;       // "menu bar"
    std::string_view fileManager;      // "Finder"
    std::string_view quitChord;        // "⌘Q"
    std::string_view refreshChord;     // "⌘R"
    std::string_view confirmChord;     // "⌘⌫"
    std::string_view goChord;          // "⌘", before a digit
    std::string_view startupSettings;  // "System Settings › General › Login Items"
    std::string_view indexingTitle;    // "Spotlight / media analysis"
    std::string_view indexingName;     // "Spotlight indexing"
    std::string_view lowDisk;          // "macOS slows sharply below ~15 GB free"
    std::string_view stopService;      // "brew services stop"
    std::string_view logFolder;        // "~/Library/Logs/Ravik/"
};

/// What a system's programs are called and where they lie. Matching is exact and case-sensitive throughout.
struct HostTables {
    using Names = std::unordered_set<std::string_view>;

    /// Command lines of parts of the system begin with one of these.
    std::vector<std::string_view> systemPrefixes;
    /// ... unless they begin with one of these.
    std::vector<std::string_view> systemExceptions;
    /// A program whose command line begins with one of these is never a leftover.
    std::vector<std::string_view> installedPrefixes;
    /// The engine leaves groups with such a member alone.
    std::vector<std::string_view> enginePrefixes;
    /// For an interpreter, the script's path is tested against installedPrefixes in place of its own.
    bool judgesScripts = false;
    /// Never-names (Proc::name) with the noun phrase of the reason.
    std::unordered_map<std::string_view, std::string_view> neverNames;
    Names packageManagers;
    Names installVerbs;
    Names interpreters;
    Names launcherWords;
    std::vector<std::string_view> agentTools;  // the first that fits wins
    Names browsers;
    Names indexers;
    Names databases;
    Names editorsWithExtensionHosts;
    std::vector<std::string_view> vmMarkers;  // substrings of a group name
    Names engineProtected;
};

enum class HostKind { mac, linux };

/// Whose machine this is: the answers that the core never reads from the air. Copied into each tick.
struct Host {
    HostKind kind = HostKind::mac;
    std::uint32_t uid = 0;
    /// The program's own pid; 0 where there is none.
    Pid pid = 0;
    /// Pids that adopt orphans; governs every rule that speaks of parent 1.
    PidSet adopters{1};
    /// Pids that own a window or serve a live connection, exempt from being leftovers on Linux.
    PidSet engaged;

    bool isMac() const { return kind == HostKind::mac; }
    bool adopts(Pid parent) const { return adopters.contains(parent); }
    const HostTables& tables() const;
    const Nouns& nouns() const;
};

const HostTables& macTables();
const HostTables& linuxTables();

}  // namespace ravik
