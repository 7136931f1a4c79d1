#include "Core/Wording/Words.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Wording/CardFace.h"

namespace ravik::Words {

namespace {

using Row = std::pair<std::string, std::string>;

Row verdictRow(const Finding& finding) {
    switch (finding.tone()) {
        case Tone::caution:
            return {"Why it asks first",
                    *finding.caution +
                        ". It may lose that work, so it gets its own confirmation and is never part of Free."};
        case Tone::never: return {"Why it stays", *finding.neverReason + ". Ravik never ends it from a button."};
        case Tone::advice:
            return {"Why no button", "This cause is yours to change; ending something would not fix it."};
        case Tone::safe: break;
    }
    constexpr const char* allowed = "Why the safety check allows it";
    if (const QuitApp* quit = finding.quits()) {
        return {allowed, fmt::format("Quit is the gentle remedy: {} gets the request and can ask you about unsaved "
                                     "work, so it is per app and never part of Free.",
                                     quit->app)};
    }
    return {allowed,
            "Nothing in the tree is a database, a build, an install, an editor or an agent CLI, and nothing in it is "
            "working hard (the caution line is 5% CPU)."};
}

Row remedyRow(const Finding& finding) {
    if (finding.kills()) return {"How it ends", "start time re-checked · TERM · 3 s · KILL · survivors named"};
    if (const QuitApp* quit = finding.quits()) {
        return {"How it ends", fmt::format("asks {} to quit · waits up to 30 s · reports a refusal", quit->app)};
    }
    if (const auto* advice = std::get_if<Advice>(&finding.remedy)) return {"What to do", advice->text};
    return {"What to do", "Scan in Disk; what it finds moves to the Trash"};
}

}  // namespace

std::string gapLine(const Snapshot& snapshot) {
    std::vector<std::string_view> quitNames;
    for (const Finding& finding : snapshot.findings) {
        if (const QuitApp* quit = finding.quits()) quitNames.push_back(quit->app);
    }
    const std::string names = fmt::format("{}", fmt::join(quitNames, ", "));
    if (snapshot.freeable().empty()) {
        return quitNames.empty() ? "Nothing is safe to end in one click."
                                 : fmt::format("Quit {} yourself to get it back.", names);
    }
    return quitNames.empty() ? "Only what is safe. You confirm first."
                             : fmt::format("Only what is safe. Quit {} yourself for the rest.", names);
}

std::optional<std::string> remedyLabel(const Finding& finding, const ProcessIndex& index) {
    if (finding.quits()) return "Quit…";
    const KillTrees* kill = finding.kills();
    if (!kill) return std::nullopt;
    if (finding.id.starts_with("holder:") && finding.evidence.starts_with("extension host")) return "Restart…";
    std::size_t members = 0;
    for (const Pid pid : kill->pids) members += index.treePositions(pid).size();
    const std::size_t count = std::max(kill->pids.size(), members);
    return count < 2 ? "End…" : fmt::format("End {}…", count);
}

std::vector<Row> evidence(const Finding& finding) {
    std::vector<Row> rows;
    if (finding.startedBy) rows.emplace_back("Started by", *finding.startedBy);
    if (const auto browser = automationBrowser(finding)) {
        rows.emplace_back("Profile", fmt::format("temporary — an automation instance, not your {}", *browser));
    }
    rows.emplace_back(finding.kills() ? "Tree" : "Evidence", finding.evidence);
    rows.push_back(verdictRow(finding));
    rows.push_back(remedyRow(finding));
    return rows;
}

}  // namespace ravik::Words
