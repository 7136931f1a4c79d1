#include "Platform/Linux/LookRules.h"

#include <algorithm>

namespace ravik::platform {

namespace {

constexpr std::uint32_t prefersDark = 1;
constexpr std::uint32_t prefersLight = 2;
constexpr double smallestText = 0.5;
constexpr double largestText = 4;

std::string lowered(std::string_view text) {
    std::string out(text);
    for (char& byte : out) {
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
    }
    return out;
}

}  // namespace

bool isDarkTheme(std::string_view name) {
    if (name.ends_with("Dark")) return true;
    const std::string text = lowered(name);
    if (text.ends_with("inverse")) return true;
    constexpr std::string_view between = "-_ :.";
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(between, start), text.size());
        if (std::string_view(text).substr(start, end - start) == "dark") return true;
        start = end + 1;
    }
    return false;
}

bool isHighContrastTheme(std::string_view name) {
    const std::string text = lowered(name);
    return text.find("highcontrast") != std::string::npos || text.find("contrasthigh") != std::string::npos;
}

Look lookOf(const LookSettings& settings) {
    Look look;
    // A theme without "dark" in its name may be dark all the same.
    if (settings.theme && isDarkTheme(*settings.theme)) look.scheme = ColorScheme::dark;
    if (settings.colorScheme == prefersDark) look.scheme = ColorScheme::dark;
    if (settings.colorScheme == prefersLight) look.scheme = ColorScheme::light;
    look.highContrast = settings.highContrast;
    if (settings.theme) look.highContrast = look.highContrast.value_or(false) || isHighContrastTheme(*settings.theme);
    if (settings.animations) look.reducedMotion = !*settings.animations;
    if (settings.textScale > 0) look.textScale = std::clamp(*settings.textScale, smallestText, largestText);
    return look;
}

Look completed(Look first, const Look& second) {
    if (!first.scheme) first.scheme = second.scheme;
    if (!first.highContrast) first.highContrast = second.highContrast;
    if (!first.reducedMotion) first.reducedMotion = second.reducedMotion;
    if (!first.textScale) first.textScale = second.textScale;
    return first;
}

}  // namespace ravik::platform
