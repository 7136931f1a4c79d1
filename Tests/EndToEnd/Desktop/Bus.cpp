#include "Tests/EndToEnd/Desktop/Bus.h"

#include <gio/gio.h>

namespace ravik::endtoend {

Bus::Bus(const std::string& address) {
    constexpr int flags =
        G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION;
    m_connection = g_dbus_connection_new_for_address_sync(address.c_str(), static_cast<GDBusConnectionFlags>(flags),
                                                          nullptr, nullptr, nullptr);
    // The bus goes before its users here.
    if (m_connection) g_dbus_connection_set_exit_on_close(m_connection, FALSE);
}

Bus::~Bus() { g_clear_object(&m_connection); }

GVariant* Bus::call(const std::string& owner, const std::string& path, const char* interface, const char* method,
                    GVariant* words) const {
    constexpr int patience = 5000;
    return g_dbus_connection_call_sync(m_connection, owner.c_str(), path.c_str(), interface, method, words, nullptr,
                                       G_DBUS_CALL_FLAGS_NONE, patience, nullptr, nullptr);
}

bool Bus::owns(const std::string& name) const {
    GVariant* reply = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                           g_variant_new("(s)", name.c_str()));
    if (!reply) return false;
    gboolean owned = FALSE;
    g_variant_get(reply, "(b)", &owned);
    g_variant_unref(reply);
    return owned;
}

}  // namespace ravik::endtoend
