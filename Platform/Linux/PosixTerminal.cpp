#include "Platform/Linux/PosixTerminal.h"

#include <array>
#include <csignal>

#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace ravik::platform {

namespace {

constexpr std::array interrupts{SIGINT, SIGTERM, SIGHUP};

/// While it lives, the signals that end a program only interrupt ppoll() under outsideMask().
class Interruptible {
public:
    Interruptible() {
        sigset_t ours;
        sigemptyset(&ours);
        struct sigaction quiet {};
        quiet.sa_handler = [](int) {};
        for (std::size_t at = 0; at < interrupts.size(); ++at) {
            sigaddset(&ours, interrupts[at]);
            sigaction(interrupts[at], &quiet, &m_before[at]);
        }
        pthread_sigmask(SIG_BLOCK, &ours, &m_outside);
    }
    ~Interruptible() {
        for (std::size_t at = 0; at < interrupts.size(); ++at) sigaction(interrupts[at], &m_before[at], nullptr);
        pthread_sigmask(SIG_SETMASK, &m_outside, nullptr);
    }
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;

    const sigset_t& outsideMask() const { return m_outside; }

private:
    std::array<struct sigaction, interrupts.size()> m_before{};
    sigset_t m_outside{};
};

}  // namespace

bool PosixTerminal::canAsk() const { return isatty(STDIN_FILENO) && isatty(STDERR_FILENO); }

bool PosixTerminal::isOutput() const { return isatty(STDOUT_FILENO); }

bool PosixTerminal::hasLostReader() const {
    pollfd output{STDOUT_FILENO, 0, 0};
    return poll(&output, 1, 0) == 1 && (output.revents & POLLERR) != 0;
}

int PosixTerminal::columns() const {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::optional<std::string> PosixTerminal::readLine(const std::function<void()>& prompt) {
    const Interruptible interruptible;
    // Typed before the question stood there, it answers nothing.
    tcflush(STDIN_FILENO, TCIFLUSH);
    prompt();
    std::string line;
    for (;;) {
        pollfd input{STDIN_FILENO, POLLIN, 0};
        if (ppoll(&input, 1, nullptr, &interruptible.outsideMask()) <= 0) return {};
        char letter = 0;
        if (read(STDIN_FILENO, &letter, 1) != 1) return {};
        if (letter == '\n') return line;
        line += letter;
    }
}

}  // namespace ravik::platform
