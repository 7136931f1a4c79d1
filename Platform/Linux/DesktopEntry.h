#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a desktop entry says. Pure, any thread.
namespace ravik::platform {

/// The keys of a "Desktop Entry" group that the program needs. Empty: not there.
struct DesktopEntry {
    /// Name of its file without ".desktop", folders below the index joined by "-".
    std::string id;
    /// As written for no language in particular: the name that tables and logs of every machine share.
    std::string name;
    std::string exec;
    std::string tryExec;
    std::vector<std::string> categories;
    std::string flatpak;
    std::string snap;
    bool isHidden = false;
    bool isDisplayed = true;

    bool hasCategory(std::string_view category) const;
    /// A terminal or an editor, in which other programs are typed.
    bool isTypedIn() const;
    bool isTerminal() const { return hasCategory("TerminalEmulator"); }
};

/// Absent unless it is an application with a name, or hides one.
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string id);

/// What an "Exec" line starts once its wrapping is off.
struct LaunchTarget {
    /// Path, or name to look for on the PATH. Empty: nothing that could be told apart.
    std::string program;
    /// Where the program is an interpreter: what it runs.
    std::string script;
    /// Fixed arguments, without the places for files and links.
    std::vector<std::string> arguments;
    /// Of "flatpak run": the application, and the command that it names.
    std::string flatpak;
    std::string flatpakCommand;
};

/// The words of an "Exec" line, quotes and %-codes resolved.
std::vector<std::string> splitExec(std::string_view exec);
LaunchTarget launchTarget(std::string_view exec);

}  // namespace ravik::platform
