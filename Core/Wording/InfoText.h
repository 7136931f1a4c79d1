#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Screens/Destination.h"
#include "Core/Watch/Snapshot.h"

/// The help pages: what each screen shows, in plain words.
namespace ravik::InfoText {

/// Title of a screen's page.
std::string title(Destination destination, const Host& host);

/// Heading and text of each section. `ram` in bytes.
std::vector<std::pair<std::string, std::string>> sections(Destination destination, const Snapshot& snapshot,
                                                          std::uint64_t ram, const Host& host);

// The page of a finding that has gone since it was asked for.
inline constexpr const char* goneTitle = "Already gone";
inline constexpr const char* goneText = "This one ended or changed since you opened it.";

}  // namespace ravik::InfoText
