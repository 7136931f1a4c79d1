#include "Platform/Linux/ApplicationBus.h"

#include <algorithm>
#include <cstring>

#include <gio/gio.h>

namespace ravik::platform {

namespace {

constexpr const char* busName = "dev.tolvane.Ravik";
constexpr const char* objectPath = "/dev/tolvane/Ravik";
constexpr const char* application = "org.freedesktop.Application";
constexpr int patience = 5000;        // milliseconds
constexpr int startPatience = 25000;  // the bus itself gives up a program that it starts after so long
constexpr guint doNotQueue = 4;
constexpr guint nowOwner = 1;
constexpr guint alreadyOwner = 4;
constexpr guint firstRetry = 1;  // seconds
constexpr guint lastRetry = 60;

constexpr const char* introspection = R"(<node><interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" name="platform-data" direction="in"/></method>
  <method name="Open">
    <arg type="as" name="uris" direction="in"/><arg type="a{sv}" name="platform-data" direction="in"/>
  </method>
  <method name="ActivateAction">
    <arg type="s" name="action-name" direction="in"/><arg type="av" name="parameter" direction="in"/>
    <arg type="a{sv}" name="platform-data" direction="in"/>
  </method>
</interface></node>)";

struct Unref {
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
    void operator()(GError* error) const { g_error_free(error); }
};
using Variant = std::unique_ptr<GVariant, Unref>;

std::string tokenOf(GVariant* platformData) {
    for (const char* key : {"activation-token", "desktop-startup-id"}) {
        const char* token = nullptr;
        if (g_variant_lookup(platformData, key, "&s", &token) && *token) return token;
    }
    return {};
}

/// The first parameter of an action, if it is a text.
std::string textOf(GVariant* parameters) {
    if (g_variant_n_children(parameters) == 0) return {};
    const Variant boxed(g_variant_get_child_value(parameters, 0));
    const Variant value(g_variant_get_variant(boxed.get()));
    if (!g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) return {};
    return g_variant_get_string(value.get(), nullptr);
}

Activation activationOf(std::string_view method, GVariant* arguments) {
    Activation asked;
    if (method == "ActivateAction") {
        const char* action = nullptr;
        g_variant_get_child(arguments, 0, "&s", &action);
        asked.action = action;
        asked.parameter = textOf(Variant(g_variant_get_child_value(arguments, 1)).get());
    }
    asked.token = tokenOf(Variant(g_variant_get_child_value(arguments, g_variant_n_children(arguments) - 1)).get());
    return asked;
}

GVariant* platformData(const std::map<std::string, std::string>& tokens) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{sv}"));
    for (const auto& [key, token] : tokens) {
        g_variant_builder_add(&builder, "{sv}", key.c_str(), g_variant_new_string(token.c_str()));
    }
    return g_variant_builder_end(&builder);
}

GVariant* actionArguments(const Activation& asked, GVariant* data) {
    GVariantBuilder parameters;
    g_variant_builder_init(&parameters, G_VARIANT_TYPE("av"));
    if (!asked.parameter.empty()) {
        g_variant_builder_add(&parameters, "v", g_variant_new_string(asked.parameter.c_str()));
    }
    return g_variant_new("(sav@a{sv})", asked.action.c_str(), &parameters, data);
}

}  // namespace

struct ApplicationBus::State {
    bool connect();
    void disconnect();
    bool serve();
    Variant call(const char* method, GVariant* arguments, const char* answer);
    Answer request();
    void retryLater();

    static void hear(GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant* arguments,
                     GDBusMethodInvocation* invocation, gpointer data);
    static void lost(GDBusConnection*, gboolean, GError*, gpointer data);
    static gboolean retry(gpointer data);

    std::string address;
    std::function<void(const Activation&)> observer;
    GDBusConnection* bus = nullptr;
    gulong closed = 0;
    guint object = 0;
    guint timer = 0;
    guint wait = firstRetry;
};

bool ApplicationBus::State::connect() {
    if (bus && !g_dbus_connection_is_closed(bus)) return true;
    disconnect();
    if (address.empty()) return false;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    bus = g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    if (!bus) return false;
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    return true;
}

void ApplicationBus::State::disconnect() {
    if (!bus) return;
    if (closed) g_signal_handler_disconnect(bus, closed);
    if (object) g_dbus_connection_unregister_object(bus, object);
    closed = 0;
    object = 0;
    g_dbus_connection_close_sync(bus, nullptr, nullptr);
    g_clear_object(&bus);
}

bool ApplicationBus::State::serve() {
    if (object) return true;
    static constexpr GDBusInterfaceVTable table{&State::hear, nullptr, nullptr, {}};
    const std::unique_ptr<GDBusNodeInfo, Unref> node(g_dbus_node_info_new_for_xml(introspection, nullptr));
    GDBusInterfaceInfo* interface = g_dbus_node_info_lookup_interface(node.get(), application);
    object = g_dbus_connection_register_object(bus, objectPath, interface, &table, this, nullptr, nullptr);
    return object != 0;
}

Variant ApplicationBus::State::call(const char* method, GVariant* arguments, const char* answer) {
    return Variant(g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
                                               "org.freedesktop.DBus", method, arguments, G_VARIANT_TYPE(answer),
                                               G_DBUS_CALL_FLAGS_NONE, patience, nullptr, nullptr));
}

ApplicationBus::Answer ApplicationBus::State::request() {
    // The object comes first: who sees the name may call at once.
    if (!connect() || !serve()) return Answer::noBus;
    const Variant answer = call("RequestName", g_variant_new("(su)", busName, doNotQueue), "(u)");
    if (!answer) return Answer::noBus;
    guint result = 0;
    g_variant_get(answer.get(), "(u)", &result);
    if (result != nowOwner && result != alreadyOwner) return Answer::theirs;
    if (!closed) closed = g_signal_connect(bus, "closed", G_CALLBACK(&State::lost), this);
    return Answer::mine;
}

void ApplicationBus::State::hear(GDBusConnection*, const char*, const char*, const char*, const char* method,
                                 GVariant* arguments, GDBusMethodInvocation* invocation, gpointer data) {
    const Activation asked = activationOf(method, arguments);
    const auto observer = static_cast<State*>(data)->observer;
    // Whoever asks need not wait for a window.
    g_dbus_method_invocation_return_value(invocation, nullptr);
    if (observer) observer(asked);
}

void ApplicationBus::State::lost(GDBusConnection*, gboolean, GError*, gpointer data) {
    auto& state = *static_cast<State*>(data);
    state.wait = firstRetry;
    state.retryLater();
}

void ApplicationBus::State::retryLater() {
    if (!timer) timer = g_timeout_add_seconds(wait, &State::retry, this);
    wait = std::min(wait * 2, lastRetry);
}

gboolean ApplicationBus::State::retry(gpointer data) {
    auto& state = *static_cast<State*>(data);
    state.timer = 0;
    if (state.request() == Answer::noBus) state.retryLater();
    return G_SOURCE_REMOVE;
}

ApplicationBus::ApplicationBus(std::string address) : m_state(std::make_unique<State>()) {
    m_state->address = std::move(address);
}

ApplicationBus::~ApplicationBus() { release(); }

ApplicationBus::Answer ApplicationBus::claim() { return m_state->request(); }

void ApplicationBus::release() {
    if (m_state->timer) g_source_remove(m_state->timer);
    m_state->timer = 0;
    m_state->disconnect();
}

void ApplicationBus::onActivation(std::function<void(const Activation&)> observer) {
    m_state->observer = std::move(observer);
}

bool ApplicationBus::isThere() { return m_state->connect(); }

std::optional<Pid> ApplicationBus::owner() {
    if (!m_state->connect()) return {};
    const Variant has = m_state->call("NameHasOwner", g_variant_new("(s)", busName), "(b)");
    gboolean owned = FALSE;
    if (has) g_variant_get(has.get(), "(b)", &owned);
    if (!owned) return {};
    const Variant answer = m_state->call("GetConnectionUnixProcessID", g_variant_new("(s)", busName), "(u)");
    guint32 pid = 0;
    if (answer) g_variant_get(answer.get(), "(u)", &pid);
    return static_cast<Pid>(pid);
}

bool ApplicationBus::canStart() {
    if (!m_state->connect()) return false;
    const Variant answer = m_state->call("ListActivatableNames", nullptr, "(as)");
    if (!answer) return false;
    const Variant list(g_variant_get_child_value(answer.get(), 0));
    const std::unique_ptr<const gchar*, decltype(&g_free)> names(g_variant_get_strv(list.get(), nullptr), g_free);
    return g_strv_contains(names.get(), busName);
}

ApplicationBus::Delivery ApplicationBus::send(const Activation& asked, const std::map<std::string, std::string>& tokens,
                                              bool start) {
    if (!m_state->connect()) return Delivery::nobody;
    GVariant* data = platformData(tokens);
    GVariant* arguments = asked.action.empty() ? g_variant_new("(@a{sv})", data) : actionArguments(asked, data);
    GError* failure = nullptr;
    const Variant answer(g_dbus_connection_call_sync(
        m_state->bus, busName, objectPath, application, asked.action.empty() ? "Activate" : "ActivateAction", arguments,
        nullptr, start ? G_DBUS_CALL_FLAGS_NONE : G_DBUS_CALL_FLAGS_NO_AUTO_START, start ? startPatience : patience,
        nullptr, &failure));
    if (answer) return Delivery::heard;
    const std::unique_ptr<GError, Unref> error(failure);
    // Nobody has the name, or who had it went away before it answered.
    const bool gone = g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) ||
                      g_error_matches(failure, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) || !owner();
    return gone ? Delivery::nobody : Delivery::unanswered;
}

}  // namespace ravik::platform
