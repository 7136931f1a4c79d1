#include "Tests/Stage/Machines.h"

#include <string>

#include <fmt/format.h>

namespace ravik::stage {

namespace {

constexpr double hour = 3600;
constexpr double day = 24 * hour;

constexpr std::uint64_t megabytes(double count) { return static_cast<std::uint64_t>(count * (1 << 20)); }

/// Puts processes onto a machine.
class Furniture {
public:
    explicit Furniture(fakes::FakeMachine& machine) : m_machine(machine) {
        if (!machine.processes.find(1)) add(0, "systemd", "/usr/lib/systemd/systemd", 12, 9 * day, {}, 1);
        shell = add(1, "gnome-shell", "/usr/bin/gnome-shell", 310, 9 * day);
    }

    Pid add(Pid parent, const std::string& name, const std::string& command, double mb, double age,
            const std::string& app = {}, Pid pid = 0, double cpu = 0) {
        fakes::FakeProcess process;
        process.pid = pid;
        process.ppid = parent;
        process.uid = pid == 1 ? 0 : m_machine.host.uid;
        process.name = name;
        process.command = command;
        process.started = m_machine.clock.time - age;
        process.footprintBytes = megabytes(mb);
        process.cpuPercent = cpu;
        if (!app.empty()) process.app = app;
        return m_machine.processes.add(process).pid;
    }

    /// An application: its first process, and so many more of the same size.
    Pid application(const std::string& app, const std::string& name, const std::string& path, double mb, int others,
                    double eachMb, double age) {
        const Pid root = add(shell, name, path, mb, age, app);
        for (int other = 0; other < others; ++other) {
            add(root, name, fmt::format("{} --type=renderer --child={}", path, other), eachMb, age - other, app);
        }
        return root;
    }

    Pid shell = 0;

private:
    fakes::FakeMachine& m_machine;
};

void applications(Furniture& has) {
    has.application("Files", "nautilus", "/usr/bin/nautilus", 180, 0, 0, 2 * day);
    has.application("Thunderbird", "thunderbird", "/usr/lib/thunderbird/thunderbird", 620, 2, 110, 2 * day);
    has.application("Visual Studio Code", "code", "/usr/share/code/code", 540, 5, 290, 1.5 * day);
}

/// What a developer's machine holds besides.
void busyApplications(Furniture& has) {
    applications(has);
    has.application("Firefox", "firefox", "/usr/lib/firefox/firefox", 1160, 8, 475, 3 * day);
    has.application("Docker Desktop", "docker-desktop", "/opt/docker-desktop/Docker Desktop", 320, 3, 860, 2 * day);
    has.application("Blender", "blender", "/usr/bin/blender", 1340, 0, 0, 6 * hour);
}

void leftovers(Furniture& has) {
    const Pid hidden =
        has.add(1, "chromium", "/usr/lib/chromium/chromium --headless --user-data-dir=/tmp/puppeteer_dev_profile-Xb2",
                184, 7 * hour, "Chromium");
    for (int tab = 0; tab < 8; ++tab) {
        has.add(hidden, "chromium",
                fmt::format("/usr/lib/chromium/chromium --type=renderer --user-data-dir=/tmp/puppeteer_dev_profile-Xb2 "
                            "--client={}",
                            tab),
                66, 7 * hour, "Chromium");
    }
    for (int helper = 0; helper < 12; ++helper) {
        has.add(1, "node", fmt::format("node /home/mira/.npm/_npx/{}a7/node_modules/mcp-server/index.js", helper), 54,
                26 * hour);
    }
    has.add(1, "node", "node /home/mira/shop/server.js --port 4000", 486, 3 * day);
    const Pid vite = has.add(1, "node", "node /home/mira/shop/node_modules/.bin/vite --host", 312, 5 * hour, {}, 0, 92);
    has.add(vite, "esbuild", "/home/mira/shop/node_modules/esbuild/bin/esbuild --service", 48, 5 * hour);
    has.add(vite, "node", "node /home/mira/shop/node_modules/.bin/tailwind --watch", 61, 5 * hour);
    has.add(1, "postgres", "/home/mira/pg/bin/postgres -D /home/mira/pg/data", 92, 5 * day);
}

void memory(fakes::FakeMachine& machine, double freePercent) {
    machine.readings.memoryReading = MemoryReading{megabytes(16 * 1024 * freePercent / 100), 0, 4096};
}

}  // namespace

void furnishCalm(fakes::FakeMachine& machine) {
    Furniture has(machine);
    applications(has);
    memory(machine, 62);
}

void furnishLeftover(fakes::FakeMachine& machine) {
    Furniture has(machine);
    applications(has);
    has.add(1, "node", "node /home/mira/shop/server.js --port 4000", 486, 3 * day);
    memory(machine, 55);
}

void furnishBusy(fakes::FakeMachine& machine) {
    Furniture has(machine);
    busyApplications(has);
    leftovers(has);
    memory(machine, 7);
    machine.readings.swapUsed = megabytes(900);
}

void furnishCrowded(fakes::FakeMachine& machine) {
    furnishBusy(machine);
    Furniture has(machine);
    for (int one = 0; one < 14; ++one) {
        has.add(
            1, "node",
            fmt::format("node /home/mira/donaudampfschifffahrtsgesellschaft/kapitaenspatent-{}/server-{}.js", one, one),
            40 + one * 23, (one + 3) * hour);
    }
}

void furnishProcesses(fakes::FakeMachine& machine, int count) {
    Furniture has(machine);
    for (int one = 0; one < count; ++one) {
        has.add(has.shell, fmt::format("helper-{}", one / 4),
                fmt::format("/usr/bin/helper-{} --serve {}", one / 4, one), 12 + one % 40, hour + one);
    }
}

}  // namespace ravik::stage
