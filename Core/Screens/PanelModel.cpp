#include "Core/Screens/PanelModel.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Autopilot/Approvals.h"
#include "Core/Diagnosis/KeepList.h"
#include "Core/Ending/Actions.h"
#include "Core/Record/HistoryStore.h"
#include "Core/Record/WeekProof.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Words.h"

namespace ravik {

namespace {

/// A timer that fires on the very moment may find it not quite reached.
constexpr double timerSlack = 0.001;
constexpr std::size_t keptCommandScalars = 160;

/// Passes questions on and knows whether one stands.
class OneQuestion : public Asker {
public:
    explicit OneQuestion(Asker& asker) : m_asker(asker) {}
    Task<bool> ask(const Confirmation& question) override {
        m_stands = true;
        const bool answer = co_await m_asker.ask(question);
        m_stands = false;
        co_return answer;
    }
    bool isActive() override { return m_asker.isActive(); }
    bool stands() const { return m_stands; }

private:
    Asker& m_asker;
    bool m_stands = false;
};

}  // namespace

struct PanelModel::State : std::enable_shared_from_this<PanelModel::State> {
    State(Monitor& theMonitor, Asker& theAsker, SendFeedback theSendFeedback)
        : monitor(theMonitor), asker(theAsker), buildFeedback(std::move(theSendFeedback)) {}

    MainLoop& loop() { return monitor.platform().loop; }
    Time now() { return monitor.platform().clock.now(); }

    PanelSource source() {
        return {.snapshot = monitor.snapshot(),
                .interval = monitor.interval(),
                .ramBytes = monitor.ramBytes(),
                .suggestions = monitor.suggestions(),
                .live = monitor.live(),
                .rulesOn = Approvals(monitor.platform().defaults).actions().size(),
                .host = monitor.host(),
                .now = now()};
    }

    void open();
    void close();
    void loadWeek();
    /// Something on the screen may read otherwise; looked at once in this turn of the loop.
    void changed();
    void rebuild();
    /// Only the texts that time changes.
    void tellTime();
    void wait(std::optional<Time> next);
    void show(PanelScreen now);

    const Finding* finding(const std::string& id) const;
    bool isUnderWay(const std::string& id) const;
    bool isDone(const std::string& id) const;
    void hold(const PanelScreen& shown);
    static Task<> run(std::shared_ptr<State> self, Finding finding, IconRef icon);
    static Task<> free(std::shared_ptr<State> self);
    static Task<> sendFeedback(std::shared_ptr<State> self);

    Monitor& monitor;
    OneQuestion asker;
    SendFeedback buildFeedback;
    PanelMemory memory;
    PanelScreen screen;
    std::function<void()> observer;
    Subscription subscription;
    MainLoop::Timer timer = 0;
    bool isOpen = true;
    bool isHeld = false;
    bool isDirty = false;
    bool isFreeing = false;
};

void PanelModel::State::open() {
    subscription = monitor.observe([this](Monitor::Change change) {
        using Change = Monitor::Change;
        const bool isShown = change == Change::snapshot || change == Change::live || change == Change::suggestions ||
                             change == Change::interval;
        if (isShown) changed();
    });
    rebuild();
    loadWeek();
}

void PanelModel::State::close() {
    isOpen = false;
    subscription.end();
    wait({});
    observer = nullptr;
}

void PanelModel::State::loadWeek() {
    const Folders& folders = monitor.platform().folders;
    loop().background(
        [weak = weak_from_this(), &loop = loop(), log = folders.log, cache = folders.historyCache, now = now()] {
            loop.post([weak, line = WeekProof::line(HistoryStore::load(log, cache), now)] {
                const auto self = weak.lock();
                if (!self || !self->isOpen) return;
                self->memory.week = line;
                self->changed();
            });
        });
}

void PanelModel::State::changed() {
    if (!isOpen || std::exchange(isDirty, true)) return;
    loop().post([weak = weak_from_this()] {
        if (const auto self = weak.lock(); self && self->isOpen) self->rebuild();
    });
}

void PanelModel::State::rebuild() {
    isDirty = false;
    const PanelSource seen = source();
    PanelScreen fresh(seen, memory);
    wait(fresh.tellTime(seen));
    if (isHeld) hold(fresh);
    show(std::move(fresh));
}

void PanelModel::State::hold(const PanelScreen& shown) {
    memory.held.clear();
    for (const PanelScreen::Row& row : shown.rows) {
        if (!row.resolved) memory.held.push_back(row.id);
    }
}

void PanelModel::State::tellTime() {
    if (isDirty) return;
    PanelScreen fresh = screen;
    wait(fresh.tellTime(source()));
    show(std::move(fresh));
}

void PanelModel::State::wait(std::optional<Time> next) {
    if (timer) loop().cancel(timer);
    timer = 0;
    if (!next) return;
    timer = loop().after(*next - now() + timerSlack, [self = shared_from_this()] {
        self->timer = 0;
        self->tellTime();
    });
}

void PanelModel::State::show(PanelScreen now) {
    if (screen == now) return;
    screen = std::move(now);
    // The observer may close the panel, and with it take itself away.
    if (const auto tell = observer) tell();
}

const Finding* PanelModel::State::finding(const std::string& id) const {
    const auto& findings = monitor.snapshot().findings;
    const auto found = std::ranges::find(findings, id, &Finding::id);
    return found == findings.end() ? nullptr : &*found;
}

bool PanelModel::State::isUnderWay(const std::string& id) const {
    return std::ranges::find(memory.underWay, id) != memory.underWay.end();
}

bool PanelModel::State::isDone(const std::string& id) const {
    return std::ranges::any_of(memory.done, [&](const auto& done) { return done.finding.id == id; });
}

Task<> PanelModel::State::run(std::shared_ptr<State> self, Finding finding, IconRef icon) {
    Actions actions(self->monitor, self->asker);
    const std::optional<std::string> line = co_await actions.run(finding);
    std::erase(self->memory.underWay, finding.id);
    if (line) self->memory.done.push_back({std::move(finding), *line, std::move(icon)});
    self->changed();
}

Task<> PanelModel::State::free(std::shared_ptr<State> self) {
    std::size_t count = 0;
    for (const Finding* finding : self->monitor.snapshot().freeable()) count += finding->kills()->pids.size();
    std::function<void()> onConfirmed = [self, count] {
        self->memory.running = fmt::format("Ending {}…", Fmt::plural(count, "process"));
        self->changed();
    };
    Actions actions(self->monitor, self->asker);
    std::optional<std::string> line = co_await actions.freeAll(std::move(onConfirmed));
    self->isFreeing = false;
    self->memory.running.reset();
    if (line) self->memory.result = std::move(line);
    self->changed();
}

Task<> PanelModel::State::sendFeedback(std::shared_ptr<State> self) {
    self->memory.feedback = std::string(PanelScreen::buildingFeedback);
    self->memory.isBuildingFeedback = true;
    self->changed();
    std::string line = co_await self->buildFeedback();
    self->memory.feedback = std::move(line);
    self->memory.isBuildingFeedback = false;
    self->changed();
}

PanelModel::PanelModel(Monitor& monitor, Asker& asker, SendFeedback sendFeedback)
    : m_state(std::make_shared<State>(monitor, asker, std::move(sendFeedback))) {
    m_state->open();
}

PanelModel::~PanelModel() { m_state->close(); }

const PanelScreen& PanelModel::screen() const { return m_state->screen; }

void PanelModel::onChange(std::function<void()> observer) { m_state->observer = std::move(observer); }

// What a button starts may close the panel before it comes back here: nothing is touched behind spawn().

void PanelModel::run(const std::string& id) {
    State& state = *m_state;
    const Finding* finding = state.finding(id);
    if (!finding || state.asker.stands() || state.isFreeing || state.isUnderWay(id) || state.isDone(id)) return;
    const Snapshot& snapshot = state.monitor.snapshot();
    const ProcessIndex index(snapshot.processes);
    if (!Words::remedyLabel(*finding, index)) return;
    const CardFace face(*finding, snapshot, index, state.monitor.host(), state.now());
    state.memory.underWay.push_back(id);
    state.changed();
    spawn(State::run(m_state, *finding, face.icon));
}

void PanelModel::free() {
    State& state = *m_state;
    if (state.asker.stands() || state.isFreeing || state.monitor.snapshot().freeableBytes() == 0) return;
    state.isFreeing = true;
    spawn(State::free(m_state));
}

void PanelModel::keep(const std::string& id) {
    State& state = *m_state;
    Monitor& monitor = state.monitor;
    const Finding* finding = state.finding(id);
    if (!finding) return;
    const auto command = keepable(*finding, ProcessIndex(monitor.snapshot().processes));
    KeepList list(monitor.platform().defaults);
    // Pressed again before the reading that shows it.
    if (!command || list.commands().contains(*command)) return;
    std::erase(state.memory.unkept, id);
    if (list.add(*command)) {
        monitor.log().event("keep", {{"cmd", std::string(Fmt::firstScalars(*command, keptCommandScalars))}});
        monitor.refresh();
    } else {
        state.memory.unkept.push_back(id);
        state.changed();
    }
}

void PanelModel::undo(std::uint64_t live) { m_state->monitor.undoLive(live); }

namespace {

const Decision* offered(const Monitor& monitor, const std::string& id) {
    const auto found = std::ranges::find(monitor.suggestions(), id, suggestionId);
    return found == monitor.suggestions().end() ? nullptr : &*found;
}

}  // namespace

void PanelModel::accept(const std::string& id) {
    const Decision* decision = offered(m_state->monitor, id);
    if (decision) m_state->monitor.acceptSuggestion(*decision, m_state->now());
}

void PanelModel::dismiss(const std::string& id) {
    const Decision* decision = offered(m_state->monitor, id);
    if (decision) m_state->monitor.dismissSuggestion(*decision, m_state->now());
}

void PanelModel::sendFeedback() {
    if (m_state->memory.isBuildingFeedback || !m_state->buildFeedback) return;
    spawn(State::sendFeedback(m_state));
}

void PanelModel::holdRows(bool hold) {
    State& state = *m_state;
    state.isHeld = hold;
    state.memory.held.clear();
    if (hold) {
        state.hold(state.screen);
    } else {
        state.memory.pointed.clear();
    }
    state.changed();
}

void PanelModel::pointAt(const std::string& id, bool isOver) {
    std::string& pointed = m_state->memory.pointed;
    if (isOver) {
        pointed = id;
    } else if (pointed == id) {
        pointed.clear();
    }
}

}  // namespace ravik
