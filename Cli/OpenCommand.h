#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runOpen(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
