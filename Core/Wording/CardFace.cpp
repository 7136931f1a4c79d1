#include "Core/Wording/CardFace.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Rx.h"
#include "Core/Record/FindingLabel.h"
#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
    std::vector<std::string_view> parts;
    for (std::size_t at; (at = text.find(separator)) != text.npos; text.remove_prefix(at + separator.size())) {
        parts.push_back(text.substr(0, at));
    }
    parts.push_back(text);
    return parts;
}

std::string joined(std::span<const std::string_view> parts) { return fmt::format("{}", fmt::join(parts, " · ")); }

/// The pid that an id ends in.
std::optional<Pid> pidOf(std::string_view id) {
    id.remove_prefix(id.rfind(':') + 1);
    Pid pid = 0;
    const auto [end, error] = std::from_chars(id.data(), id.data() + id.size(), pid);
    if (error != std::errc{} || end != id.data() + id.size()) return std::nullopt;
    return pid;
}

const AppGroup* subjectGroup(const Finding& finding, const std::vector<AppGroup>& groups) {
    if (const QuitApp* quit = finding.quits()) {
        const auto hit = std::ranges::find(groups, quit->app, &AppGroup::id);
        if (hit != groups.end()) return &*hit;
    }
    const std::string_view id = finding.id;
    for (const AppGroup& group : groups) {
        if (id.size() > group.id.size() && id.ends_with(group.id) && id[id.size() - group.id.size() - 1] == ':') {
            return &group;
        }
    }
    return nullptr;
}

std::string doing(const Finding& finding, std::size_t count) {
    if (std::holds_alternative<ScanDisk>(finding.remedy)) return "opens Disk";
    if (std::holds_alternative<Advice>(finding.remedy)) {
        return finding.neverReason ? "no button — left running" : "advice, no button";
    }
    if (const QuitApp* quit = finding.quits()) return fmt::format("asks {} to quit", quit->app);
    return (finding.caution ? "asks, then ends " : "ends ") + Fmt::plural(count, "process");
}

std::string_view symbolOf(std::string_view id, std::string_view name, const Host& host) {
    if (id == "disk") return "internaldrive";
    if (id == "thrash") return "arrow.down.doc";
    if (id == "indexing") return "magnifyingglass";
    return AppIcons::symbol(name, host);
}

std::string without(std::string text, std::string_view word) {
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos;) text.erase(at, word.size());
    return text;
}

}  // namespace

struct CardFace::Subject {
    Pids pids;
    const Proc* root = nullptr;
    const AppGroup* group = nullptr;
    std::size_t count = 0;
};

CardFace::CardFace(const Finding& finding, const Snapshot& snapshot, const ProcessIndex& index, const Host& host,
                   Time now) {
    Subject subject;
    if (const KillTrees* kill = finding.kills()) {
        subject.pids = kill->pids;
    } else if (const auto pid = pidOf(finding.id)) {
        subject.pids = {*pid};
    }
    std::size_t members = 0;
    for (const Pid pid : subject.pids) {
        for (const std::size_t at : index.treePositions(pid)) {
            heldBytes += index.all()[at].footprintBytes;
            ++members;
        }
    }
    if (!subject.pids.empty()) subject.root = index.find(subject.pids.front());
    subject.group = subjectGroup(finding, snapshot.groups);
    subject.count = std::max(subject.pids.size(), members);

    if (members == 0 && subject.group) heldBytes = subject.group->footprintBytes;
    if (members == 0 && !subject.group && finding.id == "sessions") {
        for (const AgentSession& session : snapshot.sessions) {
            if (session.alive) heldBytes += session.footprintBytes();
        }
    }
    if (subject.root) {
        age = now - subject.root->started;
    } else if (subject.group) {
        for (const Proc& proc : subject.group->processes)
            age = std::max(age.value_or(now - proc.started), now - proc.started);
    }
    does = doing(finding, subject.count);
    describe(finding, snapshot, subject, host);
}

void CardFace::describe(const Finding& finding, const Snapshot& snapshot, const Subject& subject, const Host& host) {
    const std::string_view id = finding.id;
    if (id.starts_with("automation:")) {
        const std::string browser = automationBrowser(finding).value_or("browser");
        name = "Hidden automation " + without(browser, "Google ");
        sub = fmt::format("pid {} · {}", id.substr(id.find(':') + 1), Fmt::plural(subject.count, "process"));
        icon = AppIcons::icon(browser, host);
        return;
    }
    if (const QuitApp* quit = finding.quits()) {
        name = quit->app;
        sub = Fmt::plural(subject.group ? subject.group->processes.size() : 0, "process") + " · your own instance";
        icon = AppIcons::icon(quit->app, host);
        return;
    }
    if (subject.root) {
        const std::string group = Classifier::group(*subject.root, host);
        const auto parts = split(group, ": ");
        const bool twofold = parts.size() == 2;
        name = twofold ? parts[1] : group;
        if (twofold) sub = fmt::format("{} · ", parts[0]);
        sub += fmt::format("pid {}", subject.root->id);
        if (subject.count >= 2) sub += fmt::format(" · {} processes", subject.count);
        icon = AppIcons::icon(twofold ? parts[0] : group, host);
        return;
    }
    if (id == "sessions") {
        const auto live = std::ranges::count(snapshot.sessions, true, &AgentSession::alive);
        name = finding.title.substr(0, finding.title.find(" hold"));
        sub = Fmt::plural(static_cast<std::uint64_t>(live), "session") + " · " + Fmt::amountText(heldBytes);
        icon = AppIcons::icon("Claude Code", host);
        return;
    }
    const auto evidence = split(finding.evidence, " · ");
    if (id.starts_with("db:") || id == "db") {
        name = evidence[0];
        sub = "database · " + joined(std::span(evidence).subspan(1));
        icon = {{}, std::string(AppIcons::cylinder)};
        return;
    }
    name = HistoryStore::label(finding.id, {{finding.id, finding.title}});
    sub = joined(std::span(evidence).first(std::min<std::size_t>(2, evidence.size())));
    icon = {{}, std::string(symbolOf(id, name, host))};
}

std::optional<std::string> automationBrowser(const Finding& finding) {
    static const Regex browser("(?<=automation ).+?(?= from)");
    if (!finding.id.starts_with("automation:")) return std::nullopt;
    const auto found = browser.find(finding.title);
    if (!found) return std::nullopt;
    return std::string(*found);
}

}  // namespace ravik
