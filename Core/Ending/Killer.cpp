#include "Core/Ending/Killer.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"

namespace ravik::Killer {

namespace {

constexpr double settleSeconds = 0.2;  // what KILL is given to take effect
constexpr double quitPollSeconds = 0.25;

bool isAutomation(Pid pid, const Platform& platform) {
    const auto command = platform.processes.commandLine(pid);
    return command && Rx::automationProfile().matches(*command);
}

bool hasName(const RunningApp& app, const std::string& name) {
    return !name.empty() && (app.bundleName == name || app.localizedName == name);
}

std::vector<VerifiedProcess> stillAlive(const std::vector<VerifiedProcess>& targets, const Signals& signals) {
    std::vector<VerifiedProcess> alive;
    std::ranges::copy_if(targets, std::back_inserter(alive), [&](const auto& one) { return signals.alive(one); });
    return alive;
}

/// The processes of an application that a person would mean by its name, and that still live.
std::vector<VerifiedProcess> ownProcesses(const std::string& name, const std::vector<Proc>& procs, const Host& host,
                                          const Signals& signals) {
    std::vector<VerifiedProcess> own;
    for (const Proc& proc : procs) {
        if (proc.uid != host.uid || Classifier::group(proc, host) != name) continue;
        if (Rx::automationProfile().matches(proc.command)) continue;
        if (auto process = signals.verify(proc)) own.push_back(std::move(*process));
    }
    return own;
}

Task<void> pause(double seconds, MainLoop& loop) {
    co_await Callback<bool>([&](auto resume) { loop.after(seconds, [resume] { resume(true); }); });
}

}  // namespace

bool isSame(const Proc& proc, const ProcessTable& table) {
    const auto started = table.startTime(proc.id);
    return started && *started == std::trunc(proc.started);
}

Pids descendants(Pid root, const std::vector<Proc>& procs) { return ProcessIndex(procs).descendants(root); }

Pids killTree(Pid root, const std::vector<Proc>& procs, double graceSeconds, const Host& host, const Signals& signals) {
    const ProcessIndex index(procs);
    const Proc* record = index.find(root);
    if (!record || record->uid != host.uid) return {root};
    if (!signals.verify(*record)) return {};

    std::vector<VerifiedProcess> targets;
    for (const std::size_t at : index.treePositions(root)) {
        if (procs[at].uid != host.uid) continue;
        if (auto process = signals.verify(procs[at])) targets.push_back(std::move(*process));
    }

    for (const VerifiedProcess& target : targets) signals.send(target, Signal::terminate);
    for (const VerifiedProcess& target : targets) {
        if (signals.stopped(target)) signals.send(target, Signal::resume);
    }
    signals.waitForExit(targets, graceSeconds);
    for (const VerifiedProcess& target : stillAlive(targets, signals)) signals.send(target, Signal::kill);
    signals.sleep(settleSeconds);

    Pids survivors;
    for (const VerifiedProcess& target : stillAlive(targets, signals)) survivors.push_back(target.pid());
    return survivors;
}

Task<bool> quitApp(std::string name, double timeoutSeconds, std::vector<Proc> procs, Host host, Platform& platform) {
    std::vector<RunningApp> matches;
    for (const RunningApp& app : platform.workspace.running()) {
        if (hasName(app, name) && !isAutomation(app.pid, platform)) matches.push_back(app);
    }
    const auto own = ownProcesses(name, procs, host, platform.signals);
    // Processes without an application that could be asked have not quit. On a Mac every application is listed.
    if (matches.empty()) co_return host.isMac() || own.empty();

    for (const VerifiedProcess& process : own) {
        if (platform.signals.stopped(process)) platform.signals.send(process, Signal::resume);
    }
    bool asked = false;
    for (const RunningApp& app : matches) asked = platform.workspace.terminate(app) || asked;
    if (!asked) co_return false;

    const auto anyLeft = [&] {
        return std::ranges::any_of(matches, [&](const auto& app) { return !platform.workspace.isTerminated(app); });
    };
    const double deadline = platform.clock.monotonic() + timeoutSeconds;
    while (platform.clock.monotonic() < deadline && anyLeft()) co_await pause(quitPollSeconds, platform.loop);
    co_return !anyLeft();
}

}  // namespace ravik::Killer
