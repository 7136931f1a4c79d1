#include <algorithm>

#include <fmt/format.h>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/CommandLine.h"
#include "Core/Diagnosis/Rx.h"

namespace ravik::Classifier {

namespace {

constexpr int maxSplits = 16;

/// What an interpreter runs, as far as it names a group: the value of an option counts as an argument here.
std::optional<std::string> interpreted(std::string_view base, CommandWords words, const HostTables& tables) {
    for (int splits = 1;; ++splits) {
        // The piece behind the last split keeps its blanks.
        const std::string_view piece = splits == maxSplits ? words.rest() : words.next();
        if (piece.empty()) return std::nullopt;
        if (!piece.starts_with('-') && !tables.launcherWords.contains(piece)) {
            return fmt::format("{}: {}", base, lastPathComponent(piece));
        }
        if (splits == maxSplits) return std::nullopt;
    }
}

std::string label(const Proc& proc, const Host& host) {
    if (!host.isMac() && proc.app) return proc.app->str();
    if (const auto bundle = Rx::appBundle().find(proc.command)) {
        const std::string_view name = bundle->substr(1);
        return std::string(name.substr(0, name.find('.')));
    }
    CommandWords words(proc.command);
    const std::string_view first = words.next();
    const std::string_view base = first.empty() ? std::string_view(proc.name) : lastPathComponent(first);
    if (base == "claude") return "Claude Code";
    if (host.tables().interpreters.contains(base)) {
        if (auto name = interpreted(base, words, host.tables())) return std::move(*name);
    }
    return std::string(base);
}

}  // namespace

std::string_view lastPathComponent(std::string_view path) {
    const std::size_t last = path.find_last_not_of('/');
    if (last == path.npos) return path.substr(0, 1);
    path = path.substr(0, last + 1);
    return path.substr(path.rfind('/') + 1);
}

std::string group(const Proc& proc, const Host& host) {
    if (proc.uid == host.uid) return label(proc, host);
    return fmt::format("[{}] {}", proc.uid, label(proc, host));
}

std::vector<AppGroup> groups(const std::vector<Proc>& procs, const Host& host) {
    std::vector<AppGroup> found;
    std::unordered_map<std::string, std::size_t> places;
    for (const Proc& proc : procs) {
        const auto [place, isNew] = places.try_emplace(group(proc, host), found.size());
        if (isNew) found.emplace_back().id = place->first;
        AppGroup& entry = found[place->second];
        entry.footprintBytes += proc.footprintBytes;
        entry.cpuPercent += proc.cpuPercent;
        entry.processes.push_back(proc);
    }
    std::ranges::stable_sort(found, std::ranges::greater{}, &AppGroup::footprintBytes);
    return found;
}

std::optional<std::string> agentTool(const Proc& proc, const Host& host) {
    const std::vector<std::string_view>& tools = host.tables().agentTools;
    const std::string_view command = proc.command;
    std::string_view word = command.substr(0, command.find(' '));
    if (word.empty()) word = proc.name;
    const std::string_view base = lastPathComponent(word);
    if (const auto tool = std::ranges::find(tools, base); tool != tools.end()) return std::string(*tool);

    // A tool that installs its program as a file named after its version.
    if (host.adopts(proc.ppid) || !command.starts_with('/') || !Rx::version().matches(base)) return std::nullopt;
    for (const std::string_view tool : tools) {
        if (command.find(fmt::format("/{}/", tool)) != command.npos) return std::string(tool);
    }
    return std::nullopt;
}

bool isMacOS(const Proc& proc, const Host& host) {
    const HostTables& tables = host.tables();
    return startsWithAny(proc.command, tables.systemPrefixes) && !startsWithAny(proc.command, tables.systemExceptions);
}

}  // namespace ravik::Classifier
