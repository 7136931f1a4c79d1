#pragma once

#include <functional>

#include <QUrl>

#include "Core/Ending/Asker.h"
#include "Core/Screens/DiskModel.h"
#include "Core/Screens/HistoryModel.h"
#include "Core/Screens/Nav.h"
#include "Core/Watch/Monitor.h"
#include "Core/Wording/AppIcons.h"

namespace ravik::app {

/// What the windows show and ask of the program. All of it outlives them.
struct Program {
    Monitor& monitor;
    Nav& nav;
    DiskModel& disk;
    HistoryModel& history;
    AppIcons::Cache& icons;
    Asker& asker;
    /// Closes the panel as well.
    std::function<void()> openMain;
    std::function<void()> quit;

    /// The application's icon; empty: draw the symbol.
    QUrl icon(const IconRef& icon) const;
};

}  // namespace ravik::app
