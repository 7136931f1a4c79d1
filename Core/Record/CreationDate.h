#pragma once

#include <filesystem>
#include <optional>

#include "Core/Base/Time.h"

namespace ravik {

/// When this file or folder was made, links not followed; absent where the file system does not keep it.
std::optional<Time> creationDate(const std::filesystem::path& path);

}  // namespace ravik
