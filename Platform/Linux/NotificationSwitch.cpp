#include "Platform/Linux/NotificationSwitch.h"

#include <algorithm>

#include <gio/gio.h>

#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

constexpr const char* gnomeSchema = "org.gnome.desktop.notifications.application";
constexpr const char* gnomePath = "/org/gnome/desktop/notifications/application/dev-tolvane-ravik/";

bool names(std::string_view desktops, std::string_view wanted) {
    while (!desktops.empty()) {
        const std::size_t colon = std::min(desktops.find(':'), desktops.size());
        if (desktops.substr(0, colon) == wanted) return true;
        desktops.remove_prefix(std::min(colon + 1, desktops.size()));
    }
    return false;
}

bool isOffInGnome() {
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    GSettingsSchema* schema = source ? g_settings_schema_source_lookup(source, gnomeSchema, TRUE) : nullptr;
    // To ask for a schema or a key that is not installed would end the program.
    if (!schema) return false;
    bool off = false;
    if (g_settings_schema_has_key(schema, "enable")) {
        GSettings* settings = g_settings_new_full(schema, nullptr, gnomePath);
        off = !g_settings_get_boolean(settings, "enable");
        g_object_unref(settings);
    }
    g_settings_schema_unref(schema);
    return off;
}

}  // namespace

bool isOffInPlasma(std::string_view file) {
    bool here = false;
    bool popups = true;
    bool history = true;
    while (!file.empty()) {
        const std::size_t end = std::min(file.find('\n'), file.size());
        const std::string_view line = file.substr(0, end);
        file.remove_prefix(std::min(end + 1, file.size()));
        if (line.starts_with('[')) here = line == "[Applications][dev.tolvane.Ravik]";
        if (here && line == "ShowPopups=false") popups = false;
        if (here && line == "ShowInHistory=false") history = false;
    }
    // What stands in the list of notifications can still be read.
    return !popups && !history;
}

NotificationSwitch notificationSwitch(std::string_view currentDesktop, const std::filesystem::path& config) {
    if (names(currentDesktop, "GNOME")) return isOffInGnome;
    if (names(currentDesktop, "KDE")) {
        return [file = config / "plasmanotifyrc"] { return isOffInPlasma(readFile(file.string()).value_or("")); };
    }
    return {};
}

}  // namespace ravik::platform
