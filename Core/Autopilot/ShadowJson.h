#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

#include "Core/Screens/AutopilotScreen.h"

/// The Autopilot's record for the terminal: one JSON object, or text for people.
namespace ravik::ShadowJson {

nlohmann::json object(const ShadowRecord& record, const AutopilotScreen::Approved& approved);
std::string text(const ShadowRecord& record, const AutopilotScreen::Approved& approved, bool knowsFocus = true);

}  // namespace ravik::ShadowJson
