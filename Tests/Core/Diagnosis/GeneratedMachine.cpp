#include "Tests/Core/Diagnosis/GeneratedMachine.h"

#include <random>

#include "Core/Diagnosis/Classifier.h"

namespace ravik::fakes {

namespace {

constexpr const char* commands[] = {
    "/Users/me/.npm/_npx/1/node_modules/.bin/mcp-server",
    "/home/me/.cache/mcp/run --port 7",
    "node /home/me/.npm/_npx/2/playwright-mcp/cli.js",
    "/usr/bin/node /home/me/src/server.js",
    "/home/me/bin/backup.sh",
    "/tmp/tool",
    "python3 -m http.server",
    "/usr/bin/python3 /usr/bin/pip install x",
    "npm install",
    "npm run dev",
    "claude --resume",
    "/Users/me/.local/share/claude/versions/2.1.4 --print",
    "codex",
    "/opt/bin/git fetch",
    "/opt/pg/bin/postgres -D /opt/data",
    "/opt/bin/redis-server",
    "/usr/libexec/trustd",
    "/usr/lib/systemd/systemd-logind",
    "/System/Applications/Mail.app/Contents/MacOS/Mail",
    "/Applications/Google Chrome.app/Contents/MacOS/Google Chrome",
    "/Applications/Google Chrome.app/Contents/MacOS/Google Chrome --user-data-dir=/tmp/puppeteer_1",
    "/Applications/Docker.app/Contents/MacOS/com.docker.backend",
    "/Applications/Cursor.app/Contents/MacOS/Cursor",
    "/Applications/Cursor.app/Contents/Cursor Helper (Plugin) --utility-sub-type=node.mojom.NodeService",
    "/opt/qemu-system-x86_64 -m 8192",
    "mds_stores",
    "/usr/libexec/tracker-miner-fs-3",
    "/opt/bin/cc1plus -O2",
    "/bin/zsh",
    "",
};
constexpr const char* apps[] = {"Google Chrome", "Firefox", "Files", "Draw"};

class Dice {
public:
    explicit Dice(std::uint32_t seed) : m_engine(seed) {}

    std::uint32_t below(std::uint32_t end) { return m_engine() % end; }
    bool in(std::uint32_t count) { return below(count) == 0; }
    template <typename T, std::size_t Count>
    T oneOf(T (&values)[Count]) {
        return values[below(Count)];
    }

private:
    std::mt19937 m_engine;
};

Proc generatedProc(Dice& dice, Pid pid, Pid highest, const Host& host) {
    Making making(pid, dice.oneOf(commands));
    making.uid(dice.in(8) ? 0 : host.uid).age(dice.below(40) * 1800.0);
    if (dice.in(3)) {
        making.parent(1);
    } else {
        making.parent(static_cast<Pid>(100 + dice.below(static_cast<std::uint32_t>(highest - 98))));
    }
    const std::uint64_t sizes[] = {0, 5 * MiB, 80 * MiB, 700 * MiB, 3 * GiB, 9 * GiB + 12345};
    making.bytes(sizes[dice.below(6)]);
    const double loads[] = {0, 0, 0, 1.5, 4.9, 5, 30.1, 50, 230.5};
    making.cpu(loads[dice.below(9)]);
    if (!host.isMac() && dice.in(6)) making.app(dice.oneOf(apps));
    return making;
}

}  // namespace

Machine generatedMachine(std::uint32_t seed) {
    Dice dice(seed);
    Machine machine;
    machine.host = dice.in(2) ? macHost() : linuxHost();
    const Pid count = static_cast<Pid>(1 + dice.below(60));
    for (Pid pid = 100; pid < 100 + count; ++pid) {
        machine.procs.push_back(generatedProc(dice, pid, 100 + count, machine.host));
        const Proc& proc = machine.procs.back();
        if (dice.in(3)) machine.trend.busySince[pid] = now - dice.below(20) * 900.0;
        if (dice.in(12)) machine.managed.insert(pid);
        if (dice.in(15)) machine.host.engaged.insert(pid);
        if (dice.in(20)) machine.host.adopters.insert(pid);
        if (dice.in(12)) machine.keep.insert(proc.command.str());
    }
    if (dice.in(2)) machine.press();
    if (dice.in(4)) machine.stats.swapOutBytesPerSec = 50 * 0x1p20;
    if (dice.in(4)) machine.stats.diskFreeBytes = 3 * GiB;
    for (Time at = now - 900; at < now && !dice.in(6); at += 60) {
        Trend::Sample sample{at, {}};
        for (const Proc& proc : machine.procs) {
            if (dice.in(2)) sample.bytes[Classifier::group(proc, machine.host)] = dice.below(2000) * MiB;
        }
        machine.trend.held.push_back(std::move(sample));
    }
    return machine;
}

bool hasCycle(const std::vector<Proc>& procs) {
    const ProcessIndex index(procs);
    for (const Proc& proc : procs) {
        const Proc* above = index.find(proc.ppid);
        for (std::size_t steps = 0; above && steps < procs.size(); ++steps) above = index.find(above->ppid);
        if (above) return true;
    }
    return false;
}

}  // namespace ravik::fakes
