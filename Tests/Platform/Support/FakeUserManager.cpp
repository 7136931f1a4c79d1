#include "Tests/Platform/Support/FakeUserManager.h"

#include <gio/gio.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <string_view>

namespace ravik::platform {

namespace {

constexpr std::uint64_t noWeight = ~std::uint64_t{0};
constexpr const char* unitRoot = "/org/freedesktop/systemd1/unit/";

/// A unit's name as the last part of an object path.
std::string pathOf(const std::string& unit) {
    std::string path = unitRoot;
    for (const char byte : unit) {
        char code[4];
        g_snprintf(code, sizeof code, "_%02x", static_cast<unsigned char>(byte));
        path += g_ascii_isalnum(byte) ? std::string(1, byte) : code;
    }
    return path;
}

}  // namespace

struct FakeUserManager::Service {
    GDBusConnection* bus = nullptr;
    guint filter = 0;
    std::filesystem::path units;

    mutable std::mutex lock;
    std::string version = "252.39-1~deb12u1";
    std::map<std::string, std::uint64_t> weights;
    std::set<std::string> forgotten;
    bool ignores = false;
    bool runtime = false;

    void apply(const std::string& unit, std::uint64_t weight) {
        weights[unit] = weight;
        std::ofstream(units / unit / "cpu.idle") << (weight == 0 ? 1 : 0) << "\n";
        if (weight != 0) std::ofstream(units / unit / "cpu.weight") << (weight == noWeight ? 100 : weight) << "\n";
    }

    /// The answer's body; null for an error.
    GVariant* answer(std::string_view method, const std::string& path, GVariant* arguments) {
        if (method == "GetUnit") {
            const char* unit = nullptr;
            g_variant_get(arguments, "(&s)", &unit);
            if (forgotten.contains(unit) || !std::filesystem::exists(units / unit)) return nullptr;
            weights.try_emplace(unit, noWeight);
            return g_variant_new("(o)", pathOf(unit).c_str());
        }
        if (method == "Get") {
            const char* interface = nullptr;
            const char* property = nullptr;
            g_variant_get(arguments, "(&s&s)", &interface, &property);
            if (std::string_view(property) == "Version")
                return g_variant_new("(v)", g_variant_new_string(version.c_str()));
            for (const auto& [unit, weight] : weights) {
                const bool isScope = std::string_view(interface).ends_with(".Scope");
                if (path == pathOf(unit) && isScope == unit.ends_with(".scope")) {
                    return g_variant_new("(v)", g_variant_new_uint64(weight));
                }
            }
            return nullptr;
        }
        if (method != "SetUnitProperties") return nullptr;
        const char* unit = nullptr;
        gboolean forNow = FALSE;
        GVariantIter* properties = nullptr;
        g_variant_get(arguments, "(&sba(sv))", &unit, &forNow, &properties);
        runtime = forNow;
        const char* key = nullptr;
        GVariant* value = nullptr;
        while (g_variant_iter_next(properties, "(&sv)", &key, &value)) {
            if (std::string_view(key) == "CPUWeight" && !ignores) apply(unit, g_variant_get_uint64(value));
            g_variant_unref(value);
        }
        g_variant_iter_free(properties);
        return g_variant_new("()");
    }

    static GDBusMessage* onMessage(GDBusConnection* bus, GDBusMessage* message, gboolean incoming, void* data) {
        if (!incoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return message;
        auto& service = *static_cast<Service*>(data);
        const std::lock_guard guard(service.lock);
        GVariant* body = service.answer(g_dbus_message_get_member(message), g_dbus_message_get_path(message),
                                        g_dbus_message_get_body(message));
        GDBusMessage* reply = body ? g_dbus_message_new_method_reply(message)
                                   : g_dbus_message_new_method_error_literal(
                                         message, "org.freedesktop.systemd1.NoSuchUnit", "There is no such unit.");
        if (body) g_dbus_message_set_body(reply, body);
        g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
        g_object_unref(reply);
        g_object_unref(message);
        return nullptr;
    }
};

FakeUserManager::FakeUserManager(const std::string& bus, const std::string& units)
    : m_service(std::make_unique<Service>()) {
    m_service->units = units;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    m_service->bus = g_dbus_connection_new_for_address_sync(bus.c_str(), flags, nullptr, nullptr, nullptr);
    if (!m_service->bus) return;
    g_dbus_connection_set_exit_on_close(m_service->bus, FALSE);
    m_service->filter = g_dbus_connection_add_filter(m_service->bus, Service::onMessage, m_service.get(), nullptr);
    GVariant* granted = g_dbus_connection_call_sync(
        m_service->bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", "org.freedesktop.systemd1", 0), nullptr, G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
    if (granted) g_variant_unref(granted);
}

FakeUserManager::~FakeUserManager() {
    if (!m_service->bus) return;
    g_dbus_connection_remove_filter(m_service->bus, m_service->filter);
    g_dbus_connection_close_sync(m_service->bus, nullptr, nullptr);
    g_object_unref(m_service->bus);
}

bool FakeUserManager::isUp() const { return m_service->bus != nullptr; }

void FakeUserManager::setVersion(const std::string& version) {
    const std::lock_guard guard(m_service->lock);
    m_service->version = version;
}

void FakeUserManager::setWeight(const std::string& unit, std::uint64_t weight) {
    const std::lock_guard guard(m_service->lock);
    m_service->apply(unit, weight);
}

void FakeUserManager::forget(const std::string& unit) {
    const std::lock_guard guard(m_service->lock);
    m_service->forgotten.insert(unit);
}

void FakeUserManager::ignoreChanges() {
    const std::lock_guard guard(m_service->lock);
    m_service->ignores = true;
}

bool FakeUserManager::lastRuntime() const {
    const std::lock_guard guard(m_service->lock);
    return m_service->runtime;
}

}  // namespace ravik::platform
