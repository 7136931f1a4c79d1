#include "App/Views/QmlViews.h"

#include <memory>
#include <utility>

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "App/Views/MainView.h"
#include "App/Views/PanelView.h"
#include "App/Views/Placing.h"

namespace ravik::app {

QmlViews::QmlViews(const Program& program) : m_program(program) {}

QmlViews::~QmlViews() = default;

void QmlViews::openPanel(const QRect& icon) {
    if (m_panel) return;
    m_icon = icon;
    m_panel = m_frame.open("MenuBarPanel", std::make_unique<PanelView>(m_program));
    placePanel();
    QObject::connect(m_panel, &QWindow::widthChanged, m_panel, [this] { placePanel(); });
    QObject::connect(m_panel, &QWindow::heightChanged, m_panel, [this] { placePanel(); });
    QObject::connect(m_panel, &QWindow::activeChanged, m_panel, [this] {
        if (m_panel && !m_panel->isActive()) closePanel();
    });
    m_panel->show();
    m_panel->requestActivate();
}

void QmlViews::placePanel() {
    if (!m_panel) return;
    const QPoint pointer = QCursor::pos();
    const QScreen* screen = QGuiApplication::screenAt(m_icon.isEmpty() ? pointer : m_icon.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    m_panel->setPosition(panelPlace(m_panel->size(), m_icon, pointer, screen->availableGeometry()));
}

void QmlViews::closePanel() {
    if (auto* panel = std::exchange(m_panel, nullptr)) m_frame.close(panel);
}

bool QmlViews::isPanelOpen() const { return m_panel != nullptr; }

void QmlViews::openMain(const QByteArray& token) {
    if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token);
    if (!m_main) {
        m_main = m_frame.open("MainWindow", std::make_unique<MainView>(m_program));
        QObject::connect(m_main, &QWindow::visibleChanged, m_main, [this](bool shown) {
            if (!shown) closeMain();
        });
        m_main->show();
    }
    m_main->raise();
    m_main->requestActivate();
}

void QmlViews::closeMain() {
    if (auto* window = std::exchange(m_main, nullptr)) m_frame.close(window);
}

bool QmlViews::isMainOpen() const { return m_main != nullptr; }

Task<bool> QmlViews::ask(const Confirmation&) { co_return false; }

bool QmlViews::isActive() { return QGuiApplication::applicationState() == Qt::ApplicationActive; }

}  // namespace ravik::app
