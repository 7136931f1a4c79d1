#include "Core/Wording/MemoryPicture.h"

#include <algorithm>
#include <unordered_map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

/// What the findings give back, by whom it belongs to, first seen first.
struct Claims {
    struct Claim {
        std::string owner;
        std::uint64_t free = 0;
        std::uint64_t quit = 0;
        std::vector<std::string> ids;
        bool shown = false;
    };

    Claims(const Snapshot& snapshot, const ProcessIndex& index, const Host& host) {
        for (const Finding& finding : snapshot.findings) {
            if (finding.gainBytes == 0) continue;
            if (const KillTrees* kill = finding.kills()) {
                const Proc* first = kill->pids.empty() ? nullptr : index.find(kill->pids.front());
                Claim& claim = of(first ? Classifier::group(*first, host) : "Leftovers");
                (finding.caution ? claim.quit : claim.free) += finding.gainBytes;
                claim.ids.push_back(finding.id);
            } else if (const QuitApp* quit = finding.quits()) {
                Claim& claim = of(quit->app);
                claim.quit += finding.gainBytes;
                claim.ids.push_back(finding.id);
            }
        }
    }

    Claim& of(const std::string& owner) {
        const auto [place, fresh] = m_places.try_emplace(owner, all.size());
        if (fresh) all.push_back({owner, 0, 0, {}, false});
        return all[place->second];
    }

    std::vector<Claim> all;

private:
    std::unordered_map<std::string, std::size_t> m_places;
};

std::vector<std::string> inOrderOf(const std::vector<Finding>& findings, const std::vector<std::string>& ids) {
    std::vector<std::string> ordered;
    for (const Finding& finding : findings) {
        if (std::ranges::find(ids, finding.id) != ids.end()) ordered.push_back(finding.id);
    }
    return ordered;
}

/// Nothing below a hundredth of the memory gets a name of its own.
std::vector<const AppGroup*> named(const std::vector<AppGroup>& groups, std::uint64_t ram, std::size_t topApps) {
    std::vector<const AppGroup*> own;
    for (const AppGroup& group : groups) {
        if (own.size() == topApps) break;
        if (!group.id.starts_with('[')) own.push_back(&group);
    }
    std::erase_if(own, [&](const AppGroup* group) { return group->footprintBytes <= ram / 100; });
    return own;
}

template <typename Field>
std::uint64_t sum(const std::vector<MemoryPicture::Segment>& segments, Field field) {
    std::uint64_t total = 0;
    for (const auto& segment : segments) total += segment.*field;
    return total;
}

}  // namespace

MemoryPicture::MemoryPicture(const Snapshot& snapshot, const ProcessIndex& index, std::uint64_t installed,
                             std::size_t topApps, const Host& host)
    : ram(installed), swap(snapshot.stats.swapUsedBytes) {
    Claims claims(snapshot, index, host);
    std::uint64_t accounted = 0;
    for (const AppGroup* group : named(snapshot.groups, ram, topApps)) {
        Claims::Claim& claim = claims.of(group->id);
        claim.shown = true;
        const std::uint64_t bytes = group->footprintBytes;
        segments.push_back({group->id, group->id, AppIcons::icon(group->id, host), bytes, std::min(bytes, claim.free),
                            std::min(bytes, claim.quit), claim.ids});
        accounted += bytes;
    }
    Segment leftovers;
    leftovers.id = "leftovers";
    leftovers.kind = Segment::Kind::leftovers;
    leftovers.icon = IconRef{{}, std::string(AppIcons::code)};
    std::size_t others = 0;
    for (const Claims::Claim& claim : claims.all) {
        if (claim.shown) continue;
        if (claim.quit > 0) {
            segments.push_back(
                {claim.owner, claim.owner, AppIcons::icon(claim.owner, host), claim.quit, 0, claim.quit, claim.ids});
        }
        if (claim.free > 0) {
            ++others;
            leftovers.bytes += claim.free;
            leftovers.findingIDs.insert(leftovers.findingIDs.end(), claim.ids.begin(), claim.ids.end());
        }
    }
    if (others > 0) {
        leftovers.label = Fmt::plural(others, "leftover");
        leftovers.freeBytes = leftovers.bytes;
        leftovers.findingIDs = inOrderOf(snapshot.findings, leftovers.findingIDs);
        accounted += leftovers.bytes;
        segments.push_back(std::move(leftovers));
    }
    std::uint64_t used = 0;
    for (const Proc& proc : snapshot.processes) used += proc.footprintBytes;
    const std::uint64_t rest = used - accounted;
    // More claimed than used wraps round, and lies far above four times the memory.
    if (rest > ram / 50 && rest / 4 < ram) {
        segments.push_back({"rest", "Everything else", {}, rest, 0, 0, {}, Segment::Kind::rest});
    }
}

std::uint64_t MemoryPicture::held() const { return sum(segments, &Segment::bytes); }
std::uint64_t MemoryPicture::freeBytes() const { return sum(segments, &Segment::freeBytes); }
std::uint64_t MemoryPicture::quitBytes() const { return sum(segments, &Segment::quitBytes); }

std::vector<std::string> MemoryPicture::quitApps() const {
    std::vector<std::string> apps;
    for (const Segment& segment : segments) {
        if (segment.quitBytes > 0) apps.push_back(segment.label);
    }
    return apps;
}

MemoryPicture MemoryPicture::after() const {
    MemoryPicture later = *this;
    for (Segment& segment : later.segments) {
        segment.bytes -= std::min(segment.bytes, segment.freeBytes);
        segment.bytes -= std::min(segment.bytes, segment.quitBytes);
        segment.freeBytes = 0;
        segment.quitBytes = 0;
    }
    return later;
}

std::string MemoryPicture::summary() const {
    std::string text = fmt::format("Apps hold {} GB of {} RAM; {} ends with Free", Fmt::gbByThousands(held()),
                                   Fmt::ram(ram), Fmt::mb(freeBytes()));
    if (quitBytes() > 0) {
        text += fmt::format(", {} GB comes back when you quit {}", Fmt::gbByThousands(quitBytes()),
                            fmt::join(quitApps(), " and "));
    }
    return text + ".";
}

std::vector<LegendItem> memoryLegend(std::uint64_t ram, bool quit, const Host& host) {
    using Mark = LegendItem::Mark;
    std::vector<LegendItem> items{{Mark::held, "Memory apps are using"}, {Mark::free, "Free can end it"}};
    if (quit) items.push_back({Mark::quit, "Comes back if you quit the app"});
    items.push_back({Mark::spilled, fmt::format("Spilled to disk — slows {}", host.nouns().yourMachine)});
    items.push_back({Mark::ram, fmt::format("Your {} of memory", Fmt::ram(ram))});
    return items;
}

std::string memoryShare(std::uint64_t bytes, std::uint64_t total) {
    const double share = static_cast<double>(bytes) * 100 / static_cast<double>(std::max<std::uint64_t>(total, 1));
    return share > 0 && share < 1 ? "<1%" : fmt::format("{:.0f}%", share);
}

}  // namespace ravik
