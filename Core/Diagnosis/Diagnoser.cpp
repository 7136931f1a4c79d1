#include "Core/Diagnosis/Diagnoser.h"

#include <algorithm>

#include <fmt/format.h>

#include "Core/Diagnosis/Causes/Causes.h"
#include "Core/Diagnosis/Rx.h"
#include "Core/Diagnosis/TreeJudge.h"

namespace ravik::Diagnoser {

namespace {

/// True if every process that the remedy would end is there and on the keep list.
bool allKept(const Pids& pids, const ProcessIndex& index, const KeepSet& keep) {
    return !keep.empty() && std::ranges::all_of(pids, [&](Pid pid) {
        const Proc* proc = index.find(pid);
        return proc && keep.contains(proc->command.str());
    });
}

Finding forbidden(Finding finding, std::string advice, std::string reason) {
    finding.severity = Finding::Severity::info;
    finding.remedy = Advice{std::move(advice)};
    finding.gainBytes = 0;
    finding.caution = std::nullopt;
    finding.neverReason = std::move(reason);
    return finding;
}

Finding gated(Finding finding, const ProcessIndex& index, const KeepSet& keep, TreeJudge& judge) {
    const KillTrees* kills = finding.kills();
    if (!kills) return finding;
    if (allKept(kills->pids, index, keep)) {
        return forbidden(std::move(finding), "Remove it from Settings › Kept running to let Free end it again.",
                         "on your Keep list — you asked Ravik to leave it running");
    }
    Verdict verdict = judge.check(kills->pids);
    if (verdict.isNever()) {
        return forbidden(std::move(finding), "Stop it from where it was started.", std::move(verdict.reason));
    }
    if (verdict.isCaution()) finding.caution = std::move(verdict.reason);
    return finding;
}

}  // namespace

std::vector<Finding> diagnose(const Snapshot& snapshot, const ProcessIndex& index, const Thresholds& limits,
                              std::uint64_t ramBytes, const KeepSet& keep, const Trend& trend, const Host& host,
                              Time now) {
    causes::Pass pass{snapshot, index, limits, ramBytes, keep, trend, host, now};
    causes::leftovers(pass);
    causes::automationBrowsers(pass);
    causes::databaseOrphans(pass);
    causes::otherOrphans(pass);
    causes::hogs(pass);
    causes::virtualMachines(pass);
    causes::browsers(pass);
    causes::holders(pass);
    causes::manySessions(pass);
    causes::thrash(pass);
    causes::lowDisk(pass);
    causes::indexing(pass);

    std::vector<Finding>& findings = pass.findings;
    for (Finding& finding : findings) finding = gated(std::move(finding), index, keep, pass.judge);
    std::ranges::stable_sort(findings, [](const Finding& a, const Finding& b) {
        return a.severity != b.severity ? a.severity > b.severity : a.gainBytes > b.gainBytes;
    });
    return std::move(findings);
}

Finding gate(const Finding& finding, const ProcessIndex& index, const KeepSet& keep, const Host& host) {
    TreeJudge judge(index, host);
    return gated(finding, index, keep, judge);
}

std::string hours(double seconds) {
    if (seconds < 3600) return causes::whole(seconds / 60) + " min";
    if (seconds < 172800) return causes::whole(seconds / 3600) + " h";
    return causes::whole(seconds / 86400) + " days";
}

std::string stopCommand(const Proc& proc, const Host& host) {
    static const Regex dataFolder(R"(-D \S+)");
    if (proc.name == "postgres" || proc.name == "postmaster") {
        if (const auto folder = dataFolder.find(proc.command)) {
            return fmt::format("Stop it gracefully: pg_ctl stop {} -m fast", *folder);
        }
    }
    return fmt::format("Stop it with its own tool ({}, or the command that started it) — never force-kill a database",
                       host.nouns().stopService);
}

}  // namespace ravik::Diagnoser
