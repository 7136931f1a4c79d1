#pragma once

#include <sstream>

#include <gtest/gtest.h>

#include "Cli/Parser.h"
#include "Tests/Fakes/FakeComputer.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::cli {

/// Calls commands on a machine in memory.
class CommandTest : public testing::Test {
protected:
    CommandTest() {
        machine.clock.advance(100000);
        machine.platform.folders.log = logFolder.log.folder();
    }

    struct Result {
        int status;
        std::string out;
        std::string err;
    };

    Result call(const std::vector<std::string>& words) {
        std::ostringstream out;
        if (outputIsBroken) out.setstate(std::ios::badbit);
        std::ostringstream err;
        std::istringstream in(input);
        Context context{computer, logFolder.log, machine.host, out, err, false, in};
        const int status = dispatch(context, words);
        return {status, out.str(), err.str()};
    }

    /// A program that has lost its terminal, 100 MB of it.
    fakes::FakeProcess& orphan(Pid pid, std::string name) {
        fakes::FakeProcess process;
        process.pid = pid;
        process.command = "/tmp/" + name;
        process.name = std::move(name);
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = 100ull << 20;
        return machine.processes.add(process);
    }

    /// What standard input holds.
    std::string input;
    /// Whatever is printed fails, as on a full disk.
    bool outputIsBroken = false;
    fakes::FakeComputer computer;
    fakes::FakeMachine& machine = computer.machine;
    fakes::LogFolder logFolder{machine.clock};
};

}  // namespace ravik::cli
