#include "Platform/Linux/ReadFile.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace ravik::platform {

std::optional<std::string> readFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return {};
    std::string bytes;
    char piece[4096];
    ssize_t got = 0;
    while ((got = read(file, piece, sizeof piece)) != 0) {
        if (got > 0) {
            bytes.append(piece, static_cast<std::size_t>(got));
        } else if (errno != EINTR) {
            break;
        }
    }
    close(file);
    if (got < 0) return {};
    return bytes;
}

}  // namespace ravik::platform
