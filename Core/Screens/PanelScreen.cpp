#include "Core/Screens/PanelScreen.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "Core/Watch/ProcessIndex.h"
#include "Core/Wording/AppInfo.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Words.h"

namespace ravik {

namespace {

using Action = Decision::Action;

constexpr std::size_t rowsShown = 3;
constexpr std::size_t resolvedShown = 2;

bool contains(const std::vector<std::string>& ids, const std::string& id) {
    return std::ranges::find(ids, id) != ids.end();
}

/// The findings in the places that they hold; those that held none where one has become free, else at the end.
std::vector<const Finding*> placed(const std::vector<const Finding*>& findings, const std::vector<std::string>& held) {
    std::vector<const Finding*> fresh;
    for (const Finding* finding : findings) {
        if (!contains(held, finding->id)) fresh.push_back(finding);
    }
    auto next = fresh.begin();
    std::vector<const Finding*> rows;
    for (const std::string& id : held) {
        if (const auto stays = std::ranges::find(findings, id, &Finding::id); stays != findings.end()) {
            rows.push_back(*stays);
        } else if (next != fresh.end()) {
            rows.push_back(*next++);
        }
    }
    rows.insert(rows.end(), next, fresh.end());
    return rows;
}

/// The findings that are not done, as many as there is room for, in the order of the rows.
std::vector<const Finding*> pending(const Snapshot& snapshot, const PanelMemory& memory) {
    std::vector<const Finding*> findings;
    for (const Finding& finding : snapshot.findings) {
        const bool isDone =
            std::ranges::any_of(memory.done, [&](const auto& done) { return done.finding.id == finding.id; });
        if (!isDone) findings.push_back(&finding);
    }
    const std::size_t left = rowsShown - std::min(rowsShown - 1, memory.done.size());
    if (findings.size() > left) {
        const auto pointed = std::ranges::find(findings, memory.pointed, &Finding::id);
        if (pointed != findings.end() && contains(memory.held, memory.pointed)) {
            std::iter_swap(std::min(pointed, findings.begin() + static_cast<std::ptrdiff_t>(left) - 1), pointed);
        }
        findings.resize(left);
    }
    return memory.held.empty() ? findings : placed(findings, memory.held);
}

PanelScreen::Row resolvedRow(const PanelMemory::Done& done) {
    PanelScreen::Row row;
    row.id = done.finding.id;
    row.resolved = ResolvedFace(done.line);
    row.icon = done.icon;
    row.sentence = done.line;
    return row;
}

PanelScreen::Row row(const Finding& finding, const PanelSource& source, const PanelMemory& memory,
                     const ProcessIndex& index) {
    const CardFace face(finding, source.snapshot, index, source.host, source.now);
    PanelScreen::Row row;
    row.id = finding.id;
    row.icon = face.icon;
    row.name = Plain::name(finding, face, source.host);
    row.sentence = Plain::sentence(finding, face, source.snapshot, source.host);
    row.amount = Fmt::mb(finding.gainBytes);
    row.verdict = VerdictFace(finding.tone());
    row.button = Words::remedyLabel(finding, index);
    if (row.button) row.help = face.does;
    row.isEnabled = row.button && !memory.running && !contains(memory.underWay, finding.id);
    row.hasKeep = keepable(finding, index).has_value();
    if (row.hasKeep && contains(memory.unkept, finding.id)) row.keepNote = keepFailure;
    return row;
}

PanelScreen::Suggestion suggestion(const Decision& decision, const Host& host) {
    const bool pauses = decision.action == Action::pause;
    PanelScreen::Suggestion row;
    row.id = suggestionId(decision);
    row.icon = AppIcons::icon(decision.target, host);
    row.title = (pauses ? "pause " : "slow ") + decision.target;
    row.reason = decision.reason;
    if (decision.gainBytes > 0) row.reason += " · " + Fmt::mb(decision.gainBytes);
    row.acceptHelp = pauses ? "Pauses it now. Undo for ten minutes, and it resumes the moment you go to it."
                            : "Lowers its priority now. Undo for ten minutes.";
    row.dismissHelp = "Teaches it: not offered again for a day, and counted as a wrong call";
    return row;
}

PanelScreen::Live liveRow(const LiveAction& action) {
    const bool pauses = action.decision.action == Action::pause;
    return {.id = action.id,
            .word = pauses ? "Paused" : "Demoted",
            .target = action.decision.target,
            .timeLeft = {},
            .undoHelp = pauses ? "Resumes it now" : "Gives its priority back now"};
}

}  // namespace

std::string memoryScaleLine(const MemoryPicture& picture) {
    const std::uint64_t held = picture.held();
    const std::string used = Fmt::gbByThousands(held);
    if (picture.ram >= held) return fmt::format("{} of {} used", used, Fmt::ram(picture.ram));
    return fmt::format("{} GB used — {} GB spilled to disk", used, Fmt::gbByThousands(held - picture.ram));
}

std::optional<std::string> keepable(const Finding& finding, const ProcessIndex& index) {
    const KillTrees* kill = finding.kills();
    if (!finding.id.starts_with("orphan:") || !kill || kill->pids.empty()) return std::nullopt;
    const Proc* proc = index.find(kill->pids.front());
    if (!proc || proc->command.view().empty()) return std::nullopt;
    return proc->command.str();
}

std::string suggestionId(const Decision& decision) {
    return fmt::format("{}:{}", ravik::word(decision.action), decision.target);
}

std::string PanelScreen::Row::spoken() const {
    if (resolved) return sentence;
    return fmt::format("{}. {}. {} {}", name, verdict.spoken(), sentence, amount);
}

PanelScreen::PanelScreen(const PanelSource& source, const PanelMemory& memory) {
    const Snapshot& snapshot = source.snapshot;
    const Nouns& nouns = source.host.nouns();
    if (!snapshot.sampled) {
        middle = Middle::pending;
        title = Pending::title(source.host);
    } else {
        header.tooltip = fmt::format("Read at {}; Ravik reads {} every {:.0f} s", AppInfo::clock(snapshot.takenAt),
                                     nouns.yourMachine, std::trunc(source.interval));
        const ProcessIndex index(snapshot.processes);
        showMemory(source, index);
        if (snapshot.findings.empty() && !memory.result && memory.done.empty()) {
            middle = Middle::calm;
            title = fmt::format("{} is fine — nothing to free", nouns.yourMachineCap);
        } else {
            middle = Middle::findings;
            showFindings(source, memory, index);
        }
    }
    showAutopilot(source);
    week = memory.week;
    footer.feedback = memory.feedback.value_or(std::string(feedbackLabel));
    footer.canSendFeedback = !memory.isBuildingFeedback;
    footer.quitKey = nouns.quitChord;
    tellTime(source);
}

void PanelScreen::showMemory(const PanelSource& source, const ProcessIndex& index) {
    picture = MemoryPicture(source.snapshot, index, source.ramBytes, topApps, source.host);
    scaleLine = memoryScaleLine(picture);
}

void PanelScreen::showFindings(const PanelSource& source, const PanelMemory& memory, const ProcessIndex& index) {
    const Snapshot& snapshot = source.snapshot;
    hero = ReadoutFace::amount(snapshot.reclaimableBytes());
    legend = memoryLegend(source.ramBytes, picture.quitBytes() > 0, source.host);
    free = FreeButtonFace(snapshot.freeableBytes(), memory.running);
    result = memory.result;
    gapLine = Words::gapLine(snapshot);
    const std::size_t first = memory.done.size() - std::min(memory.done.size(), resolvedShown);
    for (std::size_t at = first; at < memory.done.size(); ++at) rows.push_back(resolvedRow(memory.done[at]));
    for (const Finding* finding : pending(snapshot, memory)) rows.push_back(row(*finding, source, memory, index));
    if (snapshot.findings.size() > rowsShown) {
        more = fmt::format("+ {} more in Ravik", snapshot.findings.size() - rowsShown);
    }
}

void PanelScreen::showAutopilot(const PanelSource& source) {
    for (const Decision& decision : source.suggestions) suggestions.push_back(suggestion(decision, source.host));
    for (const LiveAction& action : source.live) live.push_back(liveRow(action));
    if (!live.empty()) return;
    autopilotLine = source.rulesOn > 0
                        ? fmt::format("Autopilot · {} on · nothing to undo", Fmt::plural(source.rulesOn, "rule"))
                        : "Autopilot is learning — not acting yet";
}

std::optional<Time> PanelScreen::tellTime(const PanelSource& source) {
    std::optional<Time> next;
    const auto tell = [&](const LiveText& text) {
        if (text.until > source.now) next = std::min(next.value_or(text.until), text.until);
        return text.text;
    };
    if (source.snapshot.sampled) {
        header.checked = fmt::format("checked {} ago", tell(ago(source.snapshot.takenAt, source.now)));
    }
    for (Live& row : live) {
        const auto action = std::ranges::find(source.live, row.id, &LiveAction::id);
        if (action == source.live.end()) continue;
        row.timeLeft = tell(minutesLeft(action->at + LiveLedger::undoSeconds, source.now));
    }
    return next;
}

}  // namespace ravik
