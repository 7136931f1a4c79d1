#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

int runDisk(Context& context, const Arguments& arguments);
int runDiskTrash(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
