#include "App/Views/QmlFrame.h"

#include <algorithm>

#include <QQmlComponent>
#include <QScreen>
#include <QtDebug>

void qml_register_types_Ravik();  // NOLINT(readability-identifier-naming): generated

namespace ravik::app {

QmlFrame::QmlFrame() { qml_register_types_Ravik(); }

QmlFrame::~QmlFrame() { m_windows.clear(); }

QQuickWindow* QmlFrame::open(const char* file, std::unique_ptr<QObject> model) {
    if (!m_engine) m_engine = std::make_unique<QQmlEngine>();
    QQmlComponent source(m_engine.get(), QUrl(QStringLiteral("qrc:/Ravik/%1.qml").arg(QLatin1String(file))));
    QVariantMap properties;
    if (model) {
        QQmlEngine::setObjectOwnership(model.get(), QQmlEngine::CppOwnership);
        properties.insert(QStringLiteral("model"), QVariant::fromValue(model.get()));
    }
    if (!source.isReady()) qFatal("%s", qPrintable(source.errorString()));
    auto* window = qobject_cast<QQuickWindow*>(source.createWithInitialProperties(properties));
    if (!window) qFatal("%s", qPrintable(source.errorString()));
    m_windows.push_back({std::move(model), std::unique_ptr<QQuickWindow>(window)});
    // Where the screen's resolution becomes another, Qt draws by it at once but lays the window out as before.
    connect(window->screen(), &QScreen::logicalDotsPerInchChanged, window, [window] {
        const QSize size = window->size();
        window->resize(size + QSize(1, 1));
        window->resize(size);
    });
    return window;
}

void QmlFrame::close(QQuickWindow* window) {
    const auto hit = std::ranges::find(m_windows, window, [](const Opened& opened) { return opened.window.get(); });
    if (hit == m_windows.end() || hit->isLeaving) return;
    hit->isLeaving = true;
    window->hide();
    QMetaObject::invokeMethod(this, &QmlFrame::sweep, Qt::QueuedConnection);
}

void QmlFrame::clear() {
    m_windows.clear();
    m_engine.reset();
}

void QmlFrame::sweep() {
    // Freeing a window may close another.
    std::vector<Opened> leaving;
    const auto rest = std::ranges::stable_partition(m_windows, [](const Opened& opened) { return !opened.isLeaving; });
    std::ranges::move(rest, std::back_inserter(leaving));
    m_windows.erase(rest.begin(), rest.end());
    for (auto& opened : leaving) {
        opened.window.reset();
        opened.model.reset();
    }
    if (!leaving.empty() && m_windows.empty()) Q_EMIT emptied();
}

}  // namespace ravik::app
