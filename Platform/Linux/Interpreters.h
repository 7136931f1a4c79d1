#pragma once

#include <string_view>
#include <vector>

namespace ravik::platform {

/// True for the base name of a program that runs what its arguments name: "node", "python3.11", "bash", "electron25".
bool isInterpreter(std::string_view name);

/// The script that an interpreter runs, given its arguments; empty if it runs none, or one from its input or from
/// an argument's text.
std::string_view scriptOf(const std::vector<std::string_view>& arguments);

}  // namespace ravik::platform
