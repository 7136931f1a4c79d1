#include "Platform/Linux/CrashHandler.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <exception>
#include <memory>

#include <cxxabi.h>
#include <execinfo.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "Platform/Linux/ReportText.h"

namespace ravik::platform {

namespace {

constexpr std::array fatal{SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS};
constexpr std::size_t stackBytes = 1 << 17;
constexpr int deepest = 64;

/// All that the handler needs, made beforehand: in it nothing may be allocated or locked.
struct Prepared {
    char file[4096] = "";
    char folder[4096] = "";
    char above[4096] = "";
    char version[64] = "";
    /// What ended the program, where somebody said so before the signal came.
    char reason[1024] = "";
    /// Given up for the report: a program that has run out of descriptors crashes too.
    int spare = -1;
    pid_t pid = 0;
    struct sigaction before[fatal.size()] = {};
    std::terminate_handler terminateBefore = nullptr;

    /// The thread that reports; another that crashes meanwhile waits for the end.
    std::atomic<pid_t> reporting = 0;
    int signal = 0;
};

Prepared prepared;

/// Collects text and writes it, without the library's streams.
class Line {
public:
    Line& text(const char* bytes) {
        while (*bytes && m_length < sizeof m_bytes) m_bytes[m_length++] = *bytes++;
        return *this;
    }
    Line& number(std::uint64_t value, unsigned base = 10) {
        char digits[24];
        std::size_t count = 0;
        do {
            digits[count++] = "0123456789abcdef"[value % base];
            value /= base;
        } while (value > 0);
        while (count > 0 && m_length < sizeof m_bytes) m_bytes[m_length++] = digits[--count];
        return *this;
    }
    void writeTo(int file) const {
        std::size_t done = 0;
        while (done < m_length) {
            const ssize_t put = write(file, m_bytes + done, m_length - done);
            if (put <= 0 && errno != EINTR) return;
            if (put > 0) done += static_cast<std::size_t>(put);
        }
    }

private:
    char m_bytes[2048];
    std::size_t m_length = 0;
};

pid_t thisThread() { return static_cast<pid_t>(syscall(SYS_gettid)); }

int openReport() {
    if (prepared.spare >= 0) close(prepared.spare);
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW;
    int file = open(prepared.file, flags, 0600);
    if (file < 0 && errno == ENOENT) {
        mkdir(prepared.above, 0700);
        mkdir(prepared.folder, 0700);
        file = open(prepared.file, flags, 0600);
    }
    return file;
}

void writeReport(int number, const siginfo_t& info) {
    const int file = openReport();
    if (file < 0) return;
    const char* name = sigabbrev_np(number);
    Line report;
    report.text("signal: ").number(static_cast<unsigned>(number)).text("\nversion: ").text(prepared.version);
    report.text("\nreason: ");
    if (prepared.reason[0]) {
        report.text(prepared.reason);
    } else {
        report.text("SIG").text(name ? name : "?");
        if (info.si_code <= 0 && info.si_pid != prepared.pid) {
            report.text(" sent by process ").number(static_cast<unsigned>(info.si_pid));
        } else if (info.si_code > 0) {
            report.text(" at address 0x").number(reinterpret_cast<std::uintptr_t>(info.si_addr), 16);
        }
    }
    report.text("\ntime: ").number(static_cast<std::uint64_t>(time(nullptr))).text("\n\n");
    report.writeTo(file);
    // The stack may be what is broken, so this comes last.
    void* frames[deepest];
    backtrace_symbols_fd(frames, backtrace(frames, deepest), file);
    close(file);
}

void restore(int number) {
    for (std::size_t each = 0; each < fatal.size(); ++each) {
        if (fatal[each] == number) sigaction(number, &prepared.before[each], nullptr);
    }
}

void handle(int number, siginfo_t* info, void*) {
    pid_t reporting = 0;
    const pid_t self = thisThread();
    if (!prepared.reporting.compare_exchange_strong(reporting, self)) {
        // Another thread reports: it ends the process.
        if (reporting != self) {
            for (;;) pause();
        }
        // Reporting has crashed in turn. What ends the process is still the first signal.
        restore(prepared.signal);
        sigset_t only;
        sigemptyset(&only);
        sigaddset(&only, prepared.signal);
        raise(prepared.signal);
        sigprocmask(SIG_UNBLOCK, &only, nullptr);
        return;
    }
    prepared.signal = number;
    if (getpid() == prepared.pid) writeReport(number, *info);
    restore(number);
    // Comes when this returns to where it happened, with all that the kernel knew of it.
    if (syscall(SYS_rt_tgsigqueueinfo, getpid(), self, number, info) != 0) raise(number);
}

void describe(const char* type, const char* what) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type, nullptr, nullptr, &status),
                                                           std::free);
    std::string text = std::string("uncaught ") + (name ? name.get() : type);
    if (what) text += std::string(": ") + what;
    text = ReportText::oneLine(text);
    std::memcpy(prepared.reason, text.c_str(), std::min(text.size() + 1, sizeof prepared.reason - 1));
}

[[noreturn]] void terminating() {
    if (const std::type_info* type = abi::__cxa_current_exception_type()) {
        try {
            std::rethrow_exception(std::current_exception());
        } catch (const std::exception& exception) {
            describe(type->name(), exception.what());
        } catch (...) {
            describe(type->name(), nullptr);
        }
    }
    prepared.terminateBefore();
    std::abort();
}

template <std::size_t Size>
void keep(char (&place)[Size], const std::string& text) {
    std::memcpy(place, text.c_str(), std::min(text.size(), Size - 1));
}

void giveStack() {
    // One page below it faults rather than writes over something else.
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* memory = mmap(nullptr, stackBytes + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return;
    mprotect(memory, page, PROT_NONE);
    stack_t stack{};
    stack.ss_sp = static_cast<char*>(memory) + page;
    stack.ss_size = stackBytes;
    sigaltstack(&stack, nullptr);
}

}  // namespace

void installCrashHandler(const std::filesystem::path& file, const std::string& version) {
    if (file.native().size() >= sizeof prepared.file) return;
    keep(prepared.file, file.native());
    keep(prepared.folder, file.parent_path().native());
    keep(prepared.above, file.parent_path().parent_path().native());
    keep(prepared.version, ReportText::oneLine(version));
    prepared.pid = getpid();
    prepared.spare = open("/dev/null", O_RDONLY | O_CLOEXEC);
    // The first call loads what later ones use.
    void* frame = nullptr;
    backtrace(&frame, 1);
    giveStack();

    prepared.terminateBefore = std::set_terminate(terminating);
    struct sigaction action {};
    action.sa_sigaction = handle;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (std::size_t each = 0; each < fatal.size(); ++each) {
        sigaction(fatal[each], nullptr, &prepared.before[each]);
        if (prepared.before[each].sa_handler != SIG_IGN) sigaction(fatal[each], &action, nullptr);
    }
}

}  // namespace ravik::platform
