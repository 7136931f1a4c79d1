#include <cstring>
#include <map>
#include <utility>

#include <gio/gio.h>

#include "Platform/Linux/LookSource.h"

namespace ravik::platform {

namespace {

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* settingsInterface = "org.freedesktop.portal.Settings";
constexpr int patience = 500;        // milliseconds
constexpr int latePatience = 25000;  // a portal that is just being started

constexpr const char* everybody = "org.freedesktop.appearance";
constexpr const char* gnome = "org.gnome.desktop.interface";
constexpr const char* gnomeAccess = "org.gnome.desktop.a11y.interface";
constexpr const char* kde = "org.kde.kdeglobals.KDE";
constexpr const char* namespaces[]{everybody, gnome, gnomeAccess, kde, nullptr};

struct Unref {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Variant = std::unique_ptr<GVariant, Unref>;

/// Without the boxes that some portals put around a value twice.
Variant unboxed(Variant value) {
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) value.reset(g_variant_get_variant(value.get()));
    return value;
}

}  // namespace

struct SettingsPortal::State {
    /// What the portal said last, by namespace and key.
    using Values = std::map<std::pair<std::string, std::string>, Variant>;

    GVariant* find(const char* space, const char* key, const GVariantType* type) const {
        const auto hit = values.find({space, key});
        return hit != values.end() && g_variant_is_of_type(hit->second.get(), type) ? hit->second.get() : nullptr;
    }
    std::optional<std::uint32_t> number(const char* space, const char* key) const {
        GVariant* value = find(space, key, G_VARIANT_TYPE_UINT32);
        return value ? std::optional(g_variant_get_uint32(value)) : std::nullopt;
    }
    std::optional<bool> flag(const char* space, const char* key) const {
        GVariant* value = find(space, key, G_VARIANT_TYPE_BOOLEAN);
        return value ? std::optional(g_variant_get_boolean(value) != FALSE) : std::nullopt;
    }
    void store(GVariant* readAll);
    void clear() {
        values.clear();
        answered = false;
    }
    void readLater();

    static GVariant* question() { return g_variant_new("(^as)", namespaces); }
    static void hear(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*, gpointer);
    static void appeared(GDBusConnection*, const char*, const char*, gpointer);
    static void vanished(GDBusConnection*, const char*, gpointer);
    static void arrived(GObject* source, GAsyncResult* result, gpointer data);

    GDBusConnection* bus = nullptr;
    guint subscription = 0;
    guint watch = 0;
    std::function<void()> changed;
    Values values;
    bool answered = false;
    /// Answers that come after the object has gone find nothing here.
    std::shared_ptr<State*> self;
};

void SettingsPortal::State::store(GVariant* readAll) {
    values.clear();
    answered = true;
    GVariantIter* spaces = nullptr;
    g_variant_get(readAll, "(a{sa{sv}})", &spaces);
    const char* space = nullptr;
    GVariantIter* keys = nullptr;
    while (g_variant_iter_next(spaces, "{&sa{sv}}", &space, &keys)) {
        const char* key = nullptr;
        GVariant* value = nullptr;
        while (g_variant_iter_next(keys, "{&sv}", &key, &value)) values[{space, key}] = unboxed(Variant(value));
        g_variant_iter_free(keys);
    }
    g_variant_iter_free(spaces);
}

void SettingsPortal::State::hear(GDBusConnection*, const char*, const char*, const char*, const char*,
                                 GVariant* arguments, gpointer data) {
    if (!g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ssv)"))) return;
    auto& state = *static_cast<State*>(data);
    const char* space = nullptr;
    const char* key = nullptr;
    GVariant* value = nullptr;
    g_variant_get(arguments, "(&s&sv)", &space, &key, &value);
    state.values[{space, key}] = unboxed(Variant(value));
    state.changed();
}

void SettingsPortal::State::arrived(GObject* source, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<std::shared_ptr<State*>> self(static_cast<std::shared_ptr<State*>*>(data));
    const Variant answer(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
    if (!answer || !**self) return;
    (**self)->store(answer.get());
    (**self)->changed();
}

void SettingsPortal::State::readLater() {
    g_dbus_connection_call(bus, portal, portalPath, settingsInterface, "ReadAll", question(),
                           G_VARIANT_TYPE("(a{sa{sv}})"), G_DBUS_CALL_FLAGS_NONE, latePatience, nullptr,
                           &State::arrived, new std::shared_ptr<State*>(self));
}

void SettingsPortal::State::appeared(GDBusConnection*, const char*, const char*, gpointer data) {
    auto& state = *static_cast<State*>(data);
    if (!state.answered) state.readLater();
}

void SettingsPortal::State::vanished(GDBusConnection*, const char*, gpointer data) {
    auto& state = *static_cast<State*>(data);
    // What it said last stays true until another one says otherwise.
    state.answered = false;
}

std::unique_ptr<SettingsPortal> SettingsPortal::open(const std::string& address, std::function<void()> changed) {
    if (address.empty()) return nullptr;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection* bus = g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    if (!bus) return nullptr;
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    auto state = std::make_unique<State>();
    state->bus = bus;
    state->changed = std::move(changed);
    state->self = std::make_shared<State*>(state.get());
    // Changes are heard of from before the first reading on.
    state->subscription =
        g_dbus_connection_signal_subscribe(bus, portal, settingsInterface, "SettingChanged", portalPath, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, &State::hear, state.get(), nullptr);
    GError* failure = nullptr;
    const Variant answer(g_dbus_connection_call_sync(bus, portal, portalPath, settingsInterface, "ReadAll",
                                                     State::question(), G_VARIANT_TYPE("(a{sa{sv}})"),
                                                     G_DBUS_CALL_FLAGS_NONE, patience, nullptr, &failure));
    if (answer) state->store(answer.get());
    if (g_error_matches(failure, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) state->readLater();
    g_clear_error(&failure);
    state->watch = g_bus_watch_name_on_connection(bus, portal, G_BUS_NAME_WATCHER_FLAGS_NONE, &State::appeared,
                                                  &State::vanished, state.get(), nullptr);
    return std::unique_ptr<SettingsPortal>(new SettingsPortal(std::move(state)));
}

SettingsPortal::SettingsPortal(std::unique_ptr<State> state) : m_state(std::move(state)) {}

SettingsPortal::~SettingsPortal() {
    *m_state->self = nullptr;
    g_bus_unwatch_name(m_state->watch);
    g_dbus_connection_signal_unsubscribe(m_state->bus, m_state->subscription);
    g_dbus_connection_close_sync(m_state->bus, nullptr, nullptr);
    g_object_unref(m_state->bus);
}

bool SettingsPortal::answers() const { return m_state->answered; }

Look SettingsPortal::look() const {
    LookSettings settings;
    settings.colorScheme = m_state->number(everybody, "color-scheme");
    Look look = lookOf(settings);
    if (const auto contrast = m_state->number(everybody, "contrast")) look.highContrast = *contrast == 1;
    if (const auto motion = m_state->number(everybody, "reduced-motion")) look.reducedMotion = *motion == 1;
    return look;
}

Look SettingsPortal::desktopsOwn() const {
    LookSettings settings;
    settings.highContrast = m_state->flag(gnomeAccess, "high-contrast");
    settings.animations = m_state->flag(gnome, "enable-animations");
    if (GVariant* scale = m_state->find(gnome, "text-scaling-factor", G_VARIANT_TYPE_DOUBLE)) {
        settings.textScale = g_variant_get_double(scale);
    }
    if (GVariant* theme = m_state->find(gnome, "gtk-theme", G_VARIANT_TYPE_STRING)) {
        settings.theme = g_variant_get_string(theme, nullptr);
    }
    if (GVariant* factor = m_state->find(kde, "AnimationDurationFactor", G_VARIANT_TYPE_STRING)) {
        settings.animations = g_ascii_strtod(g_variant_get_string(factor, nullptr), nullptr) > 0;
    }
    return lookOf(settings);
}

}  // namespace ravik::platform
