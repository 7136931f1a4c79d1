#include "Bench/TerminalPeer.h"

#include <array>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/ProcFolder.h"

namespace ravik::bench {

namespace {

constexpr int silenceMilliseconds = 250;
constexpr int patienceMilliseconds = 15'000;
/// Bursts that still belong to the start.
constexpr int starting = 3;

std::vector<char*> argumentsOf(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    return arguments;
}

/// A program on a terminal of its own, ended with its owner.
class OnTerminal {
public:
    explicit OnTerminal(const std::vector<std::string>& words) {
        winsize size{.ws_row = 50, .ws_col = 160, .ws_xpixel = 0, .ws_ypixel = 0};
        m_pid = forkpty(&m_terminal, nullptr, nullptr, &size);
        if (m_pid != 0) return;
        setenv("TERM", "xterm-256color", 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        execvp(words.front().c_str(), argumentsOf(words).data());
        _exit(127);
    }
    ~OnTerminal() {
        if (m_pid <= 0) return;
        close(m_terminal);
        kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
    }
    OnTerminal(const OnTerminal&) = delete;
    OnTerminal& operator=(const OnTerminal&) = delete;

    /// CPU nanoseconds at the beginning of the next burst; absent if none comes.
    std::optional<std::uint64_t> nextBurst() const {
        if (m_pid <= 0) return {};
        while (hears(silenceMilliseconds)) {
            if (!drain()) return {};
        }
        if (!hears(patienceMilliseconds)) return {};
        return platform::cpuNanoseconds(m_pid);
    }

private:
    bool hears(int milliseconds) const {
        pollfd ready{m_terminal, POLLIN, 0};
        return poll(&ready, 1, milliseconds) > 0;
    }
    bool drain() const {
        std::array<char, 65536> output;
        return read(m_terminal, output.data(), output.size()) > 0;
    }

    int m_terminal = -1;
    pid_t m_pid = -1;
};

}  // namespace

std::optional<double> secondsPerRefresh(const std::vector<std::string>& words, int refreshes) {
    const OnTerminal program(words);
    std::optional<std::uint64_t> begin;
    for (int burst = 0; burst < starting; ++burst) begin = program.nextBurst();
    std::optional<std::uint64_t> end;
    for (int burst = 0; burst < refreshes && begin; ++burst) {
        end = program.nextBurst();
        if (!end) return {};
    }
    if (!begin || !end) return {};
    return static_cast<double>(*end - *begin) * 1e-9 / refreshes;
}

std::optional<double> secondsOfRun(const std::vector<std::string>& words) {
    const pid_t pid = fork();
    if (pid == 0) {
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, 0);
        dup2(nowhere, 1);
        dup2(nowhere, 2);
        execvp(words.front().c_str(), argumentsOf(words).data());
        _exit(127);
    }
    rusage used{};
    int status = 0;
    if (pid < 0 || wait4(pid, &status, 0, &used) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return {};
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

}  // namespace ravik::bench
