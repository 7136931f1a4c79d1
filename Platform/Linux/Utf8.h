#pragma once

#include <string>
#include <string_view>

namespace ravik::platform {

/// The text with each ill-formed part replaced by one U+FFFD, a cut-off or overlong sequence counting as the Unicode
/// standard recommends (maximal subparts). Well-formed text comes back as it is.
std::string repairedUtf8(std::string_view bytes);

}  // namespace ravik::platform
