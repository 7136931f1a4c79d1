#include "Platform/Linux/FileManager.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {

namespace {

constexpr const char* interface =
    "<node><interface name='org.freedesktop.FileManager1'><method name='ShowItems'>"
    "<arg type='as' direction='in'/><arg type='s' direction='in'/></method></interface></node>";

/// Stands on a bus and remembers what it was asked to show.
struct Manager {
    explicit Manager(const OwnBus& bus) {
        const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        connection = g_dbus_connection_new_for_address_sync(bus.address().c_str(), flags, nullptr, nullptr, nullptr);
        node = g_dbus_node_info_new_for_xml(interface, nullptr);
        static const GDBusInterfaceVTable table{hear, nullptr, nullptr, {}};
        g_dbus_connection_register_object(connection, "/org/freedesktop/FileManager1", node->interfaces[0], &table,
                                          this, nullptr, nullptr);
        g_bus_own_name_on_connection(
            connection, "org.freedesktop.FileManager1", G_BUS_NAME_OWNER_FLAGS_NONE,
            [](GDBusConnection*, const char*, gpointer self) { static_cast<Manager*>(self)->isUp = true; }, nullptr,
            this, nullptr);
    }
    ~Manager() {
        g_dbus_connection_close_sync(connection, nullptr, nullptr);
        g_object_unref(connection);
        g_dbus_node_info_unref(node);
    }

    static void hear(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments,
                     GDBusMethodInvocation* call, gpointer self) {
        GVariantIter* uris = nullptr;
        const char* uri = nullptr;
        g_variant_get(arguments, "(ass)", &uris, nullptr);
        while (g_variant_iter_next(uris, "&s", &uri)) static_cast<Manager*>(self)->shown.emplace_back(uri);
        g_variant_iter_free(uris);
        g_dbus_method_invocation_return_value(call, nullptr);
    }

    GDBusConnection* connection;
    GDBusNodeInfo* node;
    bool isUp = false;
    std::vector<std::string> shown;
};

}  // namespace

TEST(FileManager, ShowsTheFileThatItIsGiven) {
    const OwnBus bus;
    Manager manager(bus);
    ASSERT_TRUE(turnUntil([&] { return manager.isUp; }));
    FileManager(bus.address()).reveal("/home/ada/Desktop/a zip ü.zip");
    EXPECT_TRUE(turnUntil([&] { return !manager.shown.empty(); }));
    EXPECT_EQ(manager.shown, (std::vector<std::string>{"file:///home/ada/Desktop/a%20zip%20%C3%BC.zip"}));
}

TEST(FileManager, IsSilentWhereThereIsNone) {
    const OwnBus bus;
    FileManager(bus.address()).reveal("/home/ada/a.zip");
    FileManager("unix:path=/nonexistent/bus").reveal("/home/ada/a.zip");
    FileManager("").reveal("/home/ada/a.zip");
    FileManager(bus.address()).reveal("relative.zip");
    // Whatever comes back finds nobody to disturb.
    turnUntil([] { return false; }, 0.5);
}

}  // namespace ravik::platform
