#pragma once

#include <memory>

#include "Cli/Command.h"
#include "Core/Watch/Monitor.h"

namespace ravik::cli {

/// Reads the machine twice, a second apart, so that there are CPU figures; the second reading is published.
std::unique_ptr<Monitor> readTwice(Context& context);

/// Seconds behind which a figure in percent has a meaning.
inline constexpr double betweenReadings = 1.0;

}  // namespace ravik::cli
