#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "Tests/App/WindowDesk.h"

namespace ravik::app {
namespace {

/// Of this thread's own work, so that others on the machine do not count.
double milliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

double middleOf(std::vector<double> times) {
    std::ranges::sort(times);
    return times[times.size() / 2];
}

class DiagnosisTick : public WindowDesk {
protected:
    /// Five hundred processes, of which fifty are findings.
    void crowd() {
        for (Pid pid = 800; pid < 850; ++pid) orphan(pid, "server-" + std::to_string(pid), 100);
        for (Pid pid = 1000; pid < 1450; ++pid) {
            orphan(pid, "shell", 5).ppid = 60;
        }
        fakes::FakeProcess parent;
        parent.pid = 60;
        parent.ppid = 50;
        parent.name = "terminal";
        parent.command = "/usr/bin/terminal";
        machine.processes.add(parent);
    }
};

/// A frame at 60 Hz lasts 16.7 ms; a quarter of it is the most that a tick may take. Only what is shipped is measured.
TEST_F(DiagnosisTick, TakesAQuarterOfAFrame) {
    crowd();
    monitor.readNow();
    ASSERT_EQ(monitor.snapshot().findings.size(), 50u);
    double began = 0;
    const auto before = monitor.observe([&](Monitor::Change change) {
        if (change == Monitor::Change::snapshot) began = milliseconds();
    });
    open();
    double ended = 0;
    const auto after = monitor.observe([&](Monitor::Change change) {
        if (change == Monitor::Change::snapshot) ended = milliseconds();
    });
    std::vector<double> updates, wholes;
    for (int round = 0; round < 21; ++round) {
        for (Pid pid = 800; pid < 850; ++pid) machine.processes.find(pid)->footprintBytes += 1 << 20;
        machine.clock.advance(5);
        monitor.readNow();
        updates.push_back(ended - began);
        const double drawing = milliseconds();
        QTest::qWait(40);
        wholes.push_back(ended - began + milliseconds() - drawing);
    }
    std::printf("a tick of 50 findings: %.2f ms, with its drawing %.2f ms\n", middleOf(updates), middleOf(wholes));
#ifdef NDEBUG
    EXPECT_LE(middleOf(updates), 4);
#else
    EXPECT_LE(middleOf(updates), 40);
#endif
    EXPECT_EQ(all("FindingCard").size(), 50);
}

}  // namespace
}  // namespace ravik::app
