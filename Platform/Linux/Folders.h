#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Platform/Platform.h"

namespace ravik::platform {

/// What the folders depend on, so that a test can stand in for the user.
struct Environment {
    /// Value of a variable; absent if it is not set.
    std::function<std::optional<std::string>(const char*)> variable;
    std::uint32_t uid = 0;
    /// The home folder that the user database tells, for want of a usable HOME.
    std::filesystem::path databaseHome;
    /// Bytes of a file; absent if it cannot be read.
    std::function<std::optional<std::string>(const std::filesystem::path&)> read;
};

/// This process's own.
Environment processEnvironment();

/// Where things lie by the XDG base directory rules. A variable that is empty or holds a relative path counts as
/// absent. Makes no folder and asks for none.
Folders linuxFolders(const Environment& environment);

/// The value of one line of user-dirs.dirs, an absolute path; absent if the file does not name it or names one that
/// is neither absolute nor below $HOME.
std::optional<std::filesystem::path> userFolder(std::string_view userDirs, std::string_view name,
                                                const std::filesystem::path& home);

}  // namespace ravik::platform
