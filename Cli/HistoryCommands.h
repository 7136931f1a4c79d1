#pragma once

#include "Cli/Command.h"

/// The commands that read the log.
namespace ravik::cli {

/// The folder of --logs, else the program's own.
std::filesystem::path logFolder(const Context& context, const Arguments& arguments);

int runHistory(Context& context, const Arguments& arguments);
int runReport(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
