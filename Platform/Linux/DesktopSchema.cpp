#include <gio/gio.h>

#include "Platform/Linux/LookSource.h"

namespace ravik::platform {

namespace {

constexpr const char* interfaceSchema = "org.gnome.desktop.interface";
constexpr const char* accessSchema = "org.gnome.desktop.a11y.interface";

struct Unref {
    void operator()(GVariant* value) const { g_variant_unref(value); }
};
using Variant = std::unique_ptr<GVariant, Unref>;

/// One schema as far as it is installed: asking for a schema or a key that is not ends the program.
class Settings {
public:
    Settings(const char* name, const std::function<void()>& changed) : m_changed(changed) {
        GSettingsSchemaSource* source = g_settings_schema_source_get_default();
        m_schema = source ? g_settings_schema_source_lookup(source, name, TRUE) : nullptr;
        if (!m_schema) return;
        m_settings = g_settings_new_full(m_schema, nullptr, nullptr);
        m_handler = g_signal_connect(m_settings, "changed", G_CALLBACK(&Settings::hear), this);
        // Changes of what has never been read are not told.
        for (const char* key :
             {"color-scheme", "gtk-theme", "enable-animations", "text-scaling-factor", "high-contrast"}) {
            get(key, G_VARIANT_TYPE_ANY);
        }
    }
    ~Settings() {
        if (m_settings) g_signal_handler_disconnect(m_settings, m_handler);
        g_clear_object(&m_settings);
        if (m_schema) g_settings_schema_unref(m_schema);
    }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    bool isInstalled() const { return m_schema != nullptr; }
    Variant get(const char* key, const GVariantType* type) const {
        if (!m_schema || !g_settings_schema_has_key(m_schema, key)) return {};
        Variant value(g_settings_get_value(m_settings, key));
        if (!g_variant_is_of_type(value.get(), type)) value.reset();
        return value;
    }
    std::optional<std::string> text(const char* key) const {
        const Variant value = get(key, G_VARIANT_TYPE_STRING);
        if (!value) return {};
        return g_variant_get_string(value.get(), nullptr);
    }
    std::optional<bool> flag(const char* key) const {
        const Variant value = get(key, G_VARIANT_TYPE_BOOLEAN);
        if (!value) return {};
        return g_variant_get_boolean(value.get()) != FALSE;
    }

private:
    static void hear(GSettings*, const char*, gpointer data) { static_cast<Settings*>(data)->m_changed(); }

    std::function<void()> m_changed;
    GSettingsSchema* m_schema = nullptr;
    GSettings* m_settings = nullptr;
    gulong m_handler = 0;
};

class DesktopSchema : public LookSource {
public:
    explicit DesktopSchema(const std::function<void()>& changed)
        : m_interface(interfaceSchema, changed), m_access(accessSchema, changed) {}

    bool isInstalled() const { return m_interface.isInstalled(); }

    Look look() const override {
        LookSettings settings;
        const auto scheme = m_interface.text("color-scheme");
        if (scheme == "prefer-dark") settings.colorScheme = 1;
        if (scheme == "prefer-light") settings.colorScheme = 2;
        settings.theme = m_interface.text("gtk-theme");
        settings.animations = m_interface.flag("enable-animations");
        if (const Variant scale = m_interface.get("text-scaling-factor", G_VARIANT_TYPE_DOUBLE)) {
            settings.textScale = g_variant_get_double(scale.get());
        }
        settings.highContrast = m_access.flag("high-contrast");
        return lookOf(settings);
    }

private:
    Settings m_interface;
    Settings m_access;
};

}  // namespace

std::unique_ptr<LookSource> openDesktopSchema(std::function<void()> changed) {
    auto schema = std::make_unique<DesktopSchema>(std::move(changed));
    if (!schema->isInstalled()) return nullptr;
    return schema;
}

}  // namespace ravik::platform
