#include "Platform/Linux/StandardStreams.h"

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace ravik::platform {

void secureStandardStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        // The lowest free number is this one: those before it are open by now.
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) open("/dev/null", O_RDWR);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace ravik::platform
