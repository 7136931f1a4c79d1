#include "Platform/Linux/AutostartEntry.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

#include <fmt/format.h>
#include <glib.h>

#include "Core/Base/ReplaceFile.h"

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

constexpr const char* fileName = "dev.tolvane.Ravik.desktop";
constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;
/// What GNOME's own switch writes.
constexpr const char* gnomeSwitch = "X-GNOME-Autostart-enabled";

struct Free {
    void operator()(GKeyFile* entry) const { g_key_file_unref(entry); }
    void operator()(gchar* text) const { g_free(text); }
};
using Entry = std::unique_ptr<GKeyFile, Free>;

/// Empty where there is none, or it is no desktop entry.
Entry load(const fs::path& file) {
    Entry entry(g_key_file_new());
    const auto keepAll = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (!g_key_file_load_from_file(entry.get(), file.c_str(), keepAll, nullptr)) entry.reset(g_key_file_new());
    return entry;
}

bool saysYes(const Entry& entry) {
    if (!g_key_file_has_group(entry.get(), group)) return false;
    if (g_key_file_get_boolean(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr)) return false;
    return !g_key_file_has_key(entry.get(), group, gnomeSwitch, nullptr) ||
           g_key_file_get_boolean(entry.get(), group, gnomeSwitch, nullptr);
}

bool isThere(const fs::path& file) {
    std::error_code error;
    return fs::is_regular_file(file, error);
}

}  // namespace

std::string execQuoted(std::string_view word) {
    std::string quoted = "\"";
    for (const char byte : word) {
        if (byte == '"' || byte == '`' || byte == '$' || byte == '\\') quoted += '\\';
        if (byte == '%') quoted += '%';
        quoted += byte;
    }
    return quoted + '"';
}

std::vector<fs::path> configFolders(const std::function<std::string(const char*)>& variable, const fs::path& home) {
    const fs::path own = variable("XDG_CONFIG_HOME");
    std::vector<fs::path> folders{own.is_absolute() ? own : home / ".config"};
    std::string system = variable("XDG_CONFIG_DIRS");
    if (system.empty()) system = "/etc/xdg";
    for (std::string_view rest = system; !rest.empty();) {
        const std::size_t colon = std::min(rest.find(':'), rest.size());
        if (fs::path folder(rest.substr(0, colon)); folder.is_absolute()) folders.push_back(std::move(folder));
        rest.remove_prefix(std::min(colon + 1, rest.size()));
    }
    return folders;
}

AutostartEntry::AutostartEntry(std::vector<fs::path> folders, std::function<std::optional<fs::path>()> program)
    : m_files(std::move(folders)), m_program(std::move(program)) {
    for (fs::path& path : m_files) path = path / "autostart" / fileName;
}

bool AutostartEntry::isEnabled() {
    const auto first = std::ranges::find_if(m_files, isThere);
    return first != m_files.end() && saysYes(load(*first));
}

bool AutostartEntry::isSystemWide() const { return std::any_of(m_files.begin() + 1, m_files.end(), isThere); }

std::optional<std::string> AutostartEntry::setEnabled(bool enabled) {
    if (enabled == isEnabled()) return {};
    if (enabled || isSystemWide()) return write(enabled);
    std::error_code error;
    fs::remove(m_files.front(), error);
    if (!error) return {};
    return fmt::format("{} cannot be removed: {}.", m_files.front().string(), error.message());
}

std::optional<std::string> AutostartEntry::write(bool enabled) const {
    const fs::path& file = m_files.front();
    const Entry entry = load(file);
    const auto set = [&](const char* key, const std::string& value) {
        g_key_file_set_value(entry.get(), group, key, value.c_str());
    };
    if (!g_key_file_has_group(entry.get(), group)) {
        set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
        set(G_KEY_FILE_DESKTOP_KEY_NAME, "Ravik");
        set(G_KEY_FILE_DESKTOP_KEY_ICON, "dev.tolvane.Ravik");
    }
    if (enabled) {
        const auto program = m_program();
        if (!program) return "The desktop app, ravik-desktop, is not installed.";
        // Key files write a backslash as two.
        g_key_file_set_string(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_EXEC, execQuoted(program->native()).c_str());
        g_key_file_remove_key(entry.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, nullptr);
        g_key_file_remove_key(entry.get(), group, gnomeSwitch, nullptr);
    } else {
        set(G_KEY_FILE_DESKTOP_KEY_HIDDEN, "true");
    }
    std::error_code error;
    fs::create_directories(file.parent_path(), error);
    if (error) return fmt::format("{} cannot be made: {}.", file.parent_path().string(), error.message());
    gsize size = 0;
    const std::unique_ptr<gchar, Free> text(g_key_file_to_data(entry.get(), &size, nullptr));
    errno = 0;
    if (replaceFile(file, {text.get(), size})) return {};
    return fmt::format("{} cannot be written: {}.", file.string(), std::strerror(errno));
}

}  // namespace ravik::platform
