#pragma once

#include "Cli/Command.h"
#include "Core/Watch/Snapshot.h"

namespace ravik::cli {

/// "12:34:56  memory free 45 % · swap 1.2 GB · ..."
std::string statusLine(const Snapshot& snapshot, bool colour);

int runWatch(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
