#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "Platform/Linux/LookRules.h"

/// The property by which an X desktop hands its settings to programs. Pure, any thread.
namespace ravik::platform {

/// Whole numbers and texts by their names; colours are left out.
using XSettingsValues = std::map<std::string, std::variant<std::int32_t, std::string>>;

/// Absent where the bytes are no such property, or it is cut off.
std::optional<XSettingsValues> parseXSettings(std::string_view bytes);

LookSettings lookSettings(const XSettingsValues& values);

}  // namespace ravik::platform
