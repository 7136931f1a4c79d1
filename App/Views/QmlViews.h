#pragma once

#include <functional>
#include <memory>

#include <QPointer>
#include <QQmlEngine>
#include <QQuickWindow>

#include "App/Views/Views.h"
#include "Core/Watch/Monitor.h"

namespace ravik::app {

/// The windows in Qt Quick. The engine lives from the first window's opening to the last one's closing.
class QmlViews : public Views {
public:
    /// What the windows ask of the program. All outlive the views.
    struct Program {
        Monitor& monitor;
        std::function<void()> quit;
    };

    explicit QmlViews(Program program);
    ~QmlViews() override;

    Task<bool> ask(const Confirmation& question) override;
    bool isActive() override;

    void openPanel(const QRect& icon) override;
    void closePanel() override;
    bool isPanelOpen() const override;
    void openMain(const QByteArray& token) override;
    void closeMain() override;
    bool isMainOpen() const override;

private:
    QQuickWindow* make(const char* component, QObject* model);
    /// Frees the window and its model, and the engine with the last of them.
    void destroy(std::unique_ptr<QQuickWindow>& window);

    Program m_program;
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QQuickWindow> m_panel;
    std::unique_ptr<QQuickWindow> m_main;
};

}  // namespace ravik::app
