#include "Tests/Platform/Support/LeverScene.h"

#include <csignal>

#include <grp.h>
#include <linux/ioprio.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/Autogroups.h"
#include "Platform/Linux/JobControl.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {

namespace {

constexpr uid_t nobody = 65534;

void layDownPrivileges() {
    if (geteuid() != 0) return;
    if (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0) _exit(2);
    // Else its files in /proc would still belong to the user it was.
    prctl(PR_SET_DUMPABLE, 1);
}

std::string fileOf(Pid pid, const char* name) { return "/proc/" + std::to_string(pid) + "/" + name; }

}  // namespace

std::string policyOf(Pid pid) {
    switch (sched_getscheduler(pid)) {
        case SCHED_OTHER: return "other";
        case SCHED_BATCH: return "batch";
        case SCHED_IDLE: return "idle";
        default: return "another";
    }
}

std::string ioClassOf(Pid pid) {
    const long priority = syscall(SYS_ioprio_get, IOPRIO_WHO_PROCESS, pid);
    if (priority < 0) return "gone";
    switch (IOPRIO_PRIO_CLASS(priority)) {
        case IOPRIO_CLASS_NONE: return "none";
        case IOPRIO_CLASS_BE: return "best effort " + std::to_string(IOPRIO_PRIO_DATA(priority));
        case IOPRIO_CLASS_IDLE: return "idle";
        default: return "another";
    }
}

std::optional<int> autogroupNice(Pid pid) {
    const auto text = readFile(fileOf(pid, "autogroup"));
    const auto group = text ? parseAutogroup(*text) : std::nullopt;
    if (!group) return {};
    return group->nice;
}

char stateOf(Pid pid) {
    const auto text = readFile(fileOf(pid, "stat"));
    const auto job = text ? parseJobStat(*text) : std::nullopt;
    return job ? job->state : '\0';
}

std::string asOrdinaryUser(const std::function<std::string()>& body) {
    int ends[2];
    if (pipe(ends) != 0) return {};
    const Pid child = forkChild([&] {
        close(ends[0]);
        layDownPrivileges();
        const std::string said = body();
        if (write(ends[1], said.data(), said.size()) != static_cast<ssize_t>(said.size())) _exit(1);
    });
    close(ends[1]);
    std::string heard;
    pollfd ready{ends[0], POLLIN, 0};
    char piece[4096];
    ssize_t got = 0;
    while (poll(&ready, 1, 20'000) == 1 && (got = read(ends[0], piece, sizeof piece)) > 0) {
        heard.append(piece, static_cast<std::size_t>(got));
    }
    close(ends[0]);
    if (got > 0) kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? heard : "";
}

Pid startSleeper() {
    PidPipe pipe;
    forkChild([&] {
        setsid();
        pipe.tell(getpid());
        for (;;) pause();
    });
    return pipe.hear();
}

Pid startSleeperBeside() {
    PidPipe pipe;
    forkChild([&] {
        pipe.tell(getpid());
        for (;;) pause();
    });
    return pipe.hear();
}

}  // namespace ravik::platform
