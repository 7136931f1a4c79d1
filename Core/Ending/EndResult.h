#pragma once

#include <string>
#include <variant>

#include "Core/Base/Pids.h"

namespace ravik {

/// The gate said never, the process is another user's, or there was nothing to run. Nothing was signalled.
struct Refused {
    std::string reason;
    friend bool operator==(const Refused&, const Refused&) = default;
};
/// The gate said caution and nobody had confirmed it. Nothing was signalled.
struct NeedsConfirmation {
    std::string caution;
    friend bool operator==(const NeedsConfirmation&, const NeedsConfirmation&) = default;
};
/// Signals went out. No survivors is full success.
struct Ended {
    Pids survivors;
    friend bool operator==(const Ended&, const Ended&) = default;
};

using EndResult = std::variant<Refused, NeedsConfirmation, Ended>;

/// The text of a refusal or a caution; empty for Ended.
inline std::string text(const EndResult& result) {
    if (const auto* refused = std::get_if<Refused>(&result)) return refused->reason;
    if (const auto* needs = std::get_if<NeedsConfirmation>(&result)) return needs->caution;
    return {};
}

}  // namespace ravik
