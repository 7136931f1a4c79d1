#include "Platform/Linux/PidfdSignals.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <ctime>
#include <utility>

#include <fmt/format.h>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/Descriptor.h"
#include "Platform/Linux/ReadFile.h"

namespace ravik::platform {

namespace {

constexpr double pollSeconds = 0.1;  // where no descriptor tells of the end
constexpr double longestWait = 24 * 60 * 60;

/// The descriptor, where there is one, and the start stamp of the process that was verified.
struct Held : VerifiedProcess::Handle {
    Held(Descriptor given, std::uint64_t stamp) : file(std::move(given)), ticks(stamp) {}

    Descriptor file;
    std::uint64_t ticks;
};

const Held& heldBy(const VerifiedProcess& process) { return static_cast<const Held&>(*process.handle()); }

/// Absent once it has ended, as a zombie too.
std::optional<StartStamp> livingStamp(Pid pid) {
    const auto stat = readFile(fmt::format("/proc/{}/stat", pid));
    const auto stamp = stat ? parseStartStamp(*stat) : std::nullopt;
    if (!stamp || stamp->hasEnded()) return {};
    return stamp;
}

/// The stamp of the verified process; absent if its pid is another's by now.
std::optional<StartStamp> sameStamp(const VerifiedProcess& process) {
    const auto stamp = livingStamp(process.pid());
    if (!stamp || stamp->ticks != heldBy(process).ticks) return {};
    return stamp;
}

int numberOf(Signal signal) {
    switch (signal) {
        case Signal::terminate: return SIGTERM;
        case Signal::kill: return SIGKILL;
        case Signal::stop: return SIGSTOP;
        case Signal::resume: return SIGCONT;
    }
    return 0;
}

/// Waits until one of the descriptors says that its process has ended, and takes those out.
void waitForOne(std::vector<pollfd>& files, double seconds) {
    const auto milliseconds = static_cast<int>(std::ceil(seconds * 1000));
    if (::poll(files.data(), files.size(), milliseconds) <= 0) return;
    std::erase_if(files, [](const pollfd& file) { return file.revents != 0; });
}

}  // namespace

std::optional<VerifiedProcess> PidfdSignals::verify(const Proc& proc) const {
    if (proc.id < 1) return {};
    Descriptor file;
    if (m_descriptors) {
        file = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, proc.id, 0)));
        if (!file) {
            if (errno == ESRCH || errno == EINVAL) return {};
            // EPERM is what a container's filter answers for a call that it does not know.
            if (errno == ENOSYS || errno == EPERM) m_descriptors = false;
        }
    }
    // Read behind the opening: should the pid change hands in between, the descriptor leads to a dead process.
    const auto stamp = livingStamp(proc.id);
    if (!stamp || startedAt(stamp->ticks) != std::trunc(proc.started)) return {};
    if (proc.startTicks != 0 && proc.startTicks != stamp->ticks) return {};
    return vouch(proc.id, std::make_shared<Held>(std::move(file), stamp->ticks));
}

bool PidfdSignals::alive(const VerifiedProcess& process) const {
    const Descriptor& file = heldBy(process).file;
    if (!file) return sameStamp(process).has_value();
    // Readable from the moment it is a zombie.
    pollfd ended{file.get(), POLLIN, 0};
    int told = 0;
    do {
        told = ::poll(&ended, 1, 0);
    } while (told < 0 && errno == EINTR);
    return told <= 0;
}

bool PidfdSignals::stopped(const VerifiedProcess& process) const {
    const auto stamp = sameStamp(process);
    return stamp && stamp->state == 'T';
}

bool PidfdSignals::send(const VerifiedProcess& process, Signal signal) const {
    const Descriptor& file = heldBy(process).file;
    if (file) return syscall(SYS_pidfd_send_signal, file.get(), numberOf(signal), nullptr, 0) == 0;
    return sameStamp(process) && ::kill(process.pid(), numberOf(signal)) == 0;
}

void PidfdSignals::waitForExit(std::span<const VerifiedProcess> processes, double seconds) const {
    const SystemClock clock;
    const double deadline = clock.monotonic() + (seconds > 0 ? std::min(seconds, longestWait) : 0);
    std::vector<pollfd> files;
    std::vector<const VerifiedProcess*> others;
    for (const VerifiedProcess& process : processes) {
        if (const Descriptor& file = heldBy(process).file) {
            files.push_back({file.get(), POLLIN, 0});
        } else {
            others.push_back(&process);
        }
    }
    while (true) {
        std::erase_if(others, [&](const VerifiedProcess* process) { return !alive(*process); });
        const double left = deadline - clock.monotonic();
        if ((files.empty() && others.empty()) || left <= 0) return;
        const double pause = others.empty() ? left : std::min(left, pollSeconds);
        files.empty() ? sleep(pause) : waitForOne(files, pause);
    }
}

void PidfdSignals::sleep(double seconds) const {
    if (!(seconds > 0)) return;
    const double whole = std::floor(std::min(seconds, longestWait));
    timespec left{static_cast<time_t>(whole), static_cast<long>((std::min(seconds, longestWait) - whole) * 1e9)};
    while (clock_nanosleep(CLOCK_MONOTONIC, 0, &left, &left) == EINTR) {}
}

}  // namespace ravik::platform
