#pragma once

#include "Platform/Platform.h"

namespace ravik::platform {

/// The desktop's Trash. What cannot go there stays where it is.
class FileTrash : public Trash {
public:
    std::optional<std::string> move(const std::filesystem::path& path) override;
};

}  // namespace ravik::platform
