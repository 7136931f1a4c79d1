#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <QObject>
#include <QQmlEngine>
#include <QQuickWindow>

namespace ravik::app {

/// The Qt Quick windows and the engine beneath them, which is made with the first window and stays: it is half of what
/// an opening costs, and small. Main thread.
class QmlFrame : public QObject {
    Q_OBJECT

public:
    QmlFrame();
    ~QmlFrame() override;

    /// The window of that QML file, not shown yet. Its required property `model` is `model`, which lives a little
    /// longer than the window.
    QQuickWindow* open(const char* file, std::unique_ptr<QObject> model);
    /// Hides the window at once; it is freed with its model when the loop turns, since it may be its own button that
    /// asks for it. To its owner it is gone.
    void close(QQuickWindow* window);

    /// Frees all windows now, and the engine: what they read is about to go.
    void clear();

    bool isEmpty() const { return m_windows.empty(); }
    bool hasEngine() const { return m_engine != nullptr; }

Q_SIGNALS:
    /// The last window has been freed.
    void emptied();

private:
    struct Opened {
        std::unique_ptr<QObject> model;
        std::unique_ptr<QQuickWindow> window;
        bool isLeaving = false;
    };

    void sweep();

    std::unique_ptr<QQmlEngine> m_engine;
    std::vector<Opened> m_windows;
};

}  // namespace ravik::app
