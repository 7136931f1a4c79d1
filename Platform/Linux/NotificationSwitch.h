#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace ravik::platform {

/// Whether the desktop's own switch has this application's notifications off. Empty: the desktop has none.
using NotificationSwitch = std::function<bool()>;

/// The switch of the desktop that XDG_CURRENT_DESKTOP names: GNOME's settings, KDE's plasmanotifyrc in `config`.
NotificationSwitch notificationSwitch(std::string_view currentDesktop, const std::filesystem::path& config);

/// What a plasmanotifyrc says. Pure.
bool isOffInPlasma(std::string_view file);

}  // namespace ravik::platform
