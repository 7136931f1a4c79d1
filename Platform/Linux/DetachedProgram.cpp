#include "Platform/Linux/DetachedProgram.h"

#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/Descriptor.h"

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

constexpr int lookOn = 300;  // milliseconds

bool canRun(const fs::path& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 && S_ISREG(found.st_mode) && access(path.c_str(), X_OK) == 0;
}

/// A session of its own, no signal blocked or ignored, no file of ours.
class Detachment {
public:
    explicit Detachment(const fs::path& at) {
        posix_spawnattr_init(&attributes);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
        if (access(at.c_str(), X_OK) == 0) posix_spawn_file_actions_addchdir_np(&files, at.c_str());
    }
    ~Detachment() {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    Detachment(const Detachment&) = delete;
    Detachment& operator=(const Detachment&) = delete;

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t files;
};

std::optional<std::string> earlyEnd(pid_t child) {
    const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    pollfd ended{process.get(), POLLIN, 0};
    if (process) poll(&ended, 1, lookOn);
    int status = 0;
    if (waitpid(child, &status, WNOHANG) != child) return {};
    if (WIFSIGNALED(status)) return fmt::format("it ended at once, by signal {}", WTERMSIG(status));
    if (WEXITSTATUS(status) != 0) return fmt::format("it ended at once, with status {}", WEXITSTATUS(status));
    return {};
}

}  // namespace

std::optional<fs::path> findProgram(std::string_view name, const fs::path& folder, std::string_view searchPath) {
    if (folder.is_absolute() && canRun(folder / name)) return folder / name;
    while (!searchPath.empty()) {
        const std::size_t colon = searchPath.find(':');
        const fs::path next(searchPath.substr(0, colon));
        if (next.is_absolute() && canRun(next / name)) return next / name;
        searchPath.remove_prefix(colon == std::string_view::npos ? searchPath.size() : colon + 1);
    }
    return {};
}

std::optional<std::string> startDetached(const std::vector<std::string>& words, const fs::path& at) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const Detachment detachment(at);
    pid_t child = 0;
    const int failed =
        posix_spawn(&child, arguments[0], &detachment.files, &detachment.attributes, arguments.data(), environ);
    if (failed != 0) return std::string(std::strerror(failed));
    return earlyEnd(child);
}

}  // namespace ravik::platform
