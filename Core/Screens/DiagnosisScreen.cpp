#include "Core/Screens/DiagnosisScreen.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Wording/Fmt.h"
#include "Core/Wording/Words.h"

namespace ravik {

namespace {

using Screen = DiagnosisScreen;

/// "15.2 of 16 GB used"
std::string head(const MemoryPicture& picture) {
    const std::uint64_t held = picture.held();
    if (held <= picture.ram) return fmt::format("{} of {} used", Fmt::gbByThousands(held), Fmt::ram(picture.ram));
    return fmt::format("{} · {} GB spilled to disk", Fmt::ram(picture.ram), Fmt::gbByThousands(held - picture.ram));
}

std::vector<LegendItem> legend(const MemoryPicture& picture, const Host& host) {
    return memoryLegend(picture.ram, picture.quitBytes() > 0, host);
}

Screen::Calm calm(const MemoryPicture& picture, const Host& host, const std::optional<std::string>& lastFix) {
    return {.symbol = "checkmark.circle.fill",
            .title = fmt::format("{} is fine", host.nouns().yourMachineCap),
            .line = lastFix ? fmt::format("Nothing to free. Last fix: {}", *lastFix)
                            : "Nothing to free. Ravik keeps watching.",
            .bar = MemoryBarFace(picture),
            .legend = legend(picture, host)};
}

std::string heroLine(const Snapshot& snapshot, const DiagnosisState& state, bool alertsOff) {
    if (state.running) return *state.running;
    if (state.result) return *state.result;
    if (alertsOff) return "Alerts are off, so Ravik waits here until you look.";
    return Words::gapLine(snapshot);
}

FreeButtonFace freeButton(std::uint64_t bytes, const DiagnosisState& state) {
    FreeButtonFace button(bytes, state.freeing);
    button.isEnabled = button.isEnabled && !state.running;
    return button;
}

Screen::BeforeAfter beforeAfter(const MemoryPicture& now, const Host& host) {
    const MemoryPicture after = now.after();
    const std::uint64_t scale = MemoryBarFace::scale(now);
    const std::vector<std::string> quitApps = now.quitApps();
    return {.nowHeading = "Now",
            .nowHead = head(now),
            .now = {now, scale},
            .afterHeading = quitApps.empty() ? "After Free"
                                             : fmt::format("After Free and quitting {}", fmt::join(quitApps, " and ")),
            .afterHead = head(after),
            .after = {after, scale},
            .legend = legend(now, host)};
}

/// The findings of a section in the order in which its cards stand.
std::vector<const Finding*> placed(const DiagnosisSection& section, const std::optional<DiagnosisOrder::Ids>& order) {
    if (!order) return section.findings;
    std::unordered_map<std::string_view, const Finding*> byId;
    DiagnosisOrder::Ids ids;
    for (const Finding* finding : section.findings) {
        byId.emplace(finding->id, finding);
        ids.push_back(finding->id);
    }
    std::vector<const Finding*> findings;
    for (const std::string& id : DiagnosisOrder::keep(*order, ids)) findings.push_back(byId.at(id));
    return findings;
}

std::vector<Screen::Section> sections(const ScreenInput& input, const DiagnosisState& state) {
    std::unordered_set<std::string> done;
    for (const DiagnosisState::Done& entry : state.done) {
        if (entry.replacesCard) done.insert(entry.finding.id);
    }
    std::vector<Screen::Section> sections;
    for (const DiagnosisSection& section : DiagnosisSections::of(input.snapshot, done)) {
        Screen::Section made{section.kind, std::string(section.heading), {}};
        for (const Finding* finding : placed(section, state.cardOrder)) {
            made.cards.push_back(DiagnosisCards::card(*finding, input, state.selected == finding->id,
                                                      state.ending.contains(finding->id)));
        }
        sections.push_back(std::move(made));
    }
    if (sections.empty()) return sections;
    DiagnosisCard* stop = &sections.front().cards.front();
    for (Screen::Section& section : sections) {
        for (DiagnosisCard& card : section.cards) {
            if (card.isSelected) stop = &card;
        }
    }
    stop->isStop = true;
    return sections;
}

}  // namespace

bool DiagnosisState::isDone(const std::string& id) const {
    return std::ranges::any_of(done, [&](const Done& entry) { return entry.replacesCard && entry.finding.id == id; });
}

DiagnosisScreen::DiagnosisScreen(const ScreenInput& input, const MemoryPicture& picture, const DiagnosisState& memory,
                                 bool alertsOff, const std::optional<std::string>& lastFix) {
    const Snapshot& snapshot = input.snapshot;
    if (!snapshot.sampled) {
        waiting = {Pending::title(input.host), std::string(Pending::line)};
        return;
    }
    if (snapshot.findings.empty() && memory.done.empty()) {
        state = State::calm;
        calm = ravik::calm(picture, input.host, lastFix);
        return;
    }
    state = State::findings;
    hero = {ReadoutFace::amount(snapshot.reclaimableBytes()), "you can free", heroLine(snapshot, memory, alertsOff)};
    free = freeButton(snapshot.freeableBytes(), memory);
    picker = {memory.mode, std::string(word(DiagnosisState::Mode::cards)), std::string(word(DiagnosisState::Mode::map)),
              "Cards: every cause with its button. Map: where the memory is."};
    beforeAfter = ravik::beforeAfter(picture, input.host);
    if (memory.mode != DiagnosisState::Mode::cards) return;
    sections = ravik::sections(input, memory);
    for (const DiagnosisState::Done& done : memory.done) resolved.push_back(resolve(done));
}

DiagnosisOrder::Ids DiagnosisScreen::cardIds() const {
    DiagnosisOrder::Ids ids;
    for (const Section& section : sections) {
        for (const DiagnosisCard& card : section.cards) ids.push_back(card.id);
    }
    return ids;
}

MemoryPicture DiagnosisScreen::picture(const ScreenInput& input) {
    return {input.snapshot, input.index, input.ram, topApps, input.host};
}

DiagnosisScreen::Resolved DiagnosisScreen::resolve(const DiagnosisState::Done& done) {
    return {.id = fmt::format("{}#{}", done.finding.id, done.number),
            .icon = done.icon,
            .name = done.name,
            .line = done.line,
            .face = ResolvedFace(done.line),
            .accessible = fmt::format("{}. {}", done.name, done.line)};
}

std::string_view word(DiagnosisState::Mode mode) { return mode == DiagnosisState::Mode::cards ? "Cards" : "Map"; }

std::optional<DiagnosisState::Mode> parseDiagnosisMode(std::string_view text) {
    for (const auto mode : {DiagnosisState::Mode::cards, DiagnosisState::Mode::map}) {
        if (text == word(mode)) return mode;
    }
    return std::nullopt;
}

}  // namespace ravik
