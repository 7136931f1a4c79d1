#include "Platform/Linux/SessionBus.h"

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <string_view>

namespace ravik::platform {

namespace {

constexpr int patience = 500;  // milliseconds
constexpr const char* player = "org.mpris.MediaPlayer2";
constexpr const char* application = "org.qtproject.Qt.QCoreApplication";

using Variant = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;

bool isPlayer(std::string_view name) { return name.starts_with(std::string(player) + "."); }

/// The desktop entry of a name: KDE adds the pid to it.
std::string entryOf(std::string name) {
    const std::size_t dash = name.rfind('-');
    const bool numbered =
        dash != name.npos && dash + 1 < name.size() && name.find_first_not_of("0123456789", dash + 1) == name.npos;
    if (numbered) name.resize(dash);
    return name + ".desktop";
}

bool isShown(const std::string& entry) {
    GDesktopAppInfo* info = g_desktop_app_info_new(entry.c_str());
    if (!info) return false;
    const bool shown = g_app_info_should_show(G_APP_INFO(info));
    g_object_unref(info);
    return shown;
}

}  // namespace

struct SessionBus::Connection {
    explicit Connection(GDBusConnection* opened) : bus(opened) {}
    ~Connection() { g_object_unref(bus); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Null on any failure. Takes over floating arguments.
    Variant call(const std::string& name, const std::string& path, const char* interface, const char* method,
                 GVariant* arguments, const char* answer) const {
        return {g_dbus_connection_call_sync(bus, name.c_str(), path.c_str(), interface, method, arguments,
                                            G_VARIANT_TYPE(answer), G_DBUS_CALL_FLAGS_NO_AUTO_START, patience, nullptr,
                                            nullptr),
                g_variant_unref};
    }

    /// Does not wait: whoever quits may never answer.
    bool send(const std::string& name, const std::string& path, const char* interface, const char* method,
              GVariant* arguments) const {
        g_dbus_connection_call(bus, name.c_str(), path.c_str(), interface, method, arguments, nullptr,
                               G_DBUS_CALL_FLAGS_NO_AUTO_START, patience, nullptr, nullptr, nullptr);
        return g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        const Variant answer =
            call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ListNames", nullptr, "(as)");
        if (!answer) return found;
        GVariantIter* each = nullptr;
        const char* name = nullptr;
        g_variant_get(answer.get(), "(as)", &each);
        while (g_variant_iter_next(each, "&s", &name)) {
            if (name[0] != ':') found.emplace_back(name);
        }
        g_variant_iter_free(each);
        return found;
    }

    Pid owner(const std::string& name) const {
        const Variant answer = call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "GetConnectionUnixProcessID", g_variant_new("(s)", name.c_str()), "(u)");
        guint32 pid = 0;
        if (answer) g_variant_get(answer.get(), "(u)", &pid);
        return static_cast<Pid>(pid);
    }

    bool quitByAction(const std::string& name) const {
        const std::string path = actionsPath(name);
        if (!g_variant_is_object_path(path.c_str())) return false;
        const Variant answer = call(name, path, "org.gtk.Actions", "List", nullptr, "(as)");
        if (!answer) return false;
        const Variant list(g_variant_get_child_value(answer.get(), 0), g_variant_unref);
        gsize count = 0;
        const gchar** actions = g_variant_get_strv(list.get(), &count);
        const bool offered = std::any_of(actions, actions + count,
                                         [](const gchar* action) { return std::string_view(action) == "quit"; });
        g_free(actions);
        return offered &&
               send(name, path, "org.gtk.Actions", "Activate",
                    g_variant_new("(s@av@a{sv})", "quit", g_variant_new_array(G_VARIANT_TYPE_VARIANT, nullptr, 0),
                                  g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0)));
    }

    bool quitMainApplication(const std::string& name) const {
        const Variant answer =
            call(name, "/MainApplication", "org.freedesktop.DBus.Introspectable", "Introspect", nullptr, "(s)");
        if (!answer) return false;
        const char* xml = nullptr;
        g_variant_get(answer.get(), "(&s)", &xml);
        GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(xml, nullptr);
        if (!node) return false;
        GDBusInterfaceInfo* interface = g_dbus_node_info_lookup_interface(node, application);
        const bool offered = interface && g_dbus_interface_info_lookup_method(interface, "quit");
        g_dbus_node_info_unref(node);
        return offered && send(name, "/MainApplication", application, "quit", nullptr);
    }

    bool quitPlayer(const std::string& name) const {
        if (!isPlayer(name)) return false;
        const Variant answer = call(name, "/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties", "Get",
                                    g_variant_new("(ss)", player, "CanQuit"), "(v)");
        if (!answer) return false;
        const Variant boxed(g_variant_get_child_value(answer.get(), 0), g_variant_unref);
        const Variant can(g_variant_get_variant(boxed.get()), g_variant_unref);
        return g_variant_is_of_type(can.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(can.get()) &&
               send(name, "/org/mpris/MediaPlayer2", player, "Quit", nullptr);
    }

    GDBusConnection* bus;
    /// Whether the desktop entry of a name exists and is shown.
    std::map<std::string, bool> shown;
};

SessionBus::SessionBus(const std::string& address) {
    if (address.empty()) return;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection* bus = g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    if (!bus) return;
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    m_connection = std::make_unique<Connection>(bus);
}

SessionBus::~SessionBus() = default;

Pids SessionBus::applications() {
    Pids found;
    if (!m_connection) return found;
    for (const std::string& name : m_connection->names()) {
        const auto [known, isNew] = m_connection->shown.emplace(name, false);
        if (isNew) known->second = isPlayer(name) || isShown(entryOf(name));
        if (!known->second) continue;
        const Pid pid = m_connection->owner(name);
        if (pid > 0 && std::ranges::find(found, pid) == found.end()) found.push_back(pid);
    }
    return found;
}

bool SessionBus::quit(Pid pid) {
    if (!m_connection || pid <= 0) return false;
    std::vector<std::string> names;
    for (std::string& name : m_connection->names()) {
        if (m_connection->owner(name) == pid) names.push_back(std::move(name));
    }
    const auto any = [&](auto way) { return std::ranges::any_of(names, way); };
    return any([&](const std::string& name) { return m_connection->quitByAction(name); }) ||
           any([&](const std::string& name) { return m_connection->quitMainApplication(name); }) ||
           any([&](const std::string& name) { return m_connection->quitPlayer(name); });
}

std::string sessionBusAddress() {
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address) return address;
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    if (!folder || *folder != '/') return {};
    const std::filesystem::path socket = std::filesystem::path(folder) / "bus";
    std::error_code error;
    return std::filesystem::is_socket(socket, error) ? "unix:path=" + socket.native() : "";
}

std::string actionsPath(std::string_view busName) {
    std::string path = "/";
    for (const char byte : busName) path += byte == '.' ? '/' : byte == '-' ? '_' : byte;
    return path;
}

}  // namespace ravik::platform
