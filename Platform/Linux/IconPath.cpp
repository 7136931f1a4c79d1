#include "Platform/Linux/IconPath.h"

#include <gio/gio.h>

#include <filesystem>
#include <vector>

namespace ravik::platform {

namespace {

namespace fs = std::filesystem;

/// A themed icon in the theme that every other one falls back to.
std::optional<std::string> themed(const std::string& name) {
    std::vector<fs::path> roots{g_get_user_data_dir()};
    for (const gchar* const* folder = g_get_system_data_dirs(); *folder; ++folder) roots.emplace_back(*folder);
    std::error_code error;
    for (const fs::path& root : roots) {
        for (const char* size : {"scalable", "128x128", "256x256", "64x64", "48x48", "512x512", "32x32"}) {
            for (const char* suffix : {".svg", ".png"}) {
                const fs::path path = root / "icons/hicolor" / size / "apps" / (name + suffix);
                if (fs::is_regular_file(path, error)) return path.native();
            }
        }
        for (const char* suffix : {".svg", ".png", ".xpm"}) {
            const fs::path path = root / "pixmaps" / (name + suffix);
            if (fs::is_regular_file(path, error)) return path.native();
        }
    }
    return {};
}

std::optional<std::string> fileOf(GIcon* icon) {
    if (G_IS_FILE_ICON(icon)) {
        const char* path = g_file_peek_path(g_file_icon_get_file(G_FILE_ICON(icon)));
        return path ? std::optional<std::string>(path) : std::nullopt;
    }
    if (!G_IS_THEMED_ICON(icon)) return {};
    for (const gchar* const* name = g_themed_icon_get_names(G_THEMED_ICON(icon)); *name; ++name) {
        if (auto path = themed(*name)) return path;
    }
    return {};
}

}  // namespace

std::optional<std::string> iconPath(const std::string& displayName) {
    std::optional<std::string> found;
    GList* all = g_app_info_get_all();
    for (GList* at = all; at && !found; at = at->next) {
        auto* app = static_cast<GAppInfo*>(at->data);
        const bool named = displayName == g_app_info_get_name(app) || displayName == g_app_info_get_display_name(app);
        GIcon* icon = named ? g_app_info_get_icon(app) : nullptr;
        if (icon) found = fileOf(icon);
    }
    g_list_free_full(all, g_object_unref);
    return found;
}

}  // namespace ravik::platform
