#pragma once

#include <functional>

#include "Core/Ending/Actions.h"
#include "Core/Ending/Asker.h"
#include "Core/Screens/DiskModel.h"
#include "Core/Screens/HistoryModel.h"
#include "Core/Screens/Nav.h"
#include "Core/Screens/PanelModel.h"
#include "Core/Watch/Monitor.h"

namespace ravik::app {

/// What the windows show and ask of the program. All of it outlives them.
struct Program {
    Monitor& monitor;
    Nav& nav;
    Actions& actions;
    DiskModel& disk;
    HistoryModel& history;
    Asker& asker;
    PanelModel::SendFeedback sendFeedback;
    /// Closes the panel as well.
    std::function<void()> openMain;
    std::function<void()> quit;
    /// The last window has been freed.
    std::function<void()> allClosed;
};

}  // namespace ravik::app
