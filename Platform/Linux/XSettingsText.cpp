#include "Platform/Linux/XSettingsText.h"

namespace ravik::platform {

namespace {

constexpr std::uint8_t whole = 0;
constexpr std::uint8_t text = 1;
constexpr std::uint8_t colour = 2;
constexpr double usualDpi = 96.0 * 1024;

/// Reads on from the front; after a read past the end everything is 0 and `failed`.
class Bytes {
public:
    explicit Bytes(std::string_view bytes) : m_rest(bytes) {}

    std::string_view take(std::size_t count) {
        if (count > m_rest.size()) {
            failed = true;
            m_rest = {};
            return {};
        }
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }
    std::uint32_t number(std::size_t size) {
        std::uint32_t value = 0;
        const std::string_view taken = take(size);
        for (std::size_t at = 0; at < taken.size(); ++at) {
            value = (value << 8) | static_cast<std::uint8_t>(taken[bigEndian ? at : taken.size() - 1 - at]);
        }
        return value;
    }
    /// A text is filled up to four bytes.
    std::string padded(std::size_t size) {
        std::string value(take(size));
        take((4 - size % 4) % 4);
        return value;
    }

    bool bigEndian = false;
    bool failed = false;

private:
    std::string_view m_rest;
};

std::optional<std::int32_t> numberOf(const XSettingsValues& values, const char* name) {
    const auto hit = values.find(name);
    if (hit == values.end() || !std::holds_alternative<std::int32_t>(hit->second)) return {};
    return std::get<std::int32_t>(hit->second);
}

}  // namespace

std::optional<XSettingsValues> parseXSettings(std::string_view bytes) {
    Bytes in(bytes);
    const std::uint32_t order = in.number(1);
    if (order > 1) return {};
    in.bigEndian = order == 1;
    in.take(3);
    in.take(4);  // the serial
    const std::uint32_t count = in.number(4);
    XSettingsValues values;
    for (std::uint32_t at = 0; at < count && !in.failed; ++at) {
        const std::uint32_t type = in.number(1);
        in.take(1);
        std::string name = in.padded(in.number(2));
        in.take(4);  // when it changed last
        if (type == whole) {
            values[std::move(name)] = static_cast<std::int32_t>(in.number(4));
        } else if (type == text) {
            values[std::move(name)] = in.padded(in.number(4));
        } else if (type == colour) {
            in.take(8);
        } else {
            return {};
        }
    }
    if (in.failed) return {};
    return values;
}

LookSettings lookSettings(const XSettingsValues& values) {
    LookSettings settings;
    if (const auto hit = values.find("Net/ThemeName"); hit != values.end()) {
        if (const auto* name = std::get_if<std::string>(&hit->second)) settings.theme = *name;
    }
    if (const auto animations = numberOf(values, "Gtk/EnableAnimations")) settings.animations = *animations != 0;
    // The other one is multiplied by the scale of the windows.
    const auto unscaled = numberOf(values, "Gdk/UnscaledDPI");
    const auto dpi = unscaled ? unscaled : numberOf(values, "Xft/DPI");
    if (dpi > 0) settings.textScale = *dpi / usualDpi;
    return settings;
}

}  // namespace ravik::platform
