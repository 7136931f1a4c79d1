#include "Platform/Linux/UserManager.h"

#include <gio/gio.h>

#include <charconv>
#include <utility>

namespace ravik::platform {

namespace {

constexpr int patience = 500;  // milliseconds
constexpr const char* name = "org.freedesktop.systemd1";
constexpr const char* managerPath = "/org/freedesktop/systemd1";
constexpr const char* managerInterface = "org.freedesktop.systemd1.Manager";

using Variant = std::unique_ptr<GVariant, decltype(&g_variant_unref)>;

const char* interfaceOf(const std::string& unit) {
    return unit.ends_with(".scope") ? "org.freedesktop.systemd1.Scope" : "org.freedesktop.systemd1.Service";
}

}  // namespace

struct UserManager::Connection {
    explicit Connection(GDBusConnection* opened) : bus(opened) {}
    ~Connection() { g_object_unref(bus); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Null on any failure. Takes over floating arguments.
    Variant call(const char* path, const char* interface, const char* method, GVariant* arguments,
                 const char* answer) const {
        return {g_dbus_connection_call_sync(bus, name, path, interface, method, arguments, G_VARIANT_TYPE(answer),
                                            G_DBUS_CALL_FLAGS_NO_AUTO_START, patience, nullptr, nullptr),
                g_variant_unref};
    }
    Variant property(const char* path, const char* interface, const char* property) const {
        const Variant answer =
            call(path, "org.freedesktop.DBus.Properties", "Get", g_variant_new("(ss)", interface, property), "(v)");
        if (!answer) return {nullptr, g_variant_unref};
        const Variant boxed(g_variant_get_child_value(answer.get(), 0), g_variant_unref);
        return {g_variant_get_variant(boxed.get()), g_variant_unref};
    }

    GDBusConnection* bus;
};

UserManager::UserManager(std::string address) : m_address(std::move(address)) {}

UserManager::~UserManager() = default;

UserManager::Connection* UserManager::connection() {
    if (!std::exchange(m_tried, true) && !m_address.empty()) {
        const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
        if (GDBusConnection* bus =
                g_dbus_connection_new_for_address_sync(m_address.c_str(), flags, nullptr, nullptr, nullptr)) {
            g_dbus_connection_set_exit_on_close(bus, FALSE);
            m_connection = std::make_unique<Connection>(bus);
        }
    }
    return m_connection.get();
}

int UserManager::version() {
    const Connection* bus = connection();
    if (!bus) return 0;
    const Variant value = bus->property(managerPath, managerInterface, "Version");
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING)) return 0;
    return majorVersion(g_variant_get_string(value.get(), nullptr));
}

std::optional<std::uint64_t> UserManager::weight(const std::string& unit) {
    const Connection* bus = connection();
    if (!bus || !g_utf8_validate(unit.c_str(), -1, nullptr)) return {};
    const Variant answer =
        bus->call(managerPath, managerInterface, "GetUnit", g_variant_new("(s)", unit.c_str()), "(o)");
    if (!answer) return {};
    const char* path = nullptr;
    g_variant_get(answer.get(), "(&o)", &path);
    const Variant value = bus->property(path, interfaceOf(unit), "CPUWeight");
    if (!value || !g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT64)) return {};
    return g_variant_get_uint64(value.get());
}

bool UserManager::setWeight(const std::string& unit, std::uint64_t weight) {
    const Connection* bus = connection();
    if (!bus || !g_utf8_validate(unit.c_str(), -1, nullptr)) return false;
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a(sv)"));
    g_variant_builder_add(&properties, "(sv)", "CPUWeight", g_variant_new_uint64(weight));
    return bus->call(managerPath, managerInterface, "SetUnitProperties",
                     g_variant_new("(sba(sv))", unit.c_str(), TRUE, &properties), "()") != nullptr;
}

int majorVersion(std::string_view version) {
    int number = 0;
    std::from_chars(version.data(), version.data() + version.size(), number);
    return number;
}

}  // namespace ravik::platform
