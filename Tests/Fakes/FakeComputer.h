#pragma once

#include <deque>
#include <map>

#include "Platform/Computer.h"
#include "Tests/Fakes/FakeMachine.h"

namespace ravik::fakes {

/// A terminal whose answers are typed beforehand.
class FakeTerminal : public Terminal {
public:
    bool canAsk() const override { return interactive; }
    bool isOutput() const override { return interactive; }
    bool hasLostReader() const override { return lostReader; }
    int columns() const override { return 80; }
    std::optional<std::string> readLine(const std::function<void()>& prompt) override {
        prompt();
        if (typed.empty()) return {};
        auto line = typed.front();
        typed.pop_front();
        return line;
    }

    bool interactive = true;
    bool lostReader = false;
    /// Absent: the end of input, or Ctrl-C.
    std::deque<std::optional<std::string>> typed;
};

/// A machine in memory as a command sees it.
class FakeComputer : public Computer {
public:
    Platform& platform() override { return machine.platform; }
    Terminal& terminal() override { return fakeTerminal; }
    bool isMac() const override { return false; }
    std::uint32_t uid() const override { return machine.host.uid; }
    Pid pid() const override { return machine.host.pid; }
    std::optional<std::string> environment(const char* name) const override {
        const auto hit = variables.find(name);
        if (hit == variables.end()) return {};
        return hit->second;
    }
    void onTermination(std::function<void()> handler) override { terminate = std::move(handler); }
    void releaseMemory() override {
        ++releases;
        if (onRelease) onRelease();
    }
    std::string osRelease() const override { return "ID=debian\nVERSION_ID=\"12\"\n"; }

    FakeMachine machine;
    FakeTerminal fakeTerminal;
    std::map<std::string, std::string> variables;
    std::function<void()> terminate;
    int releases = 0;  // of memory
    std::function<void()> onRelease;
};

}  // namespace ravik::fakes
