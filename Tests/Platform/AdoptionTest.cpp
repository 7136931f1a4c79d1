#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Platform/Linux/LinuxServices.h"
#include "Tests/Platform/Support/Children.h"

namespace ravik::platform {
namespace {

constexpr Time now = 1'760'000'000;

[[noreturn]] void waitForEver() {
    while (true) pause();
}

/// Wherever the tests are started from, they were typed there.
class Terminals : public ApplicationUnits {
public:
    std::optional<Application> ofUnit(std::string_view) override { return Application{"terminal", true}; }
    bool belongs(const Proc&, const std::string&) override { return false; }
};

LinuxServices::Options here() {
    static Terminals terminals;
    LinuxServices::Options options;
    options.applications = &terminals;
    options.uid = getuid();
    options.self = getpid();
    return options;
}

/// What a coding tool leaves in a process tree whose root takes over orphans.
class Adoption : public testing::Test {
protected:
    void SetUp() override {
        subreaper = reaper.add(forkChild([&] {
            prctl(PR_SET_CHILD_SUBREAPER, 1);
            pipe.tell(forkChild([&] {
                pipe.tell(forkChild(waitForEver));
                waitForEver();
            }));
            while (true) wait(nullptr) < 0 ? pause() : 0;
        }));
        const Pid first = pipe.hear();
        const Pid second = pipe.hear();
        tool = std::min(first, second);
        leftover = std::max(first, second);
        // Pids may wrap between two forks.
        if (readProc(tool)->ppid != subreaper) std::swap(tool, leftover);
        reaper.add(tool);
        reaper.add(leftover);
        ASSERT_EQ(readProc(leftover)->ppid, tool);
    }
    std::vector<Proc> procs() const { return readProcs({getpid(), subreaper, tool, leftover}); }

    PidPipe pipe;
    Reaper reaper;
    Pid subreaper = 0;
    Pid tool = 0;
    Pid leftover = 0;
};

TEST_F(Adoption, IsSeenWhereItHappensDuringTheWatch) {
    LinuxServices services(here());
    EXPECT_FALSE(services.read(procs(), now).adopters.contains(subreaper));

    reaper.end(tool);
    ASSERT_TRUE(waitUntil([&] { return readProc(leftover)->ppid == subreaper; }));
    const Services::Reading reading = services.read(procs(), now + 1);
    EXPECT_TRUE(reading.adopters.contains(subreaper));
    EXPECT_FALSE(reading.managed.contains(leftover));
}

TEST_F(Adoption, BeforeTheWatchLeavesTheSubreaperUnknown) {
    reaper.end(tool);
    ASSERT_TRUE(waitUntil([&] { return readProc(leftover)->ppid == subreaper; }));
    LinuxServices services(here());
    const Services::Reading reading = services.read(procs(), now);
    EXPECT_FALSE(reading.adopters.contains(subreaper));
    EXPECT_TRUE(reading.adopters.contains(1));
}

TEST(Daemon, ThatMadeItselfOneIsManaged) {
    PidPipe pipe;
    Reaper reaper;
    // The double fork leaves the second child to whoever adopts here.
    const Pid first = forkChild([&] {
        pipe.tell(forkChild([&] {
            setsid();
            pipe.tell(getpid());
            waitForEver();
        }));
    });
    const Pid daemon = reaper.add(pipe.hear());
    ASSERT_EQ(pipe.hear(), daemon);
    waitpid(first, nullptr, 0);
    ASSERT_TRUE(waitUntil([&] { return readProc(daemon)->ppid != first; }));

    // Whoever adopts in this place of test stands for pid 1.
    std::vector<Proc> procs = readProcs({getpid(), daemon});
    procs.back().ppid = 1;
    LinuxServices services(here());
    EXPECT_TRUE(services.read(procs, now).managed.contains(daemon));

    LinuxServices::Options options = here();
    options.isToolHelper = [](std::string_view) { return true; };
    EXPECT_FALSE(LinuxServices(options).read(procs, now).managed.contains(daemon));
}

TEST(Daemon, IsNotWhoeverMerelyLostItsParent) {
    PidPipe pipe;
    Reaper reaper;
    const Pid first = forkChild([&] { pipe.tell(forkChild(waitForEver)); });
    const Pid left = reaper.add(pipe.hear());
    waitpid(first, nullptr, 0);
    ASSERT_TRUE(waitUntil([&] { return readProc(left)->ppid != first; }));
    std::vector<Proc> procs = readProcs({getpid(), left});
    procs.back().ppid = 1;
    EXPECT_FALSE(LinuxServices(here()).read(procs, now).managed.contains(left));
}

}  // namespace
}  // namespace ravik::platform
