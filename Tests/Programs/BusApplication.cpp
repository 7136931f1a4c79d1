// An application on the session bus that quits when it is asked to, for the tests to ask.
//
//   ravik-test-bus-application action|main|player|stubborn|silent NAME FD
//
// Owns NAME and offers to quit in one of three ways; "stubborn" is a player that cannot, "silent" offers nothing.
// Writes a line to FD once it can be asked.

#include <gio/gio.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr const char* interfaces = R"(<node>
  <interface name="org.gtk.Actions">
    <method name="List"><arg type="as" direction="out"/></method>
    <method name="Activate">
      <arg type="s" direction="in"/><arg type="av" direction="in"/><arg type="a{sv}" direction="in"/>
    </method>
  </interface>
  <interface name="org.qtproject.Qt.QCoreApplication"><method name="quit"/></interface>
  <interface name="org.mpris.MediaPlayer2">
    <property name="CanQuit" type="b" access="read"/>
    <method name="Quit"/>
  </interface>
</node>)";

GMainLoop* loop = nullptr;
bool canQuit = false;

void call(GDBusConnection*, const char*, const char*, const char*, const char* method, GVariant* arguments,
          GDBusMethodInvocation* invocation, gpointer) {
    if (std::strcmp(method, "List") == 0) {
        const char* actions[]{"about", "quit", nullptr};
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(^as)", actions));
        return;
    }
    g_dbus_method_invocation_return_value(invocation, nullptr);
    const char* action = "quit";
    if (std::strcmp(method, "Activate") == 0) g_variant_get_child(arguments, 0, "&s", &action);
    if (std::strcmp(action, "quit") == 0) g_main_loop_quit(loop);
}

GVariant* property(GDBusConnection*, const char*, const char*, const char*, const char*, GError**, gpointer) {
    return g_variant_new_boolean(canQuit);
}

constexpr GDBusInterfaceVTable table{call, property, nullptr, {}};

void serve(GDBusConnection* bus, const char* path, const char* interface) {
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(interfaces, nullptr);
    GDBusInterfaceInfo* info = g_dbus_node_info_lookup_interface(node, interface);
    if (g_dbus_connection_register_object(bus, path, info, &table, nullptr, nullptr, nullptr) == 0) std::exit(1);
}

}  // namespace

int main(int count, char** words) {
    if (count != 4) return 2;
    const std::string kind = words[1];
    loop = g_main_loop_new(nullptr, FALSE);
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!bus) return 1;

    std::string path = "/" + std::string(words[2]);
    for (char& byte : path) {
        if (byte == '.') byte = '/';
        if (byte == '-') byte = '_';
    }
    if (kind == "action") serve(bus, path.c_str(), "org.gtk.Actions");
    if (kind == "main") serve(bus, "/MainApplication", "org.qtproject.Qt.QCoreApplication");
    if (kind == "player" || kind == "stubborn") serve(bus, "/org/mpris/MediaPlayer2", "org.mpris.MediaPlayer2");
    canQuit = kind == "player";

    GVariant* answer = g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", words[2], 0U), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (!answer || write(std::atoi(words[3]), "up\n", 3) != 3) return 1;
    g_variant_unref(answer);
    g_main_loop_run(loop);
    g_dbus_connection_flush_sync(bus, nullptr, nullptr);
    return 0;
}
