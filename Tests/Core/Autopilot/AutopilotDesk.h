#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Core/Autopilot/Approvals.h"
#include "Core/Watch/Monitor.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::fakes {

/// A watcher on a machine in memory, whose applications idle, work and come to the front as a test says. It has
/// watched for long enough that an idle application counts as idle.
class AutopilotDesk {
public:
    AutopilotDesk() {
        monitor->watchFocus();
        tick();
        tick(31 * 60);
    }

    /// One process of an application.
    FakeProcess& app(Pid pid, const std::string& name, std::uint64_t mib = 300) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = 2;
        process.name = name;
        process.command = "/opt/" + name + "/" + name;
        process.started = machine.clock.now() - 10;
        process.footprintBytes = mib << 20;
        process.app = name;
        return machine.processes.add(process);
    }
    /// What an ended session left more than a day ago.
    FakeProcess& leftover(Pid pid) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = 1;
        process.name = "node";
        process.command = "/home/me/.npm/_npx/1/mcp-" + std::to_string(pid);
        process.started = machine.clock.now() - 25 * 3600;
        process.footprintBytes = 50 << 20;
        return machine.processes.add(process);
    }

    /// Percent of memory that could be handed out.
    void memory(unsigned percent) {
        machine.readings.memoryReading->availableBytes = machine.readings.installed / 100 * percent + 100;
    }
    void load(double average) { machine.readings.load = average; }
    void approve(const std::set<Decision::Action>& actions) { Approvals(machine.defaults).setActions(actions); }

    /// Lets time pass, then one tick.
    void tick(double seconds = 5) {
        machine.clock.advance(seconds);
        monitor->refresh();
        machine.loop.settle();
    }

    std::vector<nlohmann::json> lines(const std::string& kind) { return logFolder.lines(kind); }
    bool stopped(Pid pid) { return machine.processes.find(pid)->stopped; }
    bool demoted(Pid pid) { return machine.processes.find(pid)->demoted; }
    Time now() const { return machine.clock.now(); }

    FakeMachine machine;
    LogFolder logFolder{machine.clock};
    std::unique_ptr<Monitor> monitor =
        std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, Monitor::Role::watcher);
};

}  // namespace ravik::fakes
