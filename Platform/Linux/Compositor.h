#pragma once

#include <string>

namespace ravik::platform {

/// Whether a compositing manager runs on this X display; true without a display.
bool isComposited(const std::string& display);

}  // namespace ravik::platform
