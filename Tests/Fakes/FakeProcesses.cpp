#include "Tests/Fakes/FakeProcesses.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ravik::fakes {

namespace {

struct LifeHandle : VerifiedProcess::Handle {
    explicit LifeHandle(std::uint64_t which) : life(which) {}
    std::uint64_t life;
};

}  // namespace

FakeProcess& FakeProcesses::add(FakeProcess process) {
    if (process.pid == 0) {
        while (m_processes.contains(m_nextPid)) ++m_nextPid;
        process.pid = m_nextPid++;
    }
    if (m_processes.contains(process.pid)) end(process.pid);
    process.started = std::floor(process.started == 0 ? m_clock.now() : process.started);
    process.life = m_nextLife++;
    return m_processes[process.pid] = std::move(process);
}

void FakeProcesses::end(Pid pid, Pid adopter) {
    m_processes.erase(pid);
    for (auto& [id, process] : m_processes) {
        if (process.ppid == pid) process.ppid = adopter;
    }
}

FakeProcess* FakeProcesses::find(Pid pid) {
    const auto hit = m_processes.find(pid);
    return hit == m_processes.end() ? nullptr : &hit->second;
}

Proc FakeProcesses::proc(Pid pid) const {
    const FakeProcess& process = m_processes.at(pid);
    Proc out;
    out.id = process.pid;
    out.ppid = process.ppid;
    out.uid = process.uid;
    out.name = process.name;
    out.command = process.command;
    out.started = process.started;
    out.startTicks = process.life;
    out.footprintBytes = process.footprintBytes;
    out.cpuPercent = process.cpuPercent;
    if (process.app) out.app = *process.app;
    return out;
}

void FakeProcesses::list(Pids& pids) {
    step();
    pids.clear();
    for (const auto& [pid, process] : m_processes) pids.push_back(pid);
}

Pids FakeProcesses::listFresh() const {
    Pids pids;
    self().list(pids);
    return pids;
}

bool FakeProcesses::read(Pid pid, ProcessReading& reading) {
    FakeProcess* process = find(pid);
    if (!process) return false;
    reading = {};
    reading.id = pid;
    reading.ppid = process->ppid;
    reading.uid = process->uid;
    reading.name = process->name;
    if (!process->command.empty()) reading.arguments = Text(process->command);
    reading.started = process->started;
    reading.startTicks = process->life;
    reading.footprintBytes = process->footprintBytes;
    // CPU time builds up between readings, so that a change of load does not reach into the past.
    const double passed = m_clock.now() - std::max(process->readAt, process->started);
    process->cpuTicks +=
        static_cast<std::uint64_t>(std::llround(process->cpuPercent / 100 * passed * 1e9 / nanosecondsPerTick));
    process->readAt = m_clock.now();
    reading.cpuTicks = process->cpuTicks;
    if (process->app) reading.app = Text(*process->app);
    return true;
}

std::optional<Time> FakeProcesses::startTime(Pid pid) const {
    step();
    const auto hit = m_processes.find(pid);
    if (hit == m_processes.end()) return {};
    return hit->second.started;
}

std::optional<std::string> FakeProcesses::commandLine(Pid pid) const {
    const auto hit = m_processes.find(pid);
    if (hit == m_processes.end() || hit->second.command.empty()) return {};
    return hit->second.command;
}

std::optional<VerifiedProcess> FakeProcesses::verify(const Proc& proc) const {
    step();
    const auto hit = m_processes.find(proc.id);
    if (hit == m_processes.end() || hit->second.started != std::trunc(proc.started)) return {};
    if (proc.startTicks != 0 && proc.startTicks != hit->second.life) return {};
    return vouch(proc.id, std::make_shared<LifeHandle>(hit->second.life));
}

const FakeProcess* FakeProcesses::living(const VerifiedProcess& process) const {
    const auto hit = m_processes.find(process.pid());
    if (hit == m_processes.end()) return nullptr;
    const auto* handle = static_cast<const LifeHandle*>(process.handle());
    return hit->second.life == handle->life ? &hit->second : nullptr;
}

bool FakeProcesses::alive(const VerifiedProcess& process) const {
    step();
    return living(process) != nullptr;
}

bool FakeProcesses::stopped(const VerifiedProcess& process) const {
    const FakeProcess* target = living(process);
    return target && target->stopped;
}

bool FakeProcesses::send(const VerifiedProcess& process, Signal signal) const {
    step();
    const FakeProcess* found = living(process);
    if (!found) return false;
    FakeProcess& target = *self().find(found->pid);
    self().sent.push_back({target.pid, target.life, signal, m_clock.now()});
    switch (signal) {
        case Signal::terminate:
            if (!target.ignoresTerm) target.endsAt = m_clock.now() + target.termDelay;
            break;
        case Signal::kill:
            if (!target.ignoresKill) self().end(target.pid);
            return true;
        case Signal::stop: target.stopped = true; break;
        case Signal::resume: target.stopped = false; break;
    }
    reap();
    return true;
}

void FakeProcesses::waitForExit(std::span<const VerifiedProcess> processes, double seconds) const {
    const Time deadline = m_clock.now() + seconds;
    for (;;) {
        step();
        if (std::ranges::none_of(processes, [&](const auto& process) { return living(process); })) return;
        if (m_clock.now() >= deadline) return;
        self().m_clock.time = std::min(m_clock.now() + 0.1, deadline);
    }
}

void FakeProcesses::sleep(double seconds) const {
    self().m_clock.advance(seconds);
    step();
}

Pids FakeProcesses::pause(const std::string&, const std::vector<Proc>& targets) {
    Pids done;
    for (const Proc& target : targets) {
        if (const auto process = verify(target); process && send(*process, Signal::stop)) done.push_back(target.id);
    }
    return done;
}

void FakeProcesses::resume(const Pids& pids) {
    for (const Pid pid : pids) {
        if (FakeProcess* process = find(pid)) {
            sent.push_back({pid, process->life, Signal::resume, m_clock.now()});
            process->stopped = false;
        }
    }
}

Pids FakeProcesses::demote(const std::string&, const std::vector<Proc>& targets) {
    Pids done;
    if (!canDemote) return done;
    for (const Proc& target : targets) {
        if (!verify(target)) continue;
        find(target.id)->demoted = true;
        done.push_back(target.id);
    }
    return done;
}

void FakeProcesses::restore(const Pids& pids) {
    for (const Pid pid : pids) {
        if (FakeProcess* process = find(pid)) process->demoted = false;
    }
}

std::vector<Levers::Leftover> FakeProcesses::releaseLeftovers() { return std::exchange(leftovers, {}); }

void FakeProcesses::step() const {
    if (onStep) onStep();
    reap();
}

void FakeProcesses::reap() const {
    Pids over;
    for (const auto& [pid, process] : m_processes) {
        // A stopped process does not hear TERM until it is continued.
        if (process.endsAt >= 0 && !process.stopped && m_clock.now() >= process.endsAt) over.push_back(pid);
    }
    for (const Pid pid : over) self().end(pid);
}

}  // namespace ravik::fakes
