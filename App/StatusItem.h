#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <QMenu>
#include <QRect>
#include <QSystemTrayIcon>
#include <QTimer>

#include "Core/Host/Host.h"
#include "Core/Screens/Destination.h"
#include "Core/Screens/Glyph.h"

namespace ravik::app {

/// The program's place in the status area. Follows a status area that appears or goes while the program runs. Main
/// thread.
class StatusItem : public QObject {
    Q_OBJECT

public:
    /// `screens`: those that the menu goes to.
    StatusItem(const std::vector<Destination>& screens, const Host& host);
    ~StatusItem() override;

    /// False where the desktop has no status area, now.
    static bool isAvailable();
    /// Touches the item only if what it shows has changed.
    void render(const Glyph& glyph);
    /// Whether the status area is a dark one; without that it goes by the desktop's palette.
    void setDark(std::optional<bool> dark);
    /// Where it stands on the screen; empty where the tray does not tell.
    QRect place() const;

    /// How often something shown was changed.
    int updates() const { return m_updates; }
    QIcon icon() const { return m_item ? m_item->icon() : QIcon(); }
    QString toolTip() const { return m_item ? m_item->toolTip() : QString(); }
    QMenu& menu() { return m_menu; }

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void clicked();
    void openChosen();
    void screenChosen(Destination screen);
    /// The machine is to be read now.
    void readChosen();
    void quitChosen();

private:
    void fillMenu(const std::vector<Destination>& screens, const Host& host);
    /// An item in the status area that is there now; one made for another kind of area would stay unseen.
    void make();
    void look();
    void draw();

    QMenu m_menu;
    std::unique_ptr<QSystemTrayIcon> m_item;
    QTimer m_looking;
    bool m_wasAvailable = false;
    std::optional<Glyph> m_rendered;
    std::optional<bool> m_dark;
    int m_updates = 0;
};

}  // namespace ravik::app
