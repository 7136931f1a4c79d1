#include "Tests/Platform/Support/Children.h"

#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/BootTime.h"
#include "Platform/Linux/ReadFile.h"
#include "Tests/Platform/Support/Sanitized.h"

namespace ravik::platform {

namespace {

bool isSame(const Proc& proc) {
    const auto now = readProc(proc.id);
    return now && now->startTicks == proc.startTicks;
}

}  // namespace

std::optional<Proc> readProc(Pid pid) {
    const std::string base = "/proc/" + std::to_string(pid);
    const auto stat = readFile(base + "/stat");
    const auto stamp = stat ? parseStartStamp(*stat) : std::nullopt;
    struct stat owner {};
    if (!stamp || stamp->hasEnded() || ::stat(base.c_str(), &owner) != 0) return {};
    Proc proc;
    proc.id = pid;
    proc.uid = owner.st_uid;
    proc.startTicks = stamp->ticks;
    proc.started = startedAt(stamp->ticks);
    const std::size_t open = stat->find('(');
    const std::size_t shut = stat->rfind(')');
    proc.name = stat->substr(open + 1, shut - open - 1);
    char state = 0;
    std::istringstream(stat->substr(shut + 1)) >> state >> proc.ppid;
    std::string command = readFile(base + "/cmdline").value_or("");
    for (char& byte : command) {
        if (byte == '\0') byte = ' ';
    }
    while (!command.empty() && command.back() == ' ') command.pop_back();
    proc.command = command;
    return proc;
}

std::vector<Proc> readProcs(const Pids& pids) {
    std::vector<Proc> procs;
    for (const Pid pid : pids) {
        if (auto proc = readProc(pid)) procs.push_back(std::move(*proc));
    }
    return procs;
}

Reaper::~Reaper() { endAll(); }

void Reaper::endAll() {
    while (!m_procs.empty()) end(m_procs.back().id);
}

Pid Reaper::add(Pid pid) {
    if (auto proc = pid > 0 ? readProc(pid) : std::nullopt) m_procs.push_back(std::move(*proc));
    return pid;
}

void Reaper::end(Pid pid) {
    for (std::size_t at = 0; at < m_procs.size(); ++at) {
        if (m_procs[at].id != pid) continue;
        const Proc proc = m_procs[at];
        m_procs.erase(m_procs.begin() + static_cast<std::ptrdiff_t>(at));
        if (isSame(proc)) {
            kill(pid, SIGKILL);
            waitUntil([&] { return !isSame(proc); });
        }
        // A child's files are closed once its last thread has gone, which is when it can be waited for.
        waitUntil([&] { return waitpid(pid, nullptr, WNOHANG) != 0; });
        return;
    }
}

Pid forkChild(const std::function<void()>& body) {
    const Pid pid = fork();
    if (pid == 0) {
        body();
        _exit(0);
    }
    return pid;
}

Pid startProgram(const std::vector<std::string>& words, const std::vector<std::string>& environment) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    std::vector<char*> variables;
    for (const std::string& entry : environment) variables.push_back(const_cast<char*>(entry.c_str()));
    for (char** entry = environ; *entry; ++entry) variables.push_back(*entry);
    variables.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    Pid pid = 0;
    const int failed = posix_spawnp(&pid, arguments[0], &files, nullptr, arguments.data(), variables.data());
    posix_spawn_file_actions_destroy(&files);
    return failed ? 0 : pid;
}

bool waitUntil(const std::function<bool()>& done, double seconds) {
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(isSanitized ? 3 * seconds : seconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

PidPipe::PidPipe() {
    if (pipe2(m_ends, O_CLOEXEC) != 0) m_ends[0] = m_ends[1] = -1;
}

PidPipe::~PidPipe() {
    close(m_ends[0]);
    close(m_ends[1]);
}

void PidPipe::tell(Pid pid) const {
    if (write(m_ends[1], &pid, sizeof pid) != sizeof pid) _exit(1);
}

Pid PidPipe::hear() const {
    pollfd ready{m_ends[0], POLLIN, 0};
    Pid pid = 0;
    if (poll(&ready, 1, 10'000) != 1 || read(m_ends[0], &pid, sizeof pid) != sizeof pid) return 0;
    return pid;
}

}  // namespace ravik::platform
