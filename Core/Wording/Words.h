#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"

/// The words around a finding: its button, its evidence, what Free leaves undone. Pure functions.
namespace ravik::Words {

/// What one free-everything action leaves to the user.
std::string gapLine(const Snapshot& snapshot);

/// The text of a card's button; absent where there is none.
std::optional<std::string> remedyLabel(const Finding& finding, const ProcessIndex& index);

/// The rows of the evidence sheet: label and value.
std::vector<std::pair<std::string, std::string>> evidence(const Finding& finding);

}  // namespace ravik::Words
