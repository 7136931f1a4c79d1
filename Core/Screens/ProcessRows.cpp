#include "Core/Screens/ProcessRows.h"

#include <algorithm>

#include <fmt/format.h>

#include "Core/Base/Utf8.h"
#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/Safety.h"
#include "Core/Wording/Fmt.h"

namespace ravik::ProcessRows {

namespace {

bool holds(std::string_view text, const std::string& loweredQuery) {
    return loweredQuery.empty() || Utf8::lower(text).find(loweredQuery) != std::string::npos;
}

std::int64_t megabytes(std::uint64_t bytes) { return static_cast<std::int64_t>(Fmt::wholeMB(bytes)); }

void judge(ProcRow& row, const AppGroup& group, const Running& running, const Host& host) {
    const auto isSystem = [&](const Proc& proc) { return Classifier::isMacOS(proc, host); };
    row.tone = Tone::never;
    if (group.id.starts_with('[')) {
        row.word = "not yours";
    } else if (host.tables().engineProtected.contains(group.id)) {
        row.word = "protected";
    } else if (std::ranges::all_of(group.processes, isSystem)) {
        row.word = std::string(host.nouns().systemWord);
    } else {
        row.tone = Tone::safe;
        if (running.contains(group.id)) row.app = group.id;
    }
}

void judge(ProcRow& row, const Verdict& verdict, const Host& host) {
    if (verdict.isCaution()) {
        row.tone = Tone::caution;
        row.word = "busy";
    } else if (verdict.isNever()) {
        row.tone = Tone::never;
        if (verdict.reason == "not yours") row.word = "not yours";
        if (verdict.reason.starts_with(host.nouns().partOfSystem)) row.word = std::string(host.nouns().systemWord);
    }
}

std::vector<ProcRow> appRows(const Snapshot& snapshot, const std::string& query, const Running& running,
                             const Host& host, Time now) {
    std::vector<ProcRow> rows;
    for (const AppGroup& group : snapshot.groups) {
        if (!holds(group.id, query)) continue;
        ProcRow row;
        row.id = "app:" + group.id;
        row.command = group.id;
        row.mb = megabytes(group.footprintBytes);
        row.cpu = group.cpuPercent;
        if (!group.processes.empty()) row.age = now - std::ranges::min(group.processes, {}, &Proc::started).started;
        judge(row, group, running, host);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<ProcRow> processRows(const std::vector<Proc>& procs, const ProcessIndex& index, const std::string& query,
                                 const Host& host, Time now) {
    std::vector<const Proc*> hits;
    Pids roots;
    for (const Proc& proc : procs) {
        if (!holds(proc.name, query) && !holds(proc.command, query)) continue;
        hits.push_back(&proc);
        roots.push_back(proc.id);
    }
    const auto verdicts = Safety::verdicts(roots, index, host);
    std::vector<ProcRow> rows;
    rows.reserve(hits.size());
    for (const Proc* proc : hits) {
        ProcRow row;
        row.id = fmt::format("pid:{}", proc->id);
        row.command = proc->command.str();
        row.mb = megabytes(proc->footprintBytes);
        row.cpu = proc->cpuPercent;
        row.age = now - proc->started;
        row.pid = proc->id;
        if (const auto verdict = verdicts.find(proc->id); verdict != verdicts.end()) judge(row, verdict->second, host);
        rows.push_back(std::move(row));
    }
    return rows;
}

}  // namespace

std::vector<ProcRow> rows(const Snapshot& snapshot, const ProcessIndex& index, Scope scope, std::string_view query,
                          const Running& running, const Host& host, Time now) {
    const std::string lowered = Utf8::lower(query);
    if (scope == Scope::apps) return appRows(snapshot, lowered, running, host, now);
    return processRows(scope == Scope::leftovers ? snapshot.orphans : snapshot.processes, index, lowered, host, now);
}

}  // namespace ravik::ProcessRows
