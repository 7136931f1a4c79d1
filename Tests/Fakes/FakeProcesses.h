#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Platform/Platform.h"
#include "Tests/Fakes/FakeClock.h"

namespace ravik::fakes {

/// One process of the machine in memory. `life` tells this process from a later one in the same pid, and serves as
/// the kernel's start stamp.
struct FakeProcess {
    Pid pid = 0;
    Pid ppid = 1;
    std::uint32_t uid = 1000;
    std::string name;
    std::string command;
    Time started = 0;
    std::uint64_t footprintBytes = 0;
    std::uint64_t cpuTicks = 0;  // nanoseconds
    double cpuPercent = 0;       // added to cpuTicks as time passes
    Time readAt = distantPast;
    std::optional<std::string> app = {};
    std::uint64_t life = 0;

    bool ignoresTerm = false;
    bool ignoresKill = false;
    bool stopped = false;
    bool demoted = false;
    /// Seconds between TERM and the end.
    double termDelay = 0;
    Time endsAt = -1;  // -1: not ending
};

struct SentSignal {
    Pid pid = 0;
    std::uint64_t life = 0;
    Signal signal = Signal::terminate;
    Time at = 0;
};

/// The process table, the signals and the levers of a machine in memory.
class FakeProcesses : public ProcessTable, public Signals, public Levers {
public:
    explicit FakeProcesses(FakeClock& clock) : m_clock(clock) {}

    /// Adds a process; a pid of 0 gets the next free one, a start of 0 is now; starts are cut to the second. A living process in that pid ends.
    FakeProcess& add(FakeProcess process);
    /// Ends a process; its children go to `adopter`.
    void end(Pid pid, Pid adopter = 1);
    FakeProcess* find(Pid pid);
    std::map<Pid, FakeProcess>& all() { return m_processes; }
    /// The process as a scan would give it.
    Proc proc(Pid pid) const;

    // ProcessTable
    double nanosPerTick() const override { return nanosecondsPerTick; }
    void list(Pids& pids) override;
    bool read(Pid pid, ProcessReading& reading) override;
    Pids listFresh() const override;
    bool readFresh(Pid pid, ProcessReading& reading) const override {
        return !unreadable.contains(pid) && self().read(pid, reading);
    }
    std::optional<Time> startTime(Pid pid) const override;
    std::optional<std::string> commandLine(Pid pid) const override;

    // Signals
    std::optional<VerifiedProcess> verify(const Proc& proc) const override;
    bool alive(const VerifiedProcess& process) const override;
    bool stopped(const VerifiedProcess& process) const override;
    bool send(const VerifiedProcess& process, Signal signal) const override;
    void waitForExit(std::span<const VerifiedProcess> processes, double seconds) const override;
    void sleep(double seconds) const override;

    // Levers
    Pids pause(const std::string& group, const std::vector<Proc>& targets) override;
    void resume(const Pids& pids) override;
    Pids demote(const std::string& group, const std::vector<Proc>& targets) override;
    void restore(const Pids& pids) override;
    std::vector<Leftover> releaseLeftovers() override;

    /// Called before every step that looks at or signals a process: where a test lets the machine change.
    std::function<void()> onStep;
    std::vector<SentSignal> sent;
    double nanosecondsPerTick = 1.0;
    bool canDemote = true;
    /// What an earlier run left in force.
    std::vector<Leftover> leftovers;
    /// Living processes that cannot be read anew.
    PidSet unreadable;

private:
    const FakeProcess* living(const VerifiedProcess& process) const;
    void step() const;
    void reap() const;

    // The interfaces are const where they only look; a fake's looking lets time pass and processes end.
    FakeProcesses& self() const { return const_cast<FakeProcesses&>(*this); }

    FakeClock& m_clock;
    std::map<Pid, FakeProcess> m_processes;
    Pid m_nextPid = 100;
    std::uint64_t m_nextLife = 1;
};

}  // namespace ravik::fakes
