#pragma once

#include <functional>
#include <string>
#include <vector>

#include "Tests/Stage/Stage.h"

namespace ravik::pictures {

/// How somebody has the desktop.
struct Look {
    /// Of the picture's name: "-dark"; empty for the usual one.
    std::string suffix;
    bool isDark = false;
    double textScale = 1;
    bool isRightToLeft = false;
};

/// One picture: the machine, and what is done until it shows what it is to show.
struct Scene {
    std::string name;
    std::function<void(fakes::FakeMachine&)> furnish;
    std::function<void(stage::Stage&)> play;
    std::vector<Look> looks;
};

const std::vector<Scene>& scenes();

/// Sets the application up so. Before its first window.
void take(const Look& look);

}  // namespace ravik::pictures
