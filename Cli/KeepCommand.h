#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runKeepList(Context& context, const Arguments& arguments);
int runKeepAdd(Context& context, const Arguments& arguments);
int runKeepRemove(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
