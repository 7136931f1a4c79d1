#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "Platform/LoginItem.h"

namespace ravik::platform {

/// The entry dev.tolvane.Ravik.desktop in the folders from which a desktop starts programs at login: the user's, then
/// those of the system, the first that has it. Main loop.
class AutostartEntry : public LoginItem {
public:
    /// Folders that hold "autostart", the user's first; `program` tells the path of the app, if it is there.
    AutostartEntry(std::vector<std::filesystem::path> configFolders,
                   std::function<std::optional<std::filesystem::path>()> program);

    bool isEnabled() override;
    /// What else the user's own entry says stays as it is. Off: that entry goes, or says "Hidden" where the system
    /// has one as well.
    std::optional<std::string> setEnabled(bool enabled) override;

private:
    bool isSystemWide() const;
    std::optional<std::string> write(bool enabled) const;

    std::vector<std::filesystem::path> m_files;
    std::function<std::optional<std::filesystem::path>()> m_program;
};

/// A word as the Exec line of a desktop entry holds it.
std::string execQuoted(std::string_view word);

/// The configuration folders by the environment: XDG_CONFIG_HOME or ~/.config, then XDG_CONFIG_DIRS or /etc/xdg. A
/// relative one counts as none.
std::vector<std::filesystem::path> configFolders(const std::function<std::string(const char*)>& variable,
                                                 const std::filesystem::path& home);

}  // namespace ravik::platform
