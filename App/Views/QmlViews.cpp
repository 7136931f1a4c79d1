#include "App/Views/QmlViews.h"

#include <QCursor>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QScreen>
#include <QtDebug>

void qml_register_types_Ravik();

namespace ravik::app {

namespace {

constexpr int gap = 8;  // between the panel and the edge of the screen, or the icon

/// Where a panel of this size stands: at the icon, else in the pointer's corner; always whole on the screen.
QPoint place(const QSize& size, const QRect& icon) {
    const bool known = !icon.isEmpty();
    const QPoint near = known ? icon.center() : QCursor::pos();
    const QScreen* screen = QGuiApplication::screenAt(near);
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QRect free = screen->availableGeometry().adjusted(gap, gap, -gap, -gap);
    const bool low = near.y() > free.center().y();
    QPoint at;
    if (known) {
        at = {icon.center().x() - size.width() / 2, low ? icon.top() - size.height() - gap : icon.bottom() + gap};
    } else {
        at = {near.x() > free.center().x() ? free.right() - size.width() : free.left(),
              low ? free.bottom() - size.height() : free.top()};
    }
    return {qBound(free.left(), at.x(), qMax(free.left(), free.right() - size.width())),
            qBound(free.top(), at.y(), qMax(free.top(), free.bottom() - size.height()))};
}

}  // namespace

QmlViews::QmlViews(Program program) : m_program(std::move(program)) { qml_register_types_Ravik(); }

QmlViews::~QmlViews() {
    m_panel.reset();
    m_main.reset();
}

QQuickWindow* QmlViews::make(const char* component, QObject* model) {
    if (!m_engine) m_engine = std::make_unique<QQmlEngine>();
    QQmlComponent source(m_engine.get(), QUrl(QStringLiteral("qrc:/Ravik/%1.qml").arg(QLatin1String(component))));
    QVariantMap properties;
    if (model) properties.insert(QStringLiteral("model"), QVariant::fromValue(model));
    auto* window = qobject_cast<QQuickWindow*>(source.createWithInitialProperties(properties));
    if (!window) qFatal("%s", qPrintable(source.errorString()));
    return window;
}

void QmlViews::destroy(std::unique_ptr<QQuickWindow>& window) {
    if (!window) return;
    window.release()->deleteLater();
}

void QmlViews::openPanel(const QRect& icon) {
    if (m_panel) return;
    m_panel.reset(make("MenuBarPanel", nullptr));
    m_panel->setPosition(place(m_panel->size(), icon));
    m_panel->show();
    m_panel->requestActivate();
    QObject::connect(m_panel.get(), &QWindow::activeChanged, m_panel.get(), [this] {
        if (m_panel && !m_panel->isActive()) closePanel();
    });
}

void QmlViews::closePanel() { destroy(m_panel); }

bool QmlViews::isPanelOpen() const { return m_panel != nullptr; }

void QmlViews::openMain(const QByteArray& token) {
    if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token);
    if (!m_main) {
        m_main.reset(make("MainWindow", nullptr));
        QObject::connect(m_main.get(), &QWindow::visibleChanged, m_main.get(), [this](bool shown) {
            if (!shown) closeMain();
        });
        m_main->show();
    }
    m_main->raise();
    m_main->requestActivate();
}

void QmlViews::closeMain() { destroy(m_main); }

bool QmlViews::isMainOpen() const { return m_main != nullptr; }

Task<bool> QmlViews::ask(const Confirmation&) { co_return false; }

bool QmlViews::isActive() { return QGuiApplication::applicationState() == Qt::ApplicationActive; }

}  // namespace ravik::app
