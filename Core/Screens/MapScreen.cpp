#include "Core/Screens/MapScreen.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include <fmt/format.h>

#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

using Segment = MemoryPicture::Segment;

class Ring {
public:
    explicit Ring(const MemoryPicture& picture) : m_whole(std::max(picture.held(), picture.ram)) {}

    double degrees(std::uint64_t bytes) const {
        return static_cast<double>(bytes) * 360 / static_cast<double>(std::max<std::uint64_t>(m_whole, 1));
    }
    std::string share(std::uint64_t bytes) const { return memoryShare(bytes, m_whole); }

private:
    std::uint64_t m_whole;
};

/// A group may be called like one of the two that stand for many.
std::string idOf(const Segment& segment) {
    return segment.kind == Segment::Kind::app ? "app:" + segment.id : segment.id;
}

std::vector<const Segment*> placed(const MemoryPicture& picture, const std::optional<DiagnosisOrder::Ids>& order) {
    std::vector<const Segment*> segments;
    if (!order) {
        for (const Segment& segment : picture.segments) segments.push_back(&segment);
        return segments;
    }
    std::unordered_map<std::string, const Segment*> byId;
    DiagnosisOrder::Ids ids;
    for (const Segment& segment : picture.segments) {
        ids.push_back(idOf(segment));
        byId.emplace(ids.back(), &segment);
    }
    for (const std::string& id : DiagnosisOrder::keep(*order, ids)) segments.push_back(byId.at(id));
    return segments;
}

std::string gigabytes(std::uint64_t bytes) { return Fmt::gbByThousands(bytes) + " GB"; }

std::string spoken(const Segment& segment, const std::string& share) {
    std::string text = fmt::format("{}, {}, {}", segment.label, gigabytes(segment.bytes), share);
    if (segment.freeBytes > 0) text += fmt::format(", {} ends with Free", Fmt::mb(segment.freeBytes));
    if (segment.quitBytes > 0)
        text += fmt::format(", {} GB comes back when you quit it", Fmt::gbByThousands(segment.quitBytes));
    return text;
}

/// From what its app holds, what can be had back stands at the end: first what comes back by quitting.
MapScreen::Arc arc(const Segment& segment, const Ring& ring, std::uint64_t before, bool isSelected) {
    const std::uint64_t free = std::min(segment.bytes, segment.freeBytes);
    const std::uint64_t quit = std::min(segment.bytes - free, segment.quitBytes);
    const std::uint64_t end = before + segment.bytes;
    MapScreen::Arc arc;
    arc.id = idOf(segment);
    arc.label = segment.label;
    arc.share = ring.share(segment.bytes);
    arc.icon = segment.icon;
    arc.fill = segment.kind == Segment::Kind::rest ? MapScreen::Arc::Fill::rest : MapScreen::Arc::Fill::held;
    arc.span = {ring.degrees(before), ring.degrees(segment.bytes)};
    arc.quit = {ring.degrees(end - free - quit), ring.degrees(quit)};
    arc.free = {ring.degrees(end - free), ring.degrees(free)};
    arc.isSelected = isSelected;
    arc.accessible = spoken(segment, arc.share);
    return arc;
}

DiagnosisCard cardOf(const Finding& finding, const ScreenInput& input, const DiagnosisState& state) {
    return DiagnosisCards::card(finding, input, false, state.ending.contains(finding.id));
}

MapScreen::Panel panelOf(const Segment* segment, const ScreenInput& input, const Ring& ring,
                         const DiagnosisState& state) {
    MapScreen::Panel panel;
    if (!segment) {
        panel.hint = "Click a part to see its causes.";
        return panel;
    }
    panel.hasArc = true;
    panel.icon = segment->icon;
    panel.name = segment->label;
    panel.amount = gigabytes(segment->bytes);
    panel.share = ring.share(segment->bytes);
    const std::unordered_set<std::string_view> ids(segment->findingIDs.begin(), segment->findingIDs.end());
    for (const Finding& finding : input.snapshot.findings) {
        if (ids.contains(finding.id) && !state.isDone(finding.id)) {
            panel.findings.push_back(cardOf(finding, input, state));
        }
    }
    for (const DiagnosisState::Done& done : state.done) {
        if (ids.contains(done.finding.id)) panel.resolved.push_back(DiagnosisScreen::resolve(done));
    }
    if (ids.empty()) panel.nothing = "Nothing to fix here. It holds memory you are using.";
    return panel;
}

}  // namespace

MapScreen::MapScreen(const ScreenInput& input, const MemoryPicture& picture, const DiagnosisState& state) {
    const Ring ring(picture);
    const std::uint64_t held = picture.held();
    const Segment* selected = nullptr;
    std::unordered_set<std::string_view> drawn;
    std::uint64_t before = 0;
    for (const Segment* segment : placed(picture, state.arcOrder)) {
        const bool isSelected = state.selectedArc == idOf(*segment);
        if (isSelected) selected = segment;
        arcs.push_back(arc(*segment, ring, before, isSelected));
        before += segment->bytes;
        drawn.insert(segment->findingIDs.begin(), segment->findingIDs.end());
    }
    value = Fmt::gbByThousands(held);
    unit = "GB";
    caption = held <= picture.ram ? fmt::format("of {} used", Fmt::ram(picture.ram))
                                  : fmt::format("{} GB spilled to disk", Fmt::gbByThousands(held - picture.ram));
    ramAt = ring.degrees(picture.ram);
    heldAt = ring.degrees(held);
    panel = panelOf(selected, input, ring, state);
    for (const Finding& finding : input.snapshot.findings) {
        if (drawn.contains(finding.id) || state.isDone(finding.id)) continue;
        alsoFound.push_back(cardOf(finding, input, state));
    }
    const auto besideRing = [&](const DiagnosisScreen::Resolved& outcome) {
        return std::ranges::find(panel.resolved, outcome.id, &DiagnosisScreen::Resolved::id) != panel.resolved.end();
    };
    for (const DiagnosisState::Done& done : state.done) {
        if (auto outcome = DiagnosisScreen::resolve(done); !besideRing(outcome)) resolved.push_back(std::move(outcome));
    }
    if (!alsoFound.empty()) alsoFoundHeading = "Also found";
    accessible = "Memory map. " + picture.summary();
}

DiagnosisOrder::Ids MapScreen::arcIds() const {
    DiagnosisOrder::Ids ids;
    for (const Arc& arc : arcs) ids.push_back(arc.id);
    return ids;
}

}  // namespace ravik
