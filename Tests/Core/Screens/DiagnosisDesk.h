#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Core/Screens/DiagnosisModel.h"
#include "Tests/Fakes/FakeAsker.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::fakes {

/// Lets its questions stand until they are answered.
class SlowAsker : public Asker {
public:
    Task<bool> ask(const Confirmation& question) override {
        titles.push_back(question.title);
        co_return co_await Callback<bool>([this](Callback<bool>::Resume resume) { open.push_back(std::move(resume)); });
    }
    void answer(std::size_t at, bool yes) { std::exchange(open.at(at), {})(yes); }
    /// No question is left standing: who asked it would never end.
    void leave() {
        for (std::size_t at = 0; at < open.size(); ++at) {
            if (open[at]) answer(at, false);
        }
    }

    std::vector<std::string> titles;
    std::vector<Callback<bool>::Resume> open;
};

/// A machine in memory, its Monitor and the Diagnosis screen over it.
class DiagnosisDesk : public testing::Test {
protected:
    DiagnosisDesk() { machine.clock.advance(100000); }
    void TearDown() override { slow.leave(); }

    /// A program that has lost its terminal.
    FakeProcess& orphan(Pid pid, const std::string& name, std::uint64_t megabytes = 100) {
        FakeProcess process;
        process.pid = pid;
        process.name = name;
        process.command = "/tmp/" + name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = megabytes * (1ull << 20);
        return machine.processes.add(process);
    }
    /// What an ended AI session left: all of it is one finding.
    FakeProcess& leftover(Pid pid, std::uint64_t megabytes = 100) {
        FakeProcess& process = orphan(pid, "node", megabytes);
        process.command = "/tmp/mcp-server-" + std::to_string(pid);
        return process;
    }
    void threeOrphans() {
        orphan(800, "big", 300);
        orphan(801, "middle", 200);
        orphan(802, "small", 100);
    }

    Monitor& monitor() {
        if (!m_monitor) {
            m_monitor =
                std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, Monitor::Role::watcher);
            m_monitor->readNow();
        }
        return *m_monitor;
    }
    void make(Asker& answers) {
        model = std::make_unique<DiagnosisModel>(monitor(), actions.emplace_back(monitor(), answers),
                                                 [this] { ++disksOpened; });
    }
    DiagnosisModel& made() {
        if (!model) make(asker);
        return *model;
    }
    void tick() {
        machine.clock.advance(5);
        monitor().readNow();
    }
    void letRun() { machine.loop.runFor(20); }

    const DiagnosisScreen& screen() { return made().screen(); }
    std::vector<std::string> cards() { return screen().cardIds(); }

    FakeMachine machine;
    LogFolder logFolder{machine.clock};
    FakeAsker asker;
    SlowAsker slow;
    int disksOpened = 0;

private:
    std::unique_ptr<Monitor> m_monitor;

protected:
    /// They outlive the questions that stand.
    std::deque<Actions> actions;
    std::unique_ptr<DiagnosisModel> model;
};

}  // namespace ravik::fakes
