#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "Core/Screens/PanelModel.h"
#include "Tests/Fakes/FakeMachine.h"
#include "Tests/Fakes/LogFolder.h"

namespace ravik::fakes {

using Ids = std::vector<std::string>;

/// Answers at once, or when a test says so.
class PatientAsker : public Asker {
public:
    Task<bool> ask(const Confirmation& question) override {
        asked.push_back(question);
        if (whileAsked) whileAsked();
        if (!held) co_return answer;
        Callback<bool> later([this](Callback<bool>::Resume resume) { m_resume = std::move(resume); });
        co_return co_await later;
    }
    void say(bool yes) { std::exchange(m_resume, {})(yes); }

    bool answer = true;
    /// The question stands until say().
    bool held = false;
    std::function<void()> whileAsked;
    std::vector<Confirmation> asked;

private:
    Callback<bool>::Resume m_resume;
};

/// A watcher on a machine in memory, and a panel that opens and closes on it.
class PanelDesk {
public:
    PanelDesk() {
        machine.clock.advance(100000);
        machine.platform.folders.log = logFolder.log.folder();
        machine.platform.folders.historyCache = cache.path();
        monitor = std::make_unique<Monitor>(machine.platform, logFolder.log, machine.host, Monitor::Role::watcher);
    }
    ~PanelDesk() { settle(); }

    /// A program that has lost its terminal.
    FakeProcess& orphan(Pid pid, const std::string& name = "server", std::uint64_t mib = 100) {
        FakeProcess process;
        process.pid = pid;
        process.name = name;
        process.command = "/tmp/" + name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = mib << 20;
        return machine.processes.add(process);
    }
    /// What an ended session left.
    FakeProcess& leftover(Pid pid) {
        FakeProcess& process = orphan(pid, "node");
        process.command = "/tmp/mcp-server-" + std::to_string(pid);
        return process;
    }
    /// An application of the user's.
    FakeProcess& application(Pid pid, const std::string& name, std::uint64_t mib = 300) {
        FakeProcess process;
        process.pid = pid;
        process.ppid = 2;
        process.name = name;
        process.command = "/opt/" + name + "/" + name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = mib << 20;
        process.app = name;
        return machine.processes.add(process);
    }
    /// "Foo" has been idle for long while memory is short.
    void suggestFoo() {
        tick();
        machine.clock.advance(31 * 60);
        application(60, "Foo");
        machine.readings.memoryReading->availableBytes = machine.readings.installed / 100 * 19 + 100;
        tick();
    }

    void settle() { machine.loop.runFor(0.2); }
    void tick() {
        machine.loop.runFor(5);
        monitor->refresh();
        machine.loop.settle();
    }

    void open() {
        model = std::make_unique<PanelModel>(*monitor, asker, [this, token = m_token]() -> Task<std::string> {
            Callback<std::string> bundle(
                [this](Callback<std::string>::Resume resume) { bundles.push_back(std::move(resume)); });
            co_return co_await bundle;
        });
        model->onChange([this, token = m_token] {
            ++changes;
            // Closing lets go of this very function.
            if (const auto then = onChange) then();
        });
    }
    void close() { model.reset(); }
    /// Nothing of a closed panel is left: neither its observer nor what it works with.
    bool everythingLetGo() const { return m_token.use_count() == 1; }

    const PanelScreen& screen() const { return model->screen(); }
    Ids rowIds() const {
        Ids ids;
        for (const auto& shown : screen().rows) ids.push_back(shown.id);
        return ids;
    }
    PanelScreen::Row row(const std::string& id) const {
        for (const auto& shown : screen().rows) {
            if (shown.id == id) return shown;
        }
        return {};
    }
    std::vector<nlohmann::json> lines(const std::string& kind) { return logFolder.lines(kind); }

    FakeMachine machine;
    LogFolder logFolder{machine.clock};
    TemporaryFolder cache;
    PatientAsker asker;
    std::deque<Callback<std::string>::Resume> bundles;
    std::unique_ptr<Monitor> monitor;
    std::unique_ptr<PanelModel> model;
    int changes = 0;
    /// What happens when the panel tells of a change.
    std::function<void()> onChange;

private:
    std::shared_ptr<int> m_token = std::make_shared<int>();
};

}  // namespace ravik::fakes
