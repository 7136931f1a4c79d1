#include "Core/Ending/Actions.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Safety.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Plain.h"

namespace ravik {

namespace {

std::string programs(std::size_t count) { return Fmt::plural(count, "program"); }

std::string withCaution(std::string message, const std::optional<std::string>& caution) {
    if (caution) message += fmt::format(" {}, so it may lose that work.", *caution);
    return message;
}

std::string leftRunning(const EndResult& result) { return fmt::format("Left running: {}.", text(result)); }

}  // namespace

Task<bool> Actions::ask(Confirmation question) {
    const bool confirmed =
        co_await askAndLog(m_asker, std::move(question), m_monitor.log(), m_monitor.platform().clock);
    if (!confirmed) m_outcome.kind = Outcome::Kind::cancelled;
    co_return confirmed;
}

void Actions::note(const EndResult& result) {
    if (const auto* ended = std::get_if<Ended>(&result)) {
        m_outcome.kind = Outcome::Kind::ended;
        m_outcome.survivors.insert(m_outcome.survivors.end(), ended->survivors.begin(), ended->survivors.end());
    } else {
        m_outcome.kind =
            std::holds_alternative<Refused>(result) ? Outcome::Kind::refused : Outcome::Kind::needsConfirmation;
    }
}

Task<std::optional<std::string>> Actions::run(Finding finding) {
    m_outcome = {};
    if (const KillTrees* kill = finding.kills()) {
        KillTrees remedy = *kill;
        co_return co_await endTrees(std::move(finding), std::move(remedy));
    }
    if (const QuitApp* quit = finding.quits()) {
        QuitApp remedy = *quit;
        co_return co_await quitApp(std::move(finding), std::move(remedy));
    }
    co_return std::nullopt;
}

Task<std::optional<std::string>> Actions::endTrees(Finding finding, KillTrees remedy) {
    const auto snapshot = m_monitor.shared();
    const Host& host = m_monitor.host();
    const ProcessIndex index(snapshot->processes);
    std::size_t members = 0;
    for (const Pid pid : remedy.pids) members += index.treePositions(pid).size();
    const std::size_t count = std::max(remedy.pids.size(), members);

    const CardFace face(finding, *snapshot, index, host, m_monitor.platform().clock.now());
    Confirmation question;
    question.title = fmt::format("End {}?", face.name);
    question.message = withCaution(fmt::format("Frees about {}.", Fmt::mb(finding.gainBytes)), finding.caution);
    question.verb = "End " + programs(count);
    question.ends = {{finding.tone(), face.name, Plain::sentence(finding, face, *snapshot, host),
                      Fmt::mb(finding.gainBytes), face.icon}};
    if (!co_await ask(std::move(question))) co_return std::nullopt;

    const Monitor::Fix fix(m_monitor);
    const EndResult result = co_await m_monitor.apply(finding, finding.caution.has_value(), snapshot);
    note(result);
    const auto* ended = std::get_if<Ended>(&result);
    if (!ended) co_return leftRunning(result);
    const auto gone = static_cast<std::int64_t>(count) - static_cast<std::int64_t>(ended->survivors.size());
    std::string line = resultLine(gone, ended->survivors, *snapshot, finding.gainBytes, {}, host);
    m_monitor.recordFix(line);
    co_return line;
}

Task<std::optional<std::string>> Actions::quitApp(Finding finding, QuitApp remedy) {
    const std::string& app = remedy.app;
    Confirmation question;
    question.title = fmt::format("Quit {}?", app);
    question.message = fmt::format(
        "Ravik asks {} to quit and waits up to 30 s. Most browsers restore their tabs when you reopen them.", app);
    question.verb = "Quit " + app;
    question.ends = {{Tone::safe, app, fmt::format("Only your own {}, never an automation copy.", app),
                      Fmt::mb(finding.gainBytes), AppIcons::icon(app, m_monitor.host())}};
    if (!co_await ask(std::move(question))) co_return std::nullopt;

    const Monitor::Fix fix(m_monitor);
    const EndResult result = co_await m_monitor.apply(finding, false);
    note(result);
    if (!std::holds_alternative<Ended>(result)) co_return text(result);
    std::string line = fmt::format("{} quit · about {}", app, Fmt::mb(finding.gainBytes));
    m_monitor.recordFix(line);
    co_return line;
}

Task<std::optional<std::string>> Actions::quit(std::string app, std::uint64_t bytes) {
    Finding finding;
    finding.id = "app:" + app;
    finding.title = fmt::format("{} holds {} GB", app, Fmt::gbByThousands(bytes));
    finding.remedy = QuitApp{app};
    finding.gainBytes = bytes;
    co_return co_await run(std::move(finding));
}

Task<std::optional<std::string>> Actions::end(Pid pid, std::string label) {
    m_outcome = {};
    const auto snapshot = m_monitor.shared();
    const Host& host = m_monitor.host();
    const ProcessIndex index(snapshot->processes);
    std::vector<Proc> tree = Safety::tree(pid, index);
    const Verdict verdict = Safety::check(tree, host);
    if (verdict.isNever()) {
        const EndResult refusal = Refused{verdict.reason};
        note(refusal);
        co_return leftRunning(refusal);
    }
    std::uint64_t total = 0;
    for (const Proc& proc : tree) total += proc.footprintBytes;
    std::optional<std::string> caution;
    if (verdict.isCaution()) caution = verdict.reason;

    Confirmation question;
    question.title = fmt::format("End {}?", label);
    question.message =
        withCaution(fmt::format("Ends {} together, about {}.", programs(tree.size()), Fmt::mb(total)), caution);
    question.verb = "End " + programs(tree.size());
    const auto members = static_cast<std::int64_t>(tree.size());
    std::ranges::stable_sort(tree, std::ranges::greater{}, &Proc::footprintBytes);
    const Time now = m_monitor.platform().clock.now();
    for (const Proc& proc : tree) {
        const std::string group = Classifier::group(proc, host);
        question.ends.push_back({caution ? Tone::caution : Tone::safe, group,
                                 "Running for " + Diagnoser::hours(now - proc.started), Fmt::mb(proc.footprintBytes),
                                 AppIcons::icon(group, host)});
    }
    if (!co_await ask(std::move(question))) co_return std::nullopt;

    const EndResult result = m_monitor.kill(pid, caution.has_value(), snapshot);
    note(result);
    const auto* ended = std::get_if<Ended>(&result);
    if (!ended) co_return leftRunning(result);
    const auto gone = members - static_cast<std::int64_t>(ended->survivors.size());
    co_return resultLine(gone, ended->survivors, *snapshot, total, {}, host);
}

Task<std::optional<std::string>> Actions::freeAll(std::function<void()> onConfirmed) {
    m_outcome = {};
    const auto snapshot = m_monitor.shared();
    const Host& host = m_monitor.host();
    std::vector<Finding> list;
    std::vector<std::string> ids;
    for (const Finding* finding : snapshot->freeable()) {
        list.push_back(*finding);
        ids.push_back(finding->id);
    }
    if (list.empty()) co_return std::nullopt;

    if (!co_await ask(freeConfirmation(*snapshot, host, m_monitor.platform().clock.now()))) {
        m_monitor.log().event("fixAll", {{"findings", ids}, {"cancelled", true}});
        co_return std::nullopt;
    }
    const Monitor::Fix fix(m_monitor);
    if (onConfirmed) onConfirmed();

    std::int64_t gone = 0;
    Pids survivors;
    std::vector<std::string> refused;
    for (const Finding& finding : list) {
        const EndResult result = co_await m_monitor.apply(finding, false, snapshot);
        if (const auto* ended = std::get_if<Ended>(&result)) {
            gone += static_cast<std::int64_t>(finding.kills()->pids.size()) -
                    static_cast<std::int64_t>(ended->survivors.size());
            survivors.insert(survivors.end(), ended->survivors.begin(), ended->survivors.end());
        } else {
            refused.push_back(text(result));
        }
    }
    note(Ended{survivors});
    if (refused.size() == list.size()) m_outcome.kind = Outcome::Kind::refused;
    m_monitor.log().event("fixAll", {{"findings", ids}, {"survivors", survivors}, {"refused", refused}});
    std::string line = resultLine(gone, survivors, *snapshot, snapshot->freeableBytes(), refused, host);
    m_monitor.recordFix(line);
    co_return line;
}

std::string Actions::resultLine(std::int64_t ended, const Pids& survivors, const Snapshot& snapshot,
                                std::uint64_t bytes, const std::vector<std::string>& refused, const Host& host) {
    std::string line =
        fmt::format("{} ended · {} survivor{}", ended, survivors.size(), survivors.size() == 1 ? "" : "s");
    if (survivors.empty()) {
        line += " · " + Fmt::mb(bytes);
    } else {
        const ProcessIndex index(snapshot.processes);
        std::vector<std::string> names;
        for (const Pid pid : survivors) {
            const Proc* proc = index.find(pid);
            names.push_back(proc ? fmt::format("{} (pid {})", Classifier::group(*proc, host), pid)
                                 : fmt::format("pid {}", pid));
        }
        line += fmt::format(": {} did not exit after KILL", fmt::join(names, ", "));
    }
    if (!refused.empty()) line += fmt::format(" · {} left running", refused.size());
    return line;
}

}  // namespace ravik
