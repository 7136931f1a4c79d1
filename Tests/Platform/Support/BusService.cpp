#include "Tests/Platform/Support/BusService.h"

namespace ravik::platform {

BusService::BusService(const std::string& bus, const std::string& name, Answer answer) : m_answer(std::move(answer)) {
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    m_bus = g_dbus_connection_new_for_address_sync(bus.c_str(), flags, nullptr, nullptr, nullptr);
    if (!m_bus) return;
    g_dbus_connection_set_exit_on_close(m_bus, FALSE);
    m_filter = g_dbus_connection_add_filter(m_bus, &BusService::hear, this, nullptr);
    GVariant* granted = g_dbus_connection_call_sync(
        m_bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name.c_str(), 4U), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
    if (!granted) return;
    guint result = 0;
    g_variant_get(granted, "(u)", &result);
    m_up = result == 1;
    g_variant_unref(granted);
}

BusService::~BusService() {
    if (!m_bus) return;
    g_dbus_connection_close_sync(m_bus, nullptr, nullptr);
    g_dbus_connection_remove_filter(m_bus, m_filter);
    g_object_unref(m_bus);
}

void BusService::emit(const char* path, const char* interface, const char* signal, GVariant* arguments) const {
    g_dbus_connection_emit_signal(m_bus, nullptr, path, interface, signal, arguments, nullptr);
    g_dbus_connection_flush_sync(m_bus, nullptr, nullptr);
}

GDBusMessage* BusService::hear(GDBusConnection* bus, GDBusMessage* message, gboolean incoming, void* data) {
    if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return message;
    GVariant* body =
        static_cast<BusService*>(data)->m_answer(g_dbus_message_get_member(message), g_dbus_message_get_body(message));
    GDBusMessage* reply = body ? g_dbus_message_new_method_reply(message)
                               : g_dbus_message_new_method_error_literal(message, "org.example.No", "No.");
    if (body) g_dbus_message_set_body(reply, body);
    g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
    g_object_unref(message);
    return nullptr;
}

}  // namespace ravik::platform
