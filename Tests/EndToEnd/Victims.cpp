#include "Tests/EndToEnd/Victims.h"

#include <csignal>
#include <ctime>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

#include "Tests/Platform/Support/ChildWork.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::endtoend {

namespace {

Life* own = nullptr;
Lives* all = nullptr;
Nature nature = Nature::polite;

sigset_t heard() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGUSR1);
    return signals;
}

void leave(Life::End how) {
    own->end = how;
    _exit(0);
}

/// Only what a handler may do.
void onTerm(int) {
    ++own->terms;
    if (nature == Nature::stubborn) return;
    if (nature == Nature::slow) {
        timespec pause{0, static_cast<long>(slowSeconds * 1e9)};
        clock_nanosleep(CLOCK_MONOTONIC, 0, &pause, nullptr);
    }
    if (nature == Nature::forks) all->begin(Nature::polite);
    leave(Life::ended);
}

void onAsk(int) { leave(Life::asked); }

[[noreturn]] void live() {
    struct sigaction action {};
    action.sa_mask = heard();
    action.sa_handler = onTerm;
    sigaction(SIGTERM, &action, nullptr);
    action.sa_handler = onAsk;
    sigaction(SIGUSR1, &action, nullptr);
    const sigset_t signals = heard();
    own->hears = true;
    sigprocmask(SIG_UNBLOCK, &signals, nullptr);
    while (true) pause();
}

}  // namespace

Lives::Lives(std::size_t most) : m_most(most) {
    void* memory = mmap(nullptr, sizeof(std::atomic<std::size_t>) + most * sizeof(Life), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    m_count = new (memory) std::atomic<std::size_t>(0);
    m_lives = reinterpret_cast<Life*>(m_count + 1);
}

Lives::~Lives() { munmap(m_count, sizeof(std::atomic<std::size_t>) + m_most * sizeof(Life)); }

std::size_t Lives::count() const { return *m_count; }

Life* Lives::allot() {
    const std::size_t index = (*m_count)++;
    return index < m_most ? new (m_lives + index) Life : nullptr;
}

Life* Lives::begin(Nature its, const std::function<void()>& first, Pid wanted) {
    Life* const life = allot();
    if (!life) return nullptr;
    // A signal that comes before it can say what it heard has to wait.
    const sigset_t signals = heard();
    sigset_t before;
    sigprocmask(SIG_BLOCK, &signals, &before);
    const auto body = [&] {
        own = life;
        own->pid = getpid();  // whoever began it may be killed before it has noted that
        all = this;
        nature = its;
        if (first) first();
        live();
    };
    const Pid pid = wanted > 0 ? platform::forkWithPid(wanted, body) : platform::forkChild(body);
    sigprocmask(SIG_SETMASK, &before, nullptr);
    if (pid <= 0) {
        life->end = Life::asked;
        return nullptr;
    }
    life->pid = pid;
    while (!life->hears && platform::readProc(pid)) usleep(100);
    return life;
}

void Lives::ask(const Life& life) {
    if (life.pid > 0) kill(life.pid, SIGUSR1);
}

}  // namespace ravik::endtoend
