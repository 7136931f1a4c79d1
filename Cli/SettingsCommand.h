#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runSettings(Context& context, const Arguments& arguments);
int runSettingsSet(Context& context, const Arguments& arguments);
int runSettingsReset(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
