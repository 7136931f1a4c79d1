#pragma once

#include <memory>

#include <QObject>

#include "App/StatusItem.h"
#include "App/Views/QmlViews.h"
#include "Core/Base/Subscription.h"
#include "Core/Watch/Monitor.h"
#include "Platform/Computer.h"

namespace ravik::app {

/// The centre of the desktop app: owns what lives as long as the program, the status item and the windows, and joins
/// them. Main thread.
class StatusBarController : public QObject {
    Q_OBJECT

public:
    /// All outlive the controller.
    StatusBarController(Computer& computer, Log& log, const Host& host);
    ~StatusBarController() override;

    /// Everything that happens at launch. False if another instance runs, which has been brought to the front.
    bool launch();
    void toggle();
    void openMain(const QByteArray& token = {});
    /// Before the program ends: nothing stays paused or demoted.
    void terminate();

private:
    void render();
    void readEnvironment();
    void answer(const std::string& action);

    Computer& m_computer;
    Log& m_log;
    const bool m_underTest;
    Monitor m_monitor;
    QmlViews m_views;
    const Program m_program;
    StatusItem m_item;
    Subscription m_observing;
};

}  // namespace ravik::app
