// The fixes of Monitor: the last look, the gate, the signals, and what is written down about them.
#include <cmath>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Base/Iso8601.h"
#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Safety.h"
#include "Core/Ending/Killer.h"
#include "Core/Ending/LastLook.h"
#include "Core/Watch/Monitor.h"
#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

constexpr double graceSeconds = 3.0;
constexpr double quitSeconds = 30.0;

std::optional<std::string> foreign(const Pids& pids, const std::vector<Proc>& procs, const Host& host) {
    const ProcessIndex index(procs);
    for (const Pid pid : pids) {
        const Proc* proc = index.find(pid);
        if (proc && proc->uid != host.uid) {
            return Classifier::group(*proc, host) + " is not yours: listed, never ended";
        }
    }
    return {};
}

std::vector<Proc> trees(const Pids& pids, const std::vector<Proc>& procs) {
    const ProcessIndex index(procs);
    std::vector<Proc> joined;
    for (const Pid pid : pids) std::ranges::copy(Safety::tree(pid, index), std::back_inserter(joined));
    return joined;
}

/// Whether the gate holds a result back: nothing if it may go ahead.
std::optional<EndResult> barred(const Verdict& verdict, bool cautionConfirmed) {
    if (verdict.isNever()) return Refused{verdict.reason};
    if (verdict.isCaution() && !cautionConfirmed) return NeedsConfirmation{verdict.reason};
    return {};
}

/// The gate on what the machine says now.
std::optional<EndResult> barredNow(const Pids& pids, const LastLook& look, bool cautionConfirmed, const Host& host,
                                   const Signals& signals) {
    if (auto reason = foreign(pids, look.procs, host)) return Refused{std::move(*reason)};
    if (auto result = barred(Safety::check(look.trees, host), cautionConfirmed)) return result;
    for (const Proc& proc : look.trees) {
        // Nobody would be left to wait, to send KILL and to resume what is paused.
        if (host.pid == 0 || proc.id != host.pid) continue;
        return Refused{fmt::format("Ravik itself runs in it (pid {})", proc.id)};
    }
    for (const Proc& proc : look.unread) {
        if (proc.uid != host.uid || !signals.verify(proc)) continue;
        return Refused{fmt::format("{} could not be checked again (pid {})", Classifier::group(proc, host), proc.id)};
    }
    return {};
}

/// Without the pids that were not these processes' in the picture that the user was asked about: the ones that were
/// meant have gone.
Pids stillMeant(Pids pids, const Snapshot& asked, const Snapshot& current) {
    if (&asked == &current) return pids;
    const ProcessIndex then(asked.processes);
    const ProcessIndex now(current.processes);
    std::erase_if(pids, [&](Pid pid) {
        const Proc* present = now.find(pid);
        const Proc* meant = then.find(pid);
        return present && !(meant && sameLife(*meant, *present));
    });
    return pids;
}

void addOutcome(nlohmann::json& line, const EndResult& result) {
    if (const auto* ended = std::get_if<Ended>(&result)) line["survivors"] = ended->survivors;
    if (const auto* refused = std::get_if<Refused>(&result)) line["refused"] = refused->reason;
    if (const auto* needs = std::get_if<NeedsConfirmation>(&result)) line["needsConfirmation"] = needs->caution;
}

}  // namespace

EndResult Monitor::end(const Pids& pids, const std::vector<Proc>& procs, bool cautionConfirmed, const Host& host,
                       const ProcessTable& table, const Signals& signals) {
    if (auto reason = foreign(pids, procs, host)) return Refused{std::move(*reason)};
    if (auto result = barred(Safety::check(trees(pids, procs), host), cautionConfirmed)) return *result;

    LastLook look = lastLook(pids, procs, table);
    if (auto result = barredNow(pids, look, cautionConfirmed, host, signals)) return *result;

    Ended ended;
    for (std::size_t at = 0; at < pids.size(); ++at) {
        if (at > 0) {
            // The trees before this one took their time to end; what has become forbidden since is left running.
            look = lastLook({pids[at]}, procs, table);
            if (barredNow({pids[at]}, look, cautionConfirmed, host, signals)) {
                ended.survivors.push_back(pids[at]);
                continue;
            }
        }
        const Pids left = Killer::killTree(pids[at], look.procs, graceSeconds, host, signals);
        ended.survivors.insert(ended.survivors.end(), left.begin(), left.end());
    }
    return ended;
}

Task<EndResult> Monitor::apply(Finding finding, bool cautionConfirmed, std::shared_ptr<const Snapshot> asked) {
    const auto before = m_snapshot;
    EndResult result = Refused{"nothing to run"};
    if (const QuitApp* quit = finding.quits()) {
        const bool gone = co_await Killer::quitApp(quit->app, quitSeconds, before->processes, m_host, m_platform);
        if (gone) {
            result = Ended{};
        } else {
            result = Refused{quit->app + " did not quit. Check it for a prompt."};
        }
    } else if (const KillTrees* kill = finding.kills()) {
        // Three seconds of patience must not hold up the loop.
        const Pids meant = asked ? stillMeant(kill->pids, *asked, *before) : kill->pids;
        const auto work = [before, pids = meant, cautionConfirmed, host = m_host, &platform = m_platform] {
            return end(pids, before->processes, cautionConfirmed, host, platform.processes, platform.signals);
        };
        Callback<EndResult> beside([&loop = m_platform.loop, work](const Callback<EndResult>::Resume& resume) {
            loop.background([&loop, work, resume] { loop.post([resume, ended = work()] { resume(ended); }); });
        });
        result = co_await beside;
    } else {
        co_return result;
    }

    nlohmann::json line{{"finding", finding.id}, {"gainMB", Fmt::wholeMB(finding.gainBytes)}};
    addOutcome(line, result);
    if (finding.quits()) line["quit"] = std::holds_alternative<Ended>(result);
    m_log.event("remedy", line);
    if (ticks()) refresh();
    co_return result;
}

EndResult Monitor::kill(Pid pid, bool cautionConfirmed, const std::shared_ptr<const Snapshot>& asked) {
    const auto before = m_snapshot;
    const ProcessIndex index(before->processes);
    const Pids meant = asked ? stillMeant({pid}, *asked, *before) : Pids{pid};
    EndResult result =
        end(meant, before->processes, cautionConfirmed, m_host, m_platform.processes, m_platform.signals);

    const Proc* proc = index.find(pid);
    nlohmann::json line{
        {"pid", pid},
        {"group", proc ? Classifier::group(*proc, m_host) : "?"},
        {"cmd", proc ? std::string(Fmt::firstScalars(proc->command, 120)) : ""},
        {"ageH", proc ? (m_platform.clock.now() - proc->started) / 3600.0 : -1.0},
        {"mb", proc ? Fmt::wholeMB(proc->footprintBytes) : 0},
        {"children", index.descendants(pid).size()},
    };
    addOutcome(line, result);
    if (std::holds_alternative<Ended>(result) && ticks()) refresh();
    m_log.event("kill", line);
    return result;
}

void Monitor::endLeftovers(const Snapshot& snapshot) {
    if (!m_thresholds.autoEndLeftovers) return;
    const auto ended = std::ranges::find(snapshot.sessions, false, &AgentSession::alive);
    if (ended == snapshot.sessions.end()) return;

    const KeepSet kept = keep();
    const ProcessIndex index(snapshot.processes);
    const Time now = m_platform.clock.now();
    Pids pids;
    std::uint64_t bytes = 0;
    for (const Proc& member : ended->members) {
        if (kept.contains(member.command.str())) continue;
        if (now - member.started < m_thresholds.autoLeftoverMinHours * 3600.0) continue;
        if (!Safety::check(Safety::tree(member.id, index), m_host).isSafe()) continue;
        pids.push_back(member.id);
        bytes += member.footprintBytes;
    }
    if (pids.empty()) return;

    const EndResult result = end(pids, snapshot.processes, false, m_host, m_platform.processes, m_platform.signals);
    if (const auto* done = std::get_if<Ended>(&result)) {
        m_log.event("autopilot", {{"ended", pids.size()}, {"mb", Fmt::wholeMB(bytes)}, {"survivors", done->survivors}});
    }
}

void Monitor::recordFix(const std::string& line) {
    m_lastFix = LastFix{m_platform.clock.now(), line};
    m_platform.defaults.set("lastFix", {{"at", Iso8601::format(m_lastFix->at)}, {"line", line}});
    publish(Change::lastFix);
}

void Monitor::loadLastFix() {
    const auto stored = m_platform.defaults.get("lastFix");
    if (!stored || !stored->is_object()) return;
    const auto at = stored->find("at");
    const auto line = stored->find("line");
    if (at == stored->end() || line == stored->end() || !at->is_string() || !line->is_string()) return;
    const auto time = Iso8601::parse(at->get<std::string>());
    if (!time) return;
    const LastFix fix{*time, line->get<std::string>()};
    // The stored time is cut to the second: the own fix, read back, is no news.
    if (m_lastFix && m_lastFix->line == fix.line && std::floor(m_lastFix->at) == fix.at) return;
    m_lastFix = fix;
    publish(Change::lastFix);
}

}  // namespace ravik
