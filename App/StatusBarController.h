#pragma once

#include <QObject>

#include "App/StatusItem.h"
#include "App/Views/QmlViews.h"
#include "Core/Base/Subscription.h"
#include "Core/Ending/Actions.h"
#include "Core/Screens/DiskModel.h"
#include "Core/Screens/HistoryModel.h"
#include "Core/Screens/Nav.h"
#include "Core/Watch/Monitor.h"
#include "Platform/Appearance.h"
#include "Platform/Computer.h"
#include "Platform/DesktopApp.h"

namespace ravik::app {

/// The centre of the desktop app: owns what lives as long as the program, the status item and the windows, and joins
/// them. Main thread.
class StatusBarController : public QObject {
    Q_OBJECT

public:
    /// All outlive the controller.
    StatusBarController(Computer& computer, Log& log, const Host& host);
    ~StatusBarController() override;

    /// Everything that happens at launch; `asked` is what this start was to show. False if another instance runs, which
    /// has been brought to the front.
    bool launch(const Activation& asked = {});
    /// Ends the program, after a fix that is under way; called again, at once.
    void quit();
    /// The panel, open or closed; while a question stands, the question.
    void toggle();
    void openMain(const QByteArray& token = {});
    /// Before the program ends: nothing stays asked, paused or demoted. Once.
    void terminate();
    /// The part of terminate() that nothing may pass by: what is left to do where the program ends by exit() and no
    /// window can be touched any more.
    void letGo();

    Monitor& monitor() { return m_monitor; }
    Nav& nav() { return m_nav; }
    StatusItem& item() { return m_item; }
    Views& views() { return m_views; }

private:
    void connectItem();
    void render();
    /// Once the first reading is there: what only the start needed is given back.
    void settle();
    /// What closed windows have left is given back a while after the last has closed, unless one is open by then.
    void releaseLater();
    void release();
    void readEnvironment();
    void answer(const std::string& action);
    void go(Destination screen, const QByteArray& token = {});
    /// Where there is no status area, the program shows itself in its window.
    void openWithoutTray();
    Task<std::string> sendFeedback();
    /// Says it once where nothing of the program can be seen any more.
    void mainClosed();
    /// As the desktop wants programs to look.
    void wear(const Look& look);
    void activate(const Activation& asked);

    Computer& m_computer;
    Log& m_log;
    const bool m_underTest;
    Monitor m_monitor;
    Nav m_nav;
    HistoryModel m_history;
    QmlViews m_views;
    DiskModel m_disk;
    Actions m_actions;
    const Program m_program;
    StatusItem m_item;
    Subscription m_observing;
    Subscription m_fixing;
    /// Of whoever started the program, for a window that opens because of that.
    QByteArray m_startToken;
    MainLoop::Timer m_releasing = 0;
    bool m_hasSettled = false;
    bool m_hasEnded = false;
    bool m_hasToldUnseen = false;
};

}  // namespace ravik::app
