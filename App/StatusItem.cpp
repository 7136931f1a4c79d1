#include "App/StatusItem.h"

#include "App/GlyphIcon.h"

namespace ravik::app {

StatusItem::StatusItem() {
    connect(&m_item, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        // The second of two quick clicks comes as a double click, and not as a click besides.
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick ||
            reason == QSystemTrayIcon::MiddleClick)
            Q_EMIT clicked();
    });
}

StatusItem::~StatusItem() = default;

bool StatusItem::isAvailable() { return QSystemTrayIcon::isSystemTrayAvailable(); }

void StatusItem::render(const Glyph& glyph) {
    const std::string key = glyph.key();
    if (m_rendered == key) return;
    m_rendered = key;
    ++m_updates;
    m_item.setIcon(glyphIcon(glyph));
    m_item.setToolTip(QString::fromStdString(glyph.label));
    if (!m_item.isVisible()) m_item.show();
}

QRect StatusItem::place() const { return m_item.geometry(); }

}  // namespace ravik::app
