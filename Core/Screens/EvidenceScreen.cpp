#include "Core/Screens/EvidenceScreen.h"

#include <algorithm>
#include <charconv>

#include <fmt/format.h>

#include "Core/Wording/CardFace.h"
#include "Core/Wording/InfoText.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Words.h"

namespace ravik {

namespace {

using Row = EvidenceScreen::Row;

void growTree(Row& row, const KillTrees& remedy, const ScreenInput& input) {
    row.tree = Tree::lines(remedy.pids, input.index, EvidenceScreen::treeLines, input.host);
    if (row.tree.empty()) return;
    row.value.clear();
    std::size_t members = 0;
    for (const Pid pid : remedy.pids) members += input.index.treePositions(pid).size();
    if (members > row.tree.size()) row.more = fmt::format("{} more", members - row.tree.size());
}

std::string spoken(const Row& row) {
    return row.tree.empty() ? fmt::format("{}: {}", row.label, row.value) : row.label;
}

}  // namespace

EvidenceScreen::EvidenceScreen(const std::string& of, const ScreenInput& input, bool keepFailed)
    : id(of), closeLabel("Close") {
    const auto finding = std::ranges::find(input.snapshot.findings, id, &Finding::id);
    if (finding == input.snapshot.findings.end()) {
        isGone = true;
        name = InfoText::goneTitle;
        sentence = InfoText::goneText;
        accessible = fmt::format("{}. {}", name, sentence);
        return;
    }
    const CardFace face(*finding, input.snapshot, input.index, input.host, input.now);
    icon = face.icon;
    name = Plain::name(*finding, face, input.host);
    sentence = Plain::sentence(*finding, face, input.snapshot, input.host);
    verdict = VerdictFace(finding->tone());
    accessible = fmt::format("{}. {}{}{}", name, sentence, sentence.empty() ? "" : " ", verdict.spoken());
    for (auto& [label, value] : Words::evidence(*finding)) {
        Row row{.label = std::move(label), .value = std::move(value), .tree = {}, .more = {}, .accessible = {}};
        if (const KillTrees* kill = finding->kills(); kill && row.label == "Tree") growTree(row, *kill, input);
        row.accessible = spoken(row);
        rows.push_back(std::move(row));
    }
    if (auto command = keepCommand(*finding, input.index)) {
        keep = {.label = "Keep this one running",
                .line = "Never in Free or Autopilot. Undo in Settings › Kept running.",
                .command = std::move(*command),
                .isEnabled = finding->neverReason != Plain::keptReason};
        if (keepFailed && keep->isEnabled) {
            keep->line = keepFailure;
            keep->hasFailed = true;
        }
    }
}

std::optional<std::string> EvidenceScreen::keepCommand(const Finding& finding, const ProcessIndex& index) {
    constexpr std::string_view orphan = "orphan:";
    const std::string_view id = finding.id;
    if (!id.starts_with(orphan)) return std::nullopt;
    Pid pid = 0;
    const auto [end, error] = std::from_chars(id.data() + orphan.size(), id.data() + id.size(), pid);
    if (error != std::errc{} || end != id.data() + id.size()) return std::nullopt;
    const Proc* proc = index.find(pid);
    // Without a command line there is nothing to know it by.
    if (!proc || proc->command.isEmpty()) return std::nullopt;
    return proc->command.str();
}

}  // namespace ravik
