#pragma once

#include "Cli/Command.h"

/// The commands that read the machine, or a capture of one, and show it.
namespace ravik::cli {

int runDiagnose(Context& context, const Arguments& arguments);
int runApps(Context& context, const Arguments& arguments);
int runPs(Context& context, const Arguments& arguments);
int runSessions(Context& context, const Arguments& arguments);
int runReplay(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
