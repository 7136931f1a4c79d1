#include "Platform/Linux/FileManager.h"

#include <memory>

#include <gio/gio.h>

namespace ravik::platform {

namespace {

constexpr const char* service = "org.freedesktop.FileManager1";
constexpr int patience = 25000;  // milliseconds

void finish(GObject* bus, GAsyncResult* result, gpointer) {
    GVariant* answer = g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, nullptr);
    if (answer) g_variant_unref(answer);
    g_dbus_connection_close(G_DBUS_CONNECTION(bus), nullptr, nullptr, nullptr);
    g_object_unref(bus);
}

void show(GObject*, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<gchar, decltype(&g_free)> uri(static_cast<gchar*>(data), g_free);
    GDBusConnection* bus = g_dbus_connection_new_for_address_finish(result, nullptr);
    if (!bus) return;
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    const gchar* uris[] = {uri.get(), nullptr};
    g_dbus_connection_call(bus, service, "/org/freedesktop/FileManager1", service, "ShowItems",
                           g_variant_new("(^ass)", uris, ""), nullptr, G_DBUS_CALL_FLAGS_NONE, patience, nullptr,
                           finish, nullptr);
}

}  // namespace

void FileManager::reveal(const std::filesystem::path& file) {
    gchar* uri = m_bus.empty() ? nullptr : g_filename_to_uri(file.c_str(), nullptr, nullptr);
    if (!uri) return;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(m_bus.c_str(), flags, nullptr, nullptr, show, uri);
}

}  // namespace ravik::platform
