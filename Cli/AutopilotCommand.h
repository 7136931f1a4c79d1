#pragma once

#include "Cli/Command.h"

namespace ravik::cli {

/// The record of the Autopilot's choices, rule by rule.
int runAutopilot(Context& context, const Arguments& arguments);
/// Turns a rule on, if the record says that it may be.
int runAutopilotApprove(Context& context, const Arguments& arguments);
/// Turns a rule off, whatever the record says.
int runAutopilotWithdraw(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
