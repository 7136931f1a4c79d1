#include "Tests/EndToEnd/Isolation.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <fmt/format.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/Platform/Support/Children.h"

namespace ravik::endtoend {

namespace {

bool inside = false;

bool tell(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    const bool told = file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file >= 0) close(file);
    return told;
}

bool leave() {
    constexpr int own = CLONE_NEWPID | CLONE_NEWNS;
    if (unshare(own) == 0) return true;
    const uid_t uid = geteuid();
    const gid_t gid = getegid();
    // Somebody without privileges has them over namespaces of a user namespace of his.
    return unshare(own | CLONE_NEWUSER) == 0 && tell("/proc/self/setgroups", "deny") &&
           tell("/proc/self/uid_map", fmt::format("{0} {0} 1", uid)) &&
           tell("/proc/self/gid_map", fmt::format("{0} {0} 1", gid));
}

int refused(const char* what) {
    std::fprintf(stderr, "These tests need a pid namespace of their own, and %s: %s\n", what, std::strerror(errno));
    return 1;
}

int exitStatus(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); }

/// The first process: the tests are its child, and what loses its parent comes to it.
int first(const std::function<int()>& work) {
    // Killed with whoever started the tests, a timeout included.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return refused("mounts cannot be made private");
    if (mount("proc", "/proc", "proc", 0, nullptr) != 0) return refused("its /proc cannot be mounted");
    const pid_t tests = fork();
    if (tests == 0) {
        // As a service has it that the first process runs: it is nothing that anybody left.
        setsid();
        inside = true;
        const int status = work();
        std::fflush(nullptr);
        _exit(status);
    }
    int status = 0;
    while (true) {
        const pid_t gone = wait(&status);
        if (gone == tests) return exitStatus(status);
        if (gone < 0 && errno == ECHILD) return 1;
    }
}

}  // namespace

int isolated(const std::function<int()>& work) {
    if (!leave()) return refused("this user may make none");
    const pid_t init = fork();
    if (init < 0) return refused("nothing can be started in it");
    if (init == 0) _exit(first(work));
    int status = 0;
    while (waitpid(init, &status, 0) < 0 && errno == EINTR) {}
    return exitStatus(status);
}

bool isIsolated() { return inside; }

namespace {

void forOthers(const std::function<void(const Proc&)>& visitor) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const std::string name = entry.path().filename().native();
        Pid pid = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
        if (error != std::errc{} || end != name.data() + name.size() || pid == 1 || pid == getpid()) continue;
        const auto proc = platform::readProc(pid);
        if (proc) visitor(*proc);
    }
}

}  // namespace

std::string othersRunning() {
    std::string others;
    forOthers([&](const Proc& proc) {
        others += fmt::format("{}{} {}", others.empty() ? "" : ", ", proc.id, proc.command.view());
    });
    return others;
}

void endOthers() {
    if (!inside) return;
    forOthers([](const Proc& proc) { kill(proc.id, SIGKILL); });
    while (waitpid(-1, nullptr, WNOHANG) > 0) {}
}

}  // namespace ravik::endtoend
