#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Appearance.h"

/// How the desktops' settings say how programs are to look. Pure, any thread.
namespace ravik::platform {

/// What one source tells, as it tells it. Absent: it does not.
struct LookSettings {
    /// 0 no preference, 1 dark, 2 light.
    std::optional<std::uint32_t> colorScheme;
    std::optional<bool> highContrast;
    std::optional<bool> animations;
    std::optional<double> textScale;
    /// Name of the theme, which tells of dark and of high contrast where nothing else does.
    std::optional<std::string> theme;
};

Look lookOf(const LookSettings& settings);

/// `first`, and what is absent there from `second`.
Look completed(Look first, const Look& second);

/// "Arc-Dark", "Yaru-purple-dark", "HighContrastInverse"; not "Arc-Darker", whose windows are light.
bool isDarkTheme(std::string_view name);
bool isHighContrastTheme(std::string_view name);

}  // namespace ravik::platform
