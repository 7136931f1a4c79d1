#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ravik::platform {

/// The text with systemd's "\xHH" put back into bytes. What is no such sequence stays as it is.
std::string unescapeUnit(std::string_view text);

/// Ids of the desktop entry (without ".desktop") that a unit's name can stand for, the likeliest first; none if it
/// is no application's. Takes `app[-LAUNCHER]-ID-RANDOM.scope`, `app-[LAUNCHER-]ID[@RANDOM].service` and
/// `snap.PKG.APP-UUID.scope`. Pure, any thread.
std::vector<std::string> applicationIds(std::string_view unit);

}  // namespace ravik::platform
