#include "Tests/Platform/Support/ChildWork.h"

#include <csignal>
#include <cstdint>
#include <iterator>

#include <linux/sched.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ravik::platform {

int inChild(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void crashAsUsual() {
    for (const int number : {SIGSEGV, SIGBUS, SIGABRT}) signal(number, SIG_DFL);
}

int unprivileged(const std::function<int()>& work) {
    return inChild([&] {
        if (geteuid() == 0 && (setgid(somebodyElse) != 0 || setuid(somebodyElse) != 0)) return notAllowed;
        return work();
    });
}

int amongOwnPids(const std::function<int()>& work) {
    return inChild([&] {
        constexpr int own = CLONE_NEWPID | CLONE_NEWNS;
        if (unshare(own) != 0 && unshare(own | CLONE_NEWUSER) != 0) return notAllowed;
        return inChild([&] {
            if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return notAllowed;
            if (mount("proc", "/proc", "proc", 0, nullptr) != 0) return notAllowed;
            return work();
        });
    });
}

pid_t forkWithPid(pid_t pid, const std::function<void()>& work) {
    pid_t wanted[] = {pid};
    clone_args arguments{};
    arguments.exit_signal = SIGCHLD;
    arguments.set_tid = reinterpret_cast<std::uintptr_t>(wanted);
    arguments.set_tid_size = 1;
    const long child = syscall(SYS_clone3, &arguments, sizeof arguments);
    if (child == 0) {
        if (work) work();
        while (true) pause();
    }
    return child < 0 ? 0 : static_cast<pid_t>(child);
}

unsigned modeOf(const std::filesystem::path& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777u : 0;
}

int openDescriptors() {
    namespace fs = std::filesystem;
    return static_cast<int>(std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator{}));
}

}  // namespace ravik::platform
