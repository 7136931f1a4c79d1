#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runEnd(Context& context, const Arguments& arguments);
int runFree(Context& context, const Arguments& arguments);
int runQuit(Context& context, const Arguments& arguments);
int runFix(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
