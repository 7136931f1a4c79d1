#include "App/Views/QmlViews.h"

#include <memory>
#include <utility>

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

#include "App/Views/ActivationToken.h"
#include "App/Views/MainView.h"
#include "App/Views/NoticeView.h"
#include "App/Views/PanelView.h"
#include "App/Views/Placing.h"

namespace ravik::app {

namespace {

/// From the loss of the focus, at the press, to the click that a tray tells of, at the release.
constexpr int clickLasts = 500;  // ms

/// Tells what the window system says of a window that it has on view: whether anything of it can be seen.
class Exposure : public QObject {
public:
    Exposure(QWindow& window, std::function<void(bool)> tell) : QObject(&window), m_tell(std::move(tell)) {
        window.installEventFilter(this);
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* window = qobject_cast<const QWindow*>(watched);
        if (event->type() == QEvent::Expose && window && window->isVisible()) m_tell(window->isExposed());
        return false;
    }

private:
    std::function<void(bool)> m_tell;
};

bool isWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

}  // namespace

QmlViews::QmlViews(const Program& program) : m_program(program) {
    QObject::connect(&m_frame, &QmlFrame::emptied, &m_frame, [this] {
        if (m_program.allClosed) m_program.allClosed();
    });
    QObject::connect(&m_questions, &Questions::asked, &m_frame, [this] {
        if (m_panel) m_panel->hide();
    });
    QObject::connect(&m_questions, &Questions::answered, &m_frame, [this] {
        if (m_panel) showPanel();
    });
}

QmlViews::~QmlViews() { end(); }

void QmlViews::openPanel(const QRect& icon) {
    if (m_panel) return;
    m_icon = icon;
    m_pointer = QCursor::pos();
    m_panel = m_frame.open("MenuBarPanel", std::make_unique<PanelView>(m_program));
    // There a client chooses no place for its window, so the user has to be able to.
    if (isWayland()) m_panel->setFlags(Qt::Dialog);
    auto* panel = m_panel;
    QObject::connect(panel, &QWindow::widthChanged, &m_frame, [this] { placePanel(); });
    QObject::connect(panel, &QWindow::heightChanged, &m_frame, [this] { placePanel(); });
    QObject::connect(panel, &QWindow::activeChanged, &m_frame, [this, panel] {
        if (panel == m_panel && !panel->isActive()) leavePanel();
    });
    QObject::connect(panel, &QWindow::visibleChanged, &m_frame, [this, panel](bool shown) {
        if (panel == m_panel && !shown && !m_questions.isStanding()) closePanel();
    });
    showPanel();
}

void QmlViews::showPanel() {
    placePanel();
    m_panel->show();
    m_panel->requestActivate();
}

void QmlViews::placePanel() {
    if (!m_panel) return;
    QScreen* screen = QGuiApplication::screenAt(m_icon.isEmpty() ? m_pointer : m_icon.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    if (!screen) return;
    m_panel->setScreen(screen);
    m_panel->setPosition(panelPlace(m_panel->size(), m_icon, m_pointer, screen->availableGeometry()));
}

void QmlViews::leavePanel() {
    if (m_questions.isStanding()) return;
    if (m_icon.isEmpty() || m_icon.contains(QCursor::pos())) m_left.start();
    closePanel();
}

void QmlViews::closePanel() {
    if (auto* panel = std::exchange(m_panel, nullptr)) m_frame.close(panel);
}

bool QmlViews::isPanelOpen() const { return m_panel != nullptr; }

bool QmlViews::hasPanelJustLeft() const { return m_left.isValid() && !m_left.hasExpired(clickLasts); }

bool QmlViews::raiseQuestion() {
    m_questions.raise();
    return m_questions.isStanding();
}

void QmlViews::openMain(const QByteArray& token) {
    const ActivationToken leave(token);
    if (!m_main) {
        m_main = m_frame.open("MainWindow", std::make_unique<MainView>(m_program));
        QObject::connect(m_main, &QWindow::visibilityChanged, &m_frame, [this](QWindow::Visibility visibility) {
            m_program.nav.setWindowShown(visibility != QWindow::Hidden && visibility != QWindow::Minimized);
            if (visibility != QWindow::Hidden || !m_main) return;
            closeMain();
            if (m_mainClosed) m_mainClosed();
        });
        new Exposure(*m_main, [this](bool exposed) { m_program.nav.setWindowShown(exposed); });
        m_main->show();
        m_program.nav.windowAppeared();
    }
    if (m_main->windowStates() & Qt::WindowMinimized) {
        m_main->setWindowStates(m_main->windowStates() & ~Qt::WindowMinimized);
    }
    m_main->raise();
    m_main->requestActivate();
}

void QmlViews::closeMain() {
    if (auto* window = std::exchange(m_main, nullptr)) m_frame.close(window);
}

bool QmlViews::isMainOpen() const { return m_main != nullptr; }

void QmlViews::tellUnseen() {
    closeNotice();
    m_notice = m_frame.open("NoticeWindow", std::make_unique<NoticeView>([this] { closeNotice(); }));
    QObject::connect(m_notice, &QWindow::visibleChanged, &m_frame, [this](bool shown) {
        if (!shown) closeNotice();
    });
    m_notice->show();
    m_notice->requestActivate();
}

void QmlViews::closeNotice() {
    if (auto* notice = std::exchange(m_notice, nullptr)) m_frame.close(notice);
}

void QmlViews::end() {
    closePanel();
    m_questions.end();
    closeNotice();
    closeMain();
}

void QmlViews::clear() {
    end();
    m_frame.clear();
}

Task<bool> QmlViews::ask(const Confirmation& question) { return m_questions.ask(question); }

bool QmlViews::isActive() { return QGuiApplication::applicationState() == Qt::ApplicationActive; }

}  // namespace ravik::app
