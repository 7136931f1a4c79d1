#pragma once

#include <functional>
#include <memory>
#include <string>

#include <QMenu>
#include <QRect>
#include <QSystemTrayIcon>

#include "Core/Screens/Glyph.h"

namespace ravik::app {

/// The program's place in the status area. Main thread.
class StatusItem : public QObject {
    Q_OBJECT

public:
    StatusItem();
    ~StatusItem() override;

    /// False where the desktop has no status area, now.
    static bool isAvailable();
    /// Touches the item only if what it shows has changed.
    void render(const Glyph& glyph);
    /// Where it stands on the screen; empty where the tray does not tell.
    QRect place() const;

    /// How often something shown was changed.
    int updates() const { return m_updates; }

Q_SIGNALS:
    void clicked();

private:
    QSystemTrayIcon m_item;
    std::string m_rendered;
    int m_updates = 0;
};

}  // namespace ravik::app
