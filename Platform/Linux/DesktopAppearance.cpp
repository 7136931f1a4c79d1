#include "Platform/Linux/DesktopAppearance.h"

#include <utility>

namespace ravik::platform {

DesktopAppearance::DesktopAppearance(AppearanceOptions options) : m_options(std::move(options)) {}

Look DesktopAppearance::look() {
    connect();
    return m_look;
}

void DesktopAppearance::onChange(std::function<void(const Look&)> observer) {
    m_observer = std::move(observer);
    if (m_observer) connect();
}

void DesktopAppearance::connect() {
    if (std::exchange(m_connected, true)) return;
    const auto changes = [this] { changed(); };
    m_portal = SettingsPortal::open(m_options.bus, changes);
    if (!m_options.display.empty()) m_xSettings = openXSettings(m_options.display, changes);
    // The portal reads the same store. Without a bus the store would start one.
    if (m_portal && !m_portal->answers()) m_schema = openDesktopSchema(changes);
    m_look = gathered();
}

Look DesktopAppearance::gathered() const {
    Look look;
    if (m_portal) look = m_portal->look();
    if (m_xSettings) look = completed(look, m_xSettings->look());
    if (m_portal) look = completed(look, m_portal->desktopsOwn());
    if (m_schema) look = completed(look, m_schema->look());
    return look;
}

void DesktopAppearance::changed() {
    const Look look = gathered();
    if (look == m_look) return;
    m_look = look;
    if (const auto observer = m_observer) observer(m_look);
}

}  // namespace ravik::platform
