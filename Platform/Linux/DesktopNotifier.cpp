#include "Platform/Linux/DesktopNotifier.h"

#include <cstring>
#include <utility>

#include <gio/gio.h>

namespace ravik::platform {

namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* servicePath = "/org/freedesktop/Notifications";
constexpr const char* applicationName = "Ravik";
constexpr const char* desktopEntry = "dev.tolvane.Ravik";
constexpr int callTimeout = 5000;  // milliseconds

using Answer = std::function<void(GVariant*)>;  // null: the call failed

void call(GDBusConnection* bus, const char* method, GVariant* parameters, const char* reply, Answer answer) {
    const auto finished = [](GObject* source, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<Answer> handler(static_cast<Answer*>(data));
        GVariant* value = g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr);
        (*handler)(value);
        if (value) g_variant_unref(value);
    };
    g_dbus_connection_call(bus, service, servicePath, service, method, parameters, G_VARIANT_TYPE(reply),
                           G_DBUS_CALL_FLAGS_NONE, callTimeout, nullptr, finished, new Answer(std::move(answer)));
}

}  // namespace

DesktopNotifier::DesktopNotifier(std::string bus, NotificationSwitch isOff)
    : m_address(std::move(bus)), m_isOff(std::move(isOff)), m_self(std::make_shared<DesktopNotifier*>(this)) {}

DesktopNotifier::~DesktopNotifier() {
    *m_self = nullptr;
    disconnect();
}

bool DesktopNotifier::connect() {
    if (m_bus && !g_dbus_connection_is_closed(m_bus)) return true;
    disconnect();
    if (m_address.empty()) return false;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    m_bus = g_dbus_connection_new_for_address_sync(m_address.c_str(), flags, nullptr, nullptr, nullptr);
    if (!m_bus) return false;
    g_dbus_connection_set_exit_on_close(m_bus, FALSE);
    m_subscription = g_dbus_connection_signal_subscribe(m_bus, service, service, nullptr, servicePath, nullptr,
                                                        G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    m_owner = g_dbus_connection_signal_subscribe(m_bus, "org.freedesktop.DBus", "org.freedesktop.DBus",
                                                 "NameOwnerChanged", "/org/freedesktop/DBus", service,
                                                 G_DBUS_SIGNAL_FLAGS_NONE, onOwner, this, nullptr);
    return true;
}

void DesktopNotifier::disconnect() {
    m_shown = 0;
    if (!m_bus) return;
    g_dbus_connection_signal_unsubscribe(m_bus, m_subscription);
    g_dbus_connection_signal_unsubscribe(m_bus, m_owner);
    g_dbus_connection_close_sync(m_bus, nullptr, nullptr);
    g_clear_object(&m_bus);
}

std::string DesktopNotifier::escaped(std::string_view text) {
    char* safe = g_markup_escape_text(text.data(), static_cast<gssize>(text.size()));
    std::string out(safe);
    g_free(safe);
    return out;
}

void DesktopNotifier::post(const Notification& notification) {
    if (m_sending) {
        m_waiting = notification;
        return;
    }
    if (!connect()) return;
    m_sending = true;
    call(m_bus, "GetCapabilities", nullptr, "(as)", [self = m_self, notification](GVariant* reply) {
        if (!*self) return;
        if (!reply) {
            (*self)->sent(0);
            return;
        }
        Capabilities capabilities;
        GVariantIter* names = nullptr;
        g_variant_get(reply, "(as)", &names);
        for (const char* name = nullptr; g_variant_iter_next(names, "&s", &name);) {
            if (std::strcmp(name, "actions") == 0) capabilities.actions = true;
            if (std::strcmp(name, "body-markup") == 0) capabilities.markup = true;
        }
        g_variant_iter_free(names);
        (*self)->send(notification, capabilities);
    });
}

void DesktopNotifier::send(const Notification& notification, Capabilities capabilities) {
    GVariantBuilder actions;
    g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
    if (capabilities.actions) {
        g_variant_builder_add(&actions, "s", "default");
        g_variant_builder_add(&actions, "s", "Show");
        for (const auto& [identifier, title] : notification.actions) {
            g_variant_builder_add(&actions, "s", identifier.c_str());
            g_variant_builder_add(&actions, "s", title.c_str());
        }
    }
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(desktopEntry));
    const std::string body = capabilities.markup ? escaped(notification.body) : notification.body;
    GVariant* parameters = g_variant_new("(susssasa{sv}i)", applicationName, m_shown, desktopEntry,
                                         notification.title.c_str(), body.c_str(), &actions, &hints, -1);
    call(m_bus, "Notify", parameters, "(u)", [self = m_self](GVariant* reply) {
        std::uint32_t id = 0;
        if (reply) g_variant_get(reply, "(u)", &id);
        if (*self) (*self)->sent(id);
    });
}

void DesktopNotifier::sent(std::uint32_t id) {
    m_sending = false;
    m_shown = id;
    if (const auto next = std::exchange(m_waiting, {})) post(*next);
}

void DesktopNotifier::queryDenied(std::function<void(bool)> answer) {
    if (!connect()) {
        answer(true);
        return;
    }
    call(m_bus, "GetServerInformation", nullptr, "(ssss)",
         [answer = std::move(answer), isOff = m_isOff](GVariant* reply) { answer(!reply || (isOff && isOff())); });
}

void DesktopNotifier::onSignal(GDBusConnection*, const char*, const char*, const char*, const char* signal,
                               GVariant* parameters, void* data) {
    static_cast<DesktopNotifier*>(data)->hear(signal, parameters);
}

void DesktopNotifier::hear(std::string_view signal, GVariant* parameters) {
    std::uint32_t id = 0;
    if (g_variant_n_children(parameters) == 2) {
        GVariant* first = g_variant_get_child_value(parameters, 0);
        if (g_variant_is_of_type(first, G_VARIANT_TYPE_UINT32)) id = g_variant_get_uint32(first);
        g_variant_unref(first);
    }
    if (id == 0 || id != m_shown) return;
    const char* text = nullptr;
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(us)"))) g_variant_get_child(parameters, 1, "&s", &text);
    if (signal == "ActivationToken" && text) m_token = text;
    if (signal == "NotificationClosed") {
        m_shown = 0;
        m_token.clear();
    }
    if (signal == "ActionInvoked" && text) {
        if (const auto observer = m_observer) observer(text);
        m_token.clear();
    }
}

void DesktopNotifier::onOwner(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                              void* data) {
    // With another service the number may be another program's notification.
    static_cast<DesktopNotifier*>(data)->m_shown = 0;
}

}  // namespace ravik::platform
