#pragma once

#include "Platform/Platform.h"

namespace ravik::platform {

/// Zips by libarchive, which is loaded when the first one is asked for: it brings ten libraries along, and hardly any
/// run of the program packs anything.
class ZipArchive : public Archive {
public:
    /// Names are written as UTF-8, what is none in them replaced; entries stand in the order of their names. A file
    /// that cannot be read is a failure; one that grows meanwhile is packed as long as it was when it was opened.
    /// Pipes, sockets and devices are left out. The zip has mode 0600.
    std::optional<std::string> zip(const std::filesystem::path& folder, const std::filesystem::path& file,
                                   const std::function<bool()>& cancelled) override;
};

}  // namespace ravik::platform
