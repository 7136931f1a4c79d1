#include "Platform/Linux/CrashHandler.h"

#include <csignal>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/ReadFile.h"
#include "Platform/Linux/ReportText.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::platform {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

volatile int sink = 0;

[[gnu::noinline]] int recurse(int depth) {
    volatile char room[4096];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : recurse(depth + 1) + room[0];
}

void writeTo(std::uintptr_t address) { *reinterpret_cast<volatile int*>(address) = 1; }

struct CrashHandlerTest : testing::Test {
    /// The status, as wait gives it, of a child that does this under the handler, or without it.
    int crash(const std::function<void()>& work, bool handled = true) const {
        const pid_t child = fork();
        if (child == 0) {
            const rlimit none{0, 0};
            setrlimit(RLIMIT_CORE, &none);
            dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
            crashAsUsual();
            if (handled) installCrashHandler(report, "0.1.0");
            work();
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    }
    std::string text() const { return readFile(report.string()).value_or("none"); }
    CrashDiagnostic diagnostic() const { return ReportText::crash(text()); }

    fakes::TemporaryFolder folder;
    std::filesystem::path report = folder.path() / "state/ravik/Ravik-crash-1.new";
};

}  // namespace

TEST_F(CrashHandlerTest, ABadAddressIsReportedAndEndsTheProcessAsItWould) {
    const auto work = [] { writeTo(16); };
    const int status = crash(work);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    EXPECT_EQ(status, crash(work, false));
    EXPECT_EQ(diagnostic(), (CrashDiagnostic{SIGSEGV, 0, "0.1.0", "SIGSEGV at address 0x10"}));
    EXPECT_EQ(modeOf(report), 0600u);
}

TEST_F(CrashHandlerTest, TheReportTellsWhereItHappened) {
    crash([] { writeTo(16); });
    const std::string frames = text().substr(text().find("\n\n"));
    EXPECT_THAT(frames, HasSubstr("ravik-platform-tests"));
}

TEST_F(CrashHandlerTest, AnAbortIsReported) {
    const int status = crash([] { std::abort(); });
    EXPECT_EQ(status, crash([] { std::abort(); }, false));
    EXPECT_EQ(WTERMSIG(status), SIGABRT);
    EXPECT_EQ(diagnostic(), (CrashDiagnostic{SIGABRT, 0, "0.1.0", "SIGABRT"}));
}

TEST_F(CrashHandlerTest, AnUncaughtExceptionIsToldByItsTypeAndText) {
    // Thrown where nobody catches: the test itself would.
    const auto thrower = [] { std::thread([] { throw std::runtime_error("no such\nthing"); }).join(); };
    EXPECT_EQ(WTERMSIG(crash(thrower)), SIGABRT);
    EXPECT_EQ(diagnostic(), (CrashDiagnostic{SIGABRT, 0, "0.1.0", "uncaught std::runtime_error: no such thing"}));
    crash([] { std::thread([] { throw 7; }).join(); });
    EXPECT_EQ(diagnostic().reason, "uncaught int");
    const std::string endless(5000, 'x');
    crash([&] { std::thread([&] { throw std::logic_error(endless); }).join(); });
    EXPECT_THAT(diagnostic().reason, StartsWith("uncaught std::logic_error: xxx"));
    EXPECT_THAT(text(), HasSubstr("\ntime: "));
}

TEST_F(CrashHandlerTest, AStackThatOverflowsIsReported) {
    EXPECT_EQ(WTERMSIG(crash([] { sink = recurse(0); })), SIGSEGV);
    EXPECT_EQ(diagnostic().signal, SIGSEGV);
}

TEST_F(CrashHandlerTest, ASignalFromSomebodyElseIsToldAsSuch) {
    const auto parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        crashAsUsual();
        installCrashHandler(report, "0.1.0");
        kill(getpid(), SIGSTOP);
        while (true) pause();
    }
    int status = 0;
    waitpid(child, &status, WUNTRACED);
    kill(child, SIGSEGV);
    kill(child, SIGCONT);
    waitpid(child, &status, 0);
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    EXPECT_EQ(diagnostic().reason, "SIGSEGV sent by process " + std::to_string(parent));
}

TEST_F(CrashHandlerTest, AProgramWithoutADescriptorLeftIsReportedToo) {
    crash([] {
        const rlimit few{32, 32};
        setrlimit(RLIMIT_NOFILE, &few);
        while (dup(0) >= 0) {}
        writeTo(16);
    });
    EXPECT_EQ(diagnostic().signal, SIGSEGV);
}

TEST_F(CrashHandlerTest, WhereNothingCanBeWrittenItEndsAllTheSame) {
    report = "/proc/none/Ravik-crash-1.new";
    EXPECT_EQ(WTERMSIG(crash([] { writeTo(16); })), SIGSEGV);
}

TEST_F(CrashHandlerTest, OneReportOfThreadsThatCrashTogether) {
    const int status = crash([] {
        std::vector<std::thread> threads;
        for (int each = 0; each < 8; ++each) threads.emplace_back([] { writeTo(16); });
        for (auto& thread : threads) thread.join();
    });
    EXPECT_EQ(WTERMSIG(status), SIGSEGV);
    EXPECT_EQ(diagnostic(), (CrashDiagnostic{SIGSEGV, 0, "0.1.0", "SIGSEGV at address 0x10"}));
    EXPECT_EQ(text().find("signal: "), text().rfind("signal: "));
}

TEST_F(CrashHandlerTest, AnIgnoredSignalStaysIgnored) {
    signal(SIGTRAP, SIG_IGN);
    const int status = crash([] { raise(SIGTRAP); });
    signal(SIGTRAP, SIG_DFL);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(text(), "none");
}

TEST_F(CrashHandlerTest, AHandlerThatStoodThereBeforeHasItsTurn) {
    const auto earlier = [](int) { _exit(42); };
    const auto before = signal(SIGFPE, earlier);
    const int status = crash([] { raise(SIGFPE); });
    signal(SIGFPE, before);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 42);
    EXPECT_EQ(diagnostic().signal, SIGFPE);
}

TEST_F(CrashHandlerTest, AForkedChildWritesNothing) {
    EXPECT_EQ(crash([] {
                  const pid_t child = fork();
                  if (child == 0) writeTo(16);
                  int status = 0;
                  waitpid(child, &status, 0);
                  _exit(WTERMSIG(status) == SIGSEGV ? 0 : 1);
              }),
              0);
    EXPECT_EQ(text(), "none");
}

}  // namespace ravik::platform
