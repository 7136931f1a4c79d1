#include "Platform/Linux/Folders.h"

#include <algorithm>
#include <cstdlib>

#include <fmt/format.h>
#include <pwd.h>
#include <unistd.h>

#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// What stands between double quotes, as a shell reads it; absent if the quotes do not match.
std::optional<std::string> unquoted(std::string_view text) {
    if (!text.starts_with('"')) return std::string(text);
    std::string value;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"') return value;
        if (text[at] == '\\' && ++at == text.size()) break;
        value += text[at];
    }
    return {};
}

std::optional<fs::path> absolute(const Environment& environment, const char* variable) {
    const auto value = environment.variable(variable);
    if (!value || !value->starts_with('/')) return {};
    return fs::path(*value);
}

}  // namespace

std::optional<fs::path> userFolder(std::string_view userDirs, std::string_view name, const fs::path& home) {
    std::optional<fs::path> found;
    while (!userDirs.empty()) {
        const std::size_t end = std::min(userDirs.find('\n'), userDirs.size());
        const std::string_view line = trimmed(userDirs.substr(0, end));
        userDirs.remove_prefix(std::min(end + 1, userDirs.size()));

        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos || trimmed(line.substr(0, equals)) != name) continue;
        const auto value = unquoted(trimmed(line.substr(equals + 1)));
        if (!value) continue;
        // The last of several counts, as in the shell that the file is written for.
        if (*value == "$HOME" || *value == "$HOME/") {
            found = home;
        } else if (value->starts_with("$HOME/")) {
            found = home / value->substr(std::string_view("$HOME/").size());
        } else if (value->starts_with('/')) {
            found = *value;
        }
    }
    return found;
}

Folders linuxFolders(const Environment& environment) {
    // A user whom no database knows has the root for a home, never the folder the program happens to stand in.
    const fs::path known = environment.databaseHome.is_absolute() ? environment.databaseHome : fs::path("/");
    const fs::path home = absolute(environment, "HOME").value_or(known);
    const auto base = [&](const char* variable, const char* below) {
        return absolute(environment, variable).value_or(home / below);
    };
    const fs::path state = base("XDG_STATE_HOME", ".local/state");
    const fs::path config = base("XDG_CONFIG_HOME", ".config");

    Folders folders;
    folders.home = home;
    folders.log = state / "ravik";
    folders.formerLog = state / "tolvane";
    folders.historyCache = base("XDG_CACHE_HOME", ".cache") / "ravik" / "history";
    folders.settings = config / "ravik" / "settings.json";
    if (const auto runtime = absolute(environment, "XDG_RUNTIME_DIR")) {
        folders.runtime = *runtime / "ravik";
    } else {
        folders.runtime = fmt::format("/tmp/ravik-{}", environment.uid);
    }
    if (const auto desktop = absolute(environment, "XDG_DESKTOP_DIR")) {
        folders.desktop = *desktop;
    } else {
        const std::string userDirs = environment.read(config / "user-dirs.dirs").value_or("");
        folders.desktop = userFolder(userDirs, "XDG_DESKTOP_DIR", home).value_or(home);
    }
    folders.temporary = absolute(environment, "TMPDIR").value_or("/tmp");
    folders.crashReports = folders.log;
    return folders;
}

Environment processEnvironment() {
    Environment environment;
    environment.variable = [](const char* name) -> std::optional<std::string> {
        const char* value = std::getenv(name);
        if (!value) return {};
        return value;
    };
    environment.uid = getuid();
    if (const passwd* entry = getpwuid(getuid()); entry && entry->pw_dir) environment.databaseHome = entry->pw_dir;
    environment.read = [](const fs::path& path) { return readFile(path.string()); };
    return environment;
}

}  // namespace ravik::platform
