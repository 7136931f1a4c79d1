#include "Tests/EndToEnd/Desktop/Accessible.h"

#include <algorithm>
#include <cstdint>

#include <fmt/format.h>
#include <gio/gio.h>

namespace ravik::endtoend {

namespace {

constexpr const char* accessibleInterface = "org.a11y.atspi.Accessible";
// Bits of the state set, as the protocol numbers them.
constexpr int activeBit = 1, checkedBit = 4, enabledBit = 8, focusableBit = 11, focusedBit = 12, selectedBit = 23,
              visibleBit = 30;

std::string addressOf(const Bus& session) {
    GVariant* reply = session.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress");
    if (!reply) return {};
    const char* address = "";
    g_variant_get(reply, "(&s)", &address);
    std::string copy = address;
    g_variant_unref(reply);
    return copy;
}

}  // namespace

const Accessible* Accessible::find(std::string_view wantedRole, std::string_view wantedName) const {
    if (role == wantedRole && name == wantedName) return this;
    for (const Accessible& child : children) {
        if (const Accessible* found = child.find(wantedRole, wantedName)) return found;
    }
    return nullptr;
}

const Accessible* Accessible::findBeginning(std::string_view wantedRole, std::string_view beginning) const {
    if (role == wantedRole && name.starts_with(beginning)) return this;
    for (const Accessible& child : children) {
        if (const Accessible* found = child.findBeginning(wantedRole, beginning)) return found;
    }
    return nullptr;
}

const Accessible* Accessible::focus() const {
    for (const Accessible& child : children) {
        if (const Accessible* found = child.focus()) return found;
    }
    return focused ? this : nullptr;
}

void Accessible::visit(const std::function<void(const Accessible&)>& visitor) const {
    visitor(*this);
    for (const Accessible& child : children) child.visit(visitor);
}

std::string Accessible::text(int depth) const {
    std::string line(static_cast<std::size_t>(depth) * 2, ' ');
    line += fmt::format("{} \"{}\"", role, name);
    if (!description.empty() && description != name) line += fmt::format(" ({})", description);
    if (focusable && !enabled) line += " disabled";
    if (checked) line += " checked";
    if (selected) line += " selected";
    if (focused) line += " focused";
    line += '\n';
    for (const Accessible& child : children) line += child.text(depth + 1);
    return line;
}

AccessibilityBus::AccessibilityBus(const Bus& session) : m_bus(addressOf(session)) {}

std::vector<AccessibilityBus::Place> AccessibilityBus::children(const Place& place) const {
    std::vector<Place> places;
    GVariant* reply = m_bus.call(place.owner, place.path, accessibleInterface, "GetChildren", nullptr);
    if (!reply) return places;
    GVariantIter* each = nullptr;
    g_variant_get(reply, "(a(so))", &each);
    const char* owner = nullptr;
    const char* path = nullptr;
    while (g_variant_iter_next(each, "(&s&o)", &owner, &path)) places.push_back({owner, path});
    g_variant_iter_free(each);
    g_variant_unref(reply);
    return places;
}

std::string AccessibilityBus::property(const Place& place, const char* name) const {
    GVariant* reply = m_bus.call(place.owner, place.path, "org.freedesktop.DBus.Properties", "Get",
                                 g_variant_new("(ss)", accessibleInterface, name));
    if (!reply) return {};
    GVariant* value = nullptr;
    g_variant_get(reply, "(v)", &value);
    std::string text = g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) ? g_variant_get_string(value, nullptr) : "";
    g_variant_unref(value);
    g_variant_unref(reply);
    return text;
}

Pid AccessibilityBus::pidOf(const std::string& owner) const {
    GVariant* reply = m_bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                 "GetConnectionUnixProcessID", g_variant_new("(s)", owner.c_str()));
    if (!reply) return 0;
    std::uint32_t pid = 0;
    g_variant_get(reply, "(u)", &pid);
    g_variant_unref(reply);
    return static_cast<Pid>(pid);
}

Accessible AccessibilityBus::read(const Place& place) const {
    Accessible one;
    one.name = property(place, "Name");
    one.description = property(place, "Description");
    if (GVariant* reply = m_bus.call(place.owner, place.path, accessibleInterface, "GetRoleName", nullptr)) {
        const char* role = "";
        g_variant_get(reply, "(&s)", &role);
        one.role = role;
        g_variant_unref(reply);
    }
    if (GVariant* reply = m_bus.call(place.owner, place.path, accessibleInterface, "GetState", nullptr)) {
        GVariant* words = g_variant_get_child_value(reply, 0);
        gsize count = 0;
        const auto* bits = static_cast<const std::uint32_t*>(g_variant_get_fixed_array(words, &count, 4));
        const auto has = [&](int bit) {
            const auto word = static_cast<gsize>(bit / 32);
            return word < count && (bits[word] >> (bit % 32) & 1u) != 0;
        };
        one.active = has(activeBit);
        one.checked = has(checkedBit);
        one.enabled = has(enabledBit);
        one.focusable = has(focusableBit);
        one.focused = has(focusedBit);
        one.selected = has(selectedBit);
        one.visible = has(visibleBit);
        g_variant_unref(words);
        g_variant_unref(reply);
    }
    constexpr std::uint32_t onScreen = 0;
    if (GVariant* reply = m_bus.call(place.owner, place.path, "org.a11y.atspi.Component", "GetExtents",
                                     g_variant_new("(u)", onScreen))) {
        g_variant_get(reply, "((iiii))", &one.area.x, &one.area.y, &one.area.width, &one.area.height);
        g_variant_unref(reply);
    }
    for (const Place& below : children(place)) {
        Accessible child = read(below);
        if (child.visible) one.children.push_back(std::move(child));
    }
    return one;
}

Accessible AccessibilityBus::windowsOf(Pid pid) const {
    Accessible windows;
    if (!m_bus.connection()) return windows;
    for (const Place& program : children({"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"})) {
        if (pidOf(program.owner) == pid) return read(program);
    }
    return windows;
}

}  // namespace ravik::endtoend
