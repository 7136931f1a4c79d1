#include "Core/Screens/DiagnosisModel.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Diagnosis/KeepList.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Words.h"

namespace ravik {

namespace {

/// A reading that is made while the last program ends may still show it.
constexpr double settled = 1;

std::string runningLine(const Finding& finding, const std::string& name, const std::string& label) {
    if (const QuitApp* quit = finding.quits()) return fmt::format("Asking {} to quit…", quit->app);
    if (label.starts_with("Restart")) return fmt::format("Restarting the extensions of {}…", name);
    return fmt::format("Ending {}…", name);
}

/// Nothing in it that was not acted on.
bool isCovered(const Finding& now, const Finding& then) {
    const KillTrees* left = now.kills();
    const KillTrees* acted = then.kills();
    if (!left || !acted) return true;
    return std::ranges::all_of(left->pids,
                               [&](Pid pid) { return std::ranges::find(acted->pids, pid) != acted->pids.end(); });
}

/// Something that was acted on is still in it. One that has come to be left alone names no process: it is there.
bool shares(const Finding& now, const Finding& then) {
    const KillTrees* left = now.kills();
    const KillTrees* acted = then.kills();
    if (!left || !acted) return acted != nullptr;
    return std::ranges::any_of(left->pids,
                               [&](Pid pid) { return std::ranges::find(acted->pids, pid) != acted->pids.end(); });
}

}  // namespace

DiagnosisModel::DiagnosisModel(Monitor& monitor, Actions& actions, std::function<void()> openDisk)
    : m_monitor(monitor),
      m_actions(actions),
      m_openDisk(std::move(openDisk)),
      m_self(std::make_shared<DiagnosisModel*>(this)) {
    if (const auto stored = m_monitor.platform().defaults.get(modeKey); stored && stored->is_string()) {
        m_state.mode = parseDiagnosisMode(stored->get<std::string>()).value_or(m_state.mode);
    }
    m_subscription = m_monitor.observe([this](Monitor::Change change) {
        using Change = Monitor::Change;
        if (change == Change::snapshot) return take(m_monitor.shared());
        if (change == Change::lastFix || change == Change::notifications) refresh();
    });
    take(m_monitor.shared());
}

DiagnosisModel::~DiagnosisModel() = default;

ScreenInput DiagnosisModel::input() const {
    return {.snapshot = *m_snapshot,
            .index = *m_index,
            .host = m_monitor.host(),
            .ram = m_monitor.ramBytes(),
            .now = m_monitor.platform().clock.now(),
            .hasDisk = static_cast<bool>(m_openDisk)};
}

const Finding* DiagnosisModel::find(const std::string& id) const {
    const auto hit = std::ranges::find(m_snapshot->findings, id, &Finding::id);
    return hit == m_snapshot->findings.end() ? nullptr : &*hit;
}

DiagnosisModel::Subject DiagnosisModel::subject(const Finding& finding) const {
    const ScreenInput in = input();
    const CardFace face(finding, in.snapshot, in.index, in.host, in.now);
    return {finding, Plain::name(finding, face, in.host), face.icon};
}

int DiagnosisModel::start(std::string line, const std::vector<Subject>& subjects) {
    const int number = ++m_lastNumber;
    m_state.running = line;
    m_running.push_back({number, std::move(line)});
    for (const Subject& subject : subjects) m_state.ending.insert(subject.finding.id);
    refresh();
    return number;
}

void DiagnosisModel::finish(int number, const std::vector<Subject>& subjects) {
    std::erase_if(m_running, [&](const Running& running) { return running.number == number; });
    m_state.running = m_running.empty() ? std::nullopt : std::optional(m_running.back().line);
    for (const Subject& subject : subjects) m_state.ending.erase(subject.finding.id);
}

void DiagnosisModel::resolve(Subject subject, std::string line, bool byFree) {
    m_state.done.push_back({.finding = std::move(subject.finding),
                            .line = std::move(line),
                            .name = std::move(subject.name),
                            .icon = std::move(subject.icon),
                            .number = ++m_lastNumber,
                            .at = m_monitor.platform().clock.now(),
                            .byFree = byFree});
}

void DiagnosisModel::run(const std::string& id) {
    const Finding* finding = find(id);
    if (!finding || m_state.ending.contains(id) || m_state.isDone(id)) return;
    if (std::holds_alternative<ScanDisk>(finding->remedy)) {
        if (m_openDisk) m_openDisk();
        return;
    }
    const auto label = Words::remedyLabel(*finding, *m_index);
    if (!label) return;
    const std::vector<Subject> subjects{subject(*finding)};
    const std::weak_ptr<DiagnosisModel*> self = m_self;
    auto task = m_actions.run(*finding);
    const int number = start(runningLine(*finding, subjects.front().name, *label), subjects);
    spawn(std::move(task), [self, number, subjects](std::optional<std::string> line) {
        const auto alive = self.lock();
        if (!alive) return;
        DiagnosisModel& model = **alive;
        model.finish(number, subjects);
        if (line) {
            model.m_state.result.reset();
            model.resolve(subjects.front(), std::move(*line), false);
        }
        model.refresh();
    });
}

void DiagnosisModel::runSelected() {
    if (m_state.selected && m_state.mode == DiagnosisState::Mode::cards) run(std::string(*m_state.selected));
}

void DiagnosisModel::free() {
    if (m_state.running) return;
    std::vector<Subject> subjects;
    std::uint64_t count = 0;
    for (const Finding* finding : m_snapshot->freeable()) {
        subjects.push_back(subject(*finding));
        count += finding->kills()->pids.size();
    }
    if (subjects.empty()) return;
    const std::weak_ptr<DiagnosisModel*> self = m_self;
    auto task = m_actions.freeAll({});
    m_state.freeing = "Ending " + Fmt::plural(count, "process");
    const int number = start(*m_state.freeing, subjects);
    spawn(std::move(task), [self, number, subjects](std::optional<std::string> line) {
        const auto alive = self.lock();
        if (!alive) return;
        DiagnosisModel& model = **alive;
        model.finish(number, subjects);
        model.m_state.freeing.reset();
        if (line) {
            model.m_state.result = std::move(line);
            for (const Subject& each : subjects) model.resolve(each, "Ended with Free", true);
        }
        model.refresh();
    });
}

void DiagnosisModel::setMode(DiagnosisState::Mode mode) {
    if (mode == m_state.mode) return;
    m_state.mode = mode;
    // The rows that the pointer was over go, and say nothing.
    m_isPointerOver = false;
    m_monitor.platform().defaults.set(modeKey, word(mode));
    refresh();
}

void DiagnosisModel::select(const std::optional<std::string>& id) {
    if (id) {
        const auto ids = m_screen.cardIds();
        if (std::ranges::find(ids, *id) == ids.end()) return;
    }
    m_state.selected = id;
    refresh();
}

void DiagnosisModel::moveSelection(int step) {
    select(DiagnosisOrder::moved(m_state.selected, m_screen.cardIds(), step, false));
}
void DiagnosisModel::selectNext() { moveSelection(1); }
void DiagnosisModel::selectPrevious() { moveSelection(-1); }

void DiagnosisModel::selectArc(const std::optional<std::string>& id) {
    if (id) {
        const auto ids = m_map.arcIds();
        if (std::ranges::find(ids, *id) == ids.end()) return;
    }
    m_state.selectedArc = id;
    refresh();
}

void DiagnosisModel::moveArc(int step) {
    selectArc(DiagnosisOrder::moved(m_state.selectedArc, m_map.arcIds(), step, true));
}
void DiagnosisModel::selectNextArc() { moveArc(1); }
void DiagnosisModel::selectPreviousArc() { moveArc(-1); }

void DiagnosisModel::openEvidence(const std::string& id) {
    if (m_evidenceId == id) return;
    m_evidenceId = id;
    m_hasKeepFailed = false;
    refresh();
}

void DiagnosisModel::openSelectedEvidence() {
    if (m_state.selected && m_state.mode == DiagnosisState::Mode::cards) openEvidence(std::string(*m_state.selected));
}

void DiagnosisModel::closeEvidence() {
    m_evidenceId.reset();
    m_hasKeepFailed = false;
    refresh();
}

bool DiagnosisModel::keep() {
    if (!m_evidence || !m_evidence->keep || !m_evidence->keep->isEnabled) return false;
    const std::string command = m_evidence->keep->command;
    KeepList list(m_monitor.platform().defaults);
    // Pressed again before the reading that shows it.
    if (list.commands().contains(command)) return true;
    m_hasKeepFailed = !list.add(command);
    if (m_hasKeepFailed) {
        refresh();
        return false;
    }
    m_monitor.log().event("keep", {{"cmd", std::string(Fmt::firstScalars(command, 160))}});
    m_monitor.refresh();
    return true;
}

void DiagnosisModel::take(std::shared_ptr<const Snapshot> snapshot) {
    m_snapshot = std::move(snapshot);
    m_index = std::make_unique<ProcessIndex>(m_snapshot->processes);
    m_picture = DiagnosisScreen::picture(input());
    reviewDone();
    refresh();
}

void DiagnosisModel::reviewDone() {
    // Free says of all that it tried that it ended. Where a later reading shows otherwise, the card says what remains.
    std::erase_if(m_state.done, [&](const DiagnosisState::Done& done) {
        const Finding* now = find(done.finding.id);
        return done.byFree && m_snapshot->takenAt > done.at + settled && now && shares(*now, done.finding);
    });
    for (DiagnosisState::Done& done : m_state.done) {
        if (!done.replacesCard) continue;
        const Finding* now = find(done.finding.id);
        done.replacesCard = now && isCovered(*now, done.finding);
    }
}

void DiagnosisModel::refresh() {
    DiagnosisScreen screen = makeScreen();
    if (m_state.mode == DiagnosisState::Mode::cards && screen.state != DiagnosisScreen::State::waiting) {
        const auto selected = DiagnosisOrder::survivor(m_state.selected, m_cards, screen.cardIds());
        if (selected != m_state.selected) {
            m_state.selected = selected;
            screen = makeScreen();
        }
        m_cards = screen.cardIds();
    }
    MapScreen map = makeMap(screen);
    if (m_state.mode == DiagnosisState::Mode::map && screen.state != DiagnosisScreen::State::waiting) {
        const auto selected = DiagnosisOrder::survivor(m_state.selectedArc, m_arcs, map.arcIds());
        if (selected != m_state.selectedArc) {
            m_state.selectedArc = selected;
            map = makeMap(screen);
        }
        m_arcs = map.arcIds();
    }
    std::optional<EvidenceScreen> evidence;
    if (m_evidenceId) evidence = EvidenceScreen(*m_evidenceId, input(), m_hasKeepFailed);

    if (screen == m_screen && map == m_map && evidence == m_evidence) return;
    m_screen = std::move(screen);
    m_map = std::move(map);
    m_evidence = std::move(evidence);
    // It may destroy the model, and this function object with it.
    if (const auto observer = m_observer) observer();
}

DiagnosisScreen DiagnosisModel::makeScreen() {
    m_state.cardOrder.reset();
    if (m_isPointerOver || m_state.selected) m_state.cardOrder = m_cards;
    std::optional<std::string> lastFix;
    if (const auto& fix = m_monitor.lastFix()) lastFix = fix->line;
    return {input(), m_picture, m_state, m_monitor.notificationsDenied() == true, lastFix};
}

MapScreen DiagnosisModel::makeMap(const DiagnosisScreen& screen) {
    if (m_state.mode != DiagnosisState::Mode::map || screen.state != DiagnosisScreen::State::findings) return {};
    m_state.arcOrder.reset();
    if (m_isPointerOver || m_state.selectedArc) m_state.arcOrder = m_arcs;
    return {input(), m_picture, m_state};
}

}  // namespace ravik
