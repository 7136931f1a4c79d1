#pragma once

#include <functional>

#include "Core/Ending/Asker.h"
#include "Core/Watch/Monitor.h"

namespace ravik::app {

/// What the windows show and ask of the program. All of it outlives them.
struct Program {
    Monitor& monitor;
    Asker& asker;
    /// Closes the panel as well.
    std::function<void()> openMain;
    std::function<void()> quit;
};

}  // namespace ravik::app
