#pragma once

#include <string>

#include "Cli/Command.h"

/// What is made of the table of commands besides the parser.
namespace ravik::cli {

std::string overview();
std::string helpText(const Command& command);
/// roff, section 1.
std::string manPage();
/// Absent for a shell that is not bash, zsh or fish.
std::optional<std::string> completions(std::string_view shell);

int runHelp(Context& context, const Arguments& arguments);
int runVersion(Context& context, const Arguments& arguments);

}  // namespace ravik::cli
