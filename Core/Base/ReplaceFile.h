#pragma once

#include <filesystem>
#include <string_view>

namespace ravik {

/// Puts `bytes` in the place of `file`, whole: a reader at any moment, and after a crash, finds the old content or the
/// new. False, and the old file untouched, where that cannot be done. Mode 0600. Any thread, any number of
/// processes at once.
bool replaceFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace ravik
