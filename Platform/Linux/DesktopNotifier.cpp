#include "Platform/Linux/DesktopNotifier.h"

#include <cstring>

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

DesktopNotifier::DesktopNotifier() : m_self(std::make_shared<DesktopNotifier*>(this)) {}

DesktopNotifier::~DesktopNotifier() {
    *m_self = nullptr;
    if (!m_bus) return;
    g_dbus_connection_signal_unsubscribe(m_bus, m_subscription);
    g_object_unref(m_bus);
}

bool DesktopNotifier::connect() {
    if (m_bus && !g_dbus_connection_is_closed(m_bus)) return true;
    g_clear_object(&m_bus);
    // Without an address the library would start a bus of its own.
    if (!g_getenv("DBUS_SESSION_BUS_ADDRESS")) return false;
    m_bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!m_bus) return false;
    g_dbus_connection_set_exit_on_close(m_bus, FALSE);
    m_subscription = g_dbus_connection_signal_subscribe(m_bus, service, service, nullptr, servicePath, nullptr,
                                                        G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    return true;
}

std::string DesktopNotifier::escaped(std::string_view text) {
    char* safe = g_markup_escape_text(text.data(), static_cast<gssize>(text.size()));
    std::string out(safe);
    g_free(safe);
    return out;
}

void DesktopNotifier::post(const Notification& notification) {
    if (!connect()) return;
    call(m_bus, "GetCapabilities", nullptr, "(as)", [self = m_self, notification](GVariant* reply) {
        if (!*self || !reply) return;
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
        if (*self && reply) g_variant_get(reply, "(u)", &(*self)->m_shown);
    });
}

void DesktopNotifier::queryDenied(std::function<void(bool)> answer) {
    if (!connect()) {
        answer(true);
        return;
    }
    call(m_bus, "GetServerInformation", nullptr, "(ssss)",
         [answer = std::move(answer)](GVariant* reply) { answer(reply == nullptr); });
}

void DesktopNotifier::onSignal(GDBusConnection*, const char*, const char*, const char*, const char* signal,
                               GVariant* parameters, void* data) {
    auto* self = static_cast<DesktopNotifier*>(data);
    if (std::strcmp(signal, "ActionInvoked") == 0 && g_variant_is_of_type(parameters, G_VARIANT_TYPE("(us)"))) {
        std::uint32_t id = 0;
        const char* action = nullptr;
        g_variant_get(parameters, "(u&s)", &id, &action);
        if (id == self->m_shown && self->m_shown != 0 && self->m_observer) self->m_observer(action);
    } else if (std::strcmp(signal, "NotificationClosed") == 0 &&
               g_variant_is_of_type(parameters, G_VARIANT_TYPE("(uu)"))) {
        std::uint32_t id = 0;
        std::uint32_t reason = 0;
        g_variant_get(parameters, "(uu)", &id, &reason);
        if (id == self->m_shown) self->m_shown = 0;
    }
}

}  // namespace ravik::platform
