#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runLog(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
