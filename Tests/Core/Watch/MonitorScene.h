#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "Core/Watch/Monitor.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::fakes {

constexpr std::uint64_t mib = 1ull << 20;

/// A monitor on a machine in memory, whose own process is pid 50.
class MonitorScene : public testing::Test {
protected:
    MonitorScene() {
        machine.clock.advance(100000);
        machine.host.pid = 50;
        add(50, "ravik").command = "/opt/ravik/bin/ravik-desktop";
    }

    FakeProcess& add(Pid pid, std::string name, std::uint64_t bytes = 10 * mib) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = 2;
        process.command = "/srv/" + name;
        process.name = std::move(name);
        process.started = machine.clock.now() - 10;
        process.footprintBytes = bytes;
        return machine.processes.add(process);
    }

    FakeProcess& orphan(Pid pid, std::string name) {
        FakeProcess& process = add(pid, std::move(name), 100 * mib);
        process.ppid = 1;
        process.started = machine.clock.now() - 7200;
        return process;
    }

    std::unique_ptr<Monitor> make(Monitor::Role role = Monitor::Role::watcher) {
        return std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, role);
    }

    FakeMachine machine;
    LogFolder logFolder{machine.clock};
};

}  // namespace ravik::fakes
