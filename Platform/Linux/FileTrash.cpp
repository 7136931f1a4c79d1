#include "Platform/Linux/FileTrash.h"

#include <fmt/format.h>
#include <gio/gio.h>

namespace ravik::platform {

namespace {

std::string sentence(const std::string& path, const GError* error) {
    if (!error) return fmt::format("{} could not be moved to the Trash, so it was left where it is.", path);
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_NOT_SUPPORTED)) {
        return fmt::format("The volume of {} has no Trash, so it was left where it is.", path);
    }
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_NOT_FOUND)) return fmt::format("{} is no longer there.", path);
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_PERMISSION_DENIED) ||
        g_error_matches(error, G_IO_ERROR, G_IO_ERROR_READ_ONLY)) {
        return fmt::format("{} may not be moved to the Trash, so it was left where it is.", path);
    }
    return fmt::format("{} could not be moved to the Trash ({}), so it was left where it is.", path, error->message);
}

}  // namespace

std::optional<std::string> FileTrash::move(const std::filesystem::path& path) {
    GFile* file = g_file_new_for_path(path.c_str());
    GError* error = nullptr;
    const bool moved = g_file_trash(file, nullptr, &error);
    g_object_unref(file);
    if (moved) return {};
    std::string why = sentence(path.string(), error);
    g_clear_error(&error);
    return why;
}

}  // namespace ravik::platform
