#pragma once

#include <memory>
#include <string>

#include "Platform/Linux/LookSource.h"

namespace ravik::platform {

struct AppearanceOptions {
    /// Of the session bus; empty: there is none.
    std::string bus;
    /// The X display; empty where the desktop is none of X, whose settings are then not asked: that would start an X
    /// server on some.
    std::string display;
};

/// The settings portal, the X settings and GNOME's own store, each for what the ones before it leave open. Nothing is
/// connected before the first question. Main loop.
class DesktopAppearance : public Appearance {
public:
    explicit DesktopAppearance(AppearanceOptions options);

    Look look() override;
    void onChange(std::function<void(const Look&)> observer) override;

private:
    void connect();
    Look gathered() const;
    void changed();

    AppearanceOptions m_options;
    bool m_connected = false;
    Look m_look;
    std::function<void(const Look&)> m_observer;
    std::unique_ptr<SettingsPortal> m_portal;
    std::unique_ptr<LookSource> m_xSettings;
    std::unique_ptr<LookSource> m_schema;
};

}  // namespace ravik::platform
