#pragma once

#include <string>
#include <string_view>

#include "Core/Wording/CardFace.h"

/// A finding in the user's words. Pure functions.
namespace ravik::Plain {

/// The reason that the gate gives for what the user keeps.
inline constexpr std::string_view keptReason = "on your Keep list — you asked Ravik to leave it running";

/// Trimmed, with a capital first and a full stop last where no other end mark stands.
std::string sentenceCase(std::string_view text);

/// Whom a card is about.
std::string name(const Finding& finding, const CardFace& face, const Host& host);

/// The one plain sentence of a card; empty for a cause that is not known.
std::string sentence(const Finding& finding, const CardFace& face, const Snapshot& snapshot, const Host& host);

}  // namespace ravik::Plain
