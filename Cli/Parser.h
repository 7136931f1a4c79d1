#pragma once

#include <string>
#include <vector>

#include "Cli/Command.h"

namespace ravik::cli {

/// Understands the words behind `ravik` and runs the command they name; its exit status. Wrong words give one line
/// on `context.err` that says what is expected.
int dispatch(Context& context, const std::vector<std::string>& words);

}  // namespace ravik::cli
