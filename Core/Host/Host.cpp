#include "Core/Host/Host.h"

namespace ravik {

namespace {

constexpr Nouns macNouns{
    .machine = "Mac",
    .yourMachine = "your Mac",
    .yourMachineCap = "Your Mac",
    .theMachine = "the Mac",
    .system = "macOS",
    .partOfSystem = "part of macOS",
    .systemWord = "macOS",
    .statusArea = "menu bar",
    .fileManager = "Finder",
    .quitChord = "⌘Q",
    .refreshChord = "⌘R",
    .confirmChord = "⌘⌫",
    .goChord = "⌘",
    .startupSettings = "System Settings › General › Login Items",
    .indexingTitle = "Spotlight / media analysis",
    .indexingName = "Spotlight indexing",
    .lowDisk = "macOS slows sharply below ~15 GB free",
    .stopService = "brew services stop",
    .logFolder = "~/Library/Logs/Ravik/",
};

constexpr Nouns linuxNouns{
    .machine = "computer",
    .yourMachine = "your computer",
    .yourMachineCap = "Your computer",
    .theMachine = "the computer",
    .system = "Linux",
    .partOfSystem = "part of the system",
    .systemWord = "system",
    .statusArea = "status area",
    .fileManager = "the file manager",
    .quitChord = "Ctrl+Q",
    .refreshChord = "Ctrl+R",
    .confirmChord = "Ctrl+Backspace",
    .goChord = "Ctrl+",
    .startupSettings = "your desktop's startup settings",
    .indexingTitle = "File indexing",
    .indexingName = "File indexing",
    .lowDisk = "updates, builds and swap files fail when a disk runs full",
    .stopService = "systemctl stop",
    .logFolder = "~/.local/state/ravik/",
};

}  // namespace

const HostTables& Host::tables() const { return isMac() ? macTables() : linuxTables(); }

const Nouns& Host::nouns() const { return isMac() ? macNouns : linuxNouns; }

}  // namespace ravik
