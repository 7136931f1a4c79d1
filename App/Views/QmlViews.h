#pragma once

#include <functional>

#include <QElapsedTimer>
#include <QPoint>
#include <QRect>

#include "App/Views/Program.h"
#include "App/Views/QmlFrame.h"
#include "App/Views/Questions.h"
#include "App/Views/Views.h"

namespace ravik::app {

/// The windows in Qt Quick.
class QmlViews final : public Views {
public:
    /// `program` may still be incomplete; it is read when a window opens.
    explicit QmlViews(const Program& program);
    ~QmlViews() override;

    Task<bool> ask(const Confirmation& question) override;
    bool isActive() override;

    void openPanel(const QRect& icon) override;
    void closePanel() override;
    bool isPanelOpen() const override;
    bool hasPanelJustLeft() const override;
    bool raiseQuestion() override;
    void openMain(const QByteArray& token) override;
    void closeMain() override;
    bool isMainOpen() const override;
    void tellUnseen() override;
    void onMainClosed(std::function<void()> observer) override { m_mainClosed = std::move(observer); }
    void end() override;
    /// No window is open, nor closed and not freed yet.
    bool isEmpty() const { return m_frame.isEmpty(); }
    /// Frees every window now.
    void clear();

private:
    void showPanel();
    void placePanel();
    void leavePanel();
    void closeNotice();

    const Program& m_program;
    QmlFrame m_frame;
    Questions m_questions{m_frame, m_program};
    QRect m_icon;
    QPoint m_pointer;
    QElapsedTimer m_left;
    /// Freed by the frame.
    QQuickWindow* m_panel = nullptr;
    QQuickWindow* m_main = nullptr;
    QQuickWindow* m_notice = nullptr;
    std::function<void()> m_mainClosed;
};

}  // namespace ravik::app
