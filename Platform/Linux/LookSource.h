#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Platform/Linux/LookRules.h"

namespace ravik::platform {

/// One place where a desktop keeps how programs are to look. Main loop; calls back on GLib's default main context.
class LookSource {
public:
    virtual ~LookSource() = default;
    virtual Look look() const = 0;
};

/// The settings portal on the session bus at this address. Waits half a second for its first answer; one that comes
/// later, or a portal that comes later, counts as a change. Null without a bus.
class SettingsPortal : public LookSource {
public:
    static std::unique_ptr<SettingsPortal> open(const std::string& address, std::function<void()> changed);
    ~SettingsPortal() override;
    SettingsPortal(const SettingsPortal&) = delete;
    SettingsPortal& operator=(const SettingsPortal&) = delete;

    /// What the desktop says to all programs; the rest is what GNOME's and KDE's own programs are told.
    Look look() const override;
    Look desktopsOwn() const;
    /// False while there is no portal.
    bool answers() const;

private:
    struct State;
    explicit SettingsPortal(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// The XSETTINGS manager of an X display, also one that comes later. Null without the display.
std::unique_ptr<LookSource> openXSettings(const std::string& display, std::function<void()> changed);

/// GNOME's settings in the user's own store. Null where their schema is not installed.
std::unique_ptr<LookSource> openDesktopSchema(std::function<void()> changed);

}  // namespace ravik::platform
