#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runFeedback(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
