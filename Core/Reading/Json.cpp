#include "Core/Reading/Json.h"

#include <nlohmann/json.hpp>

#include "Core/Wording/CardFace.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Tree.h"
#include "Core/Wording/Words.h"

namespace ravik::Json {

using nlohmann::json;

namespace {

template <typename Value>
json orNull(const std::optional<Value>& value) {
    return value ? json(*value) : json();
}

/// An array of what `convert` makes of each.
template <typename Range, typename Convert>
json each(const Range& range, Convert convert) {
    json list = json::array();
    for (const auto& element : range) list.push_back(convert(element));
    return list;
}

json pidsOf(const std::vector<Proc>& procs) {
    return each(procs, [](const Proc& proc) { return proc.id; });
}

json remedy(const Remedy& remedy) {
    if (const auto* kill = std::get_if<KillTrees>(&remedy)) return {{"kind", "killTrees"}, {"pids", kill->pids}};
    if (const auto* quit = std::get_if<QuitApp>(&remedy)) return {{"kind", "quitApp"}, {"app", quit->app}};
    if (const auto* advice = std::get_if<Advice>(&remedy)) return {{"kind", "advice"}, {"text", advice->text}};
    return {{"kind", "scanDisk"}};
}

json face(const CardFace& face) {
    return {
        {"name", face.name},           {"sub", face.sub},   {"age", orNull(face.age)},
        {"heldBytes", face.heldBytes}, {"does", face.does},
    };
}

json tree(const Finding& finding, const ProcessIndex& index, const Host& host) {
    const KillTrees* kill = finding.kills();
    if (!kill) return json::array();
    return each(Tree::lines(kill->pids, index, treeLines, host), [](const TreeLine& line) {
        return json{
            {"id", line.id}, {"depth", line.depth}, {"last", line.last}, {"label", line.label}, {"mb", line.mb}};
    });
}

json evidenceLines(const std::vector<EvidenceLine>& lines) {
    return each(lines, [](const EvidenceLine& line) {
        return json{{"tone", word(line.tone)}, {"name", line.name}, {"line", line.line}, {"amount", line.amount}};
    });
}

}  // namespace

json finding(const Finding& finding, const Snapshot& snapshot, const ProcessIndex& index, const Host& host, Time now) {
    const CardFace card(finding, snapshot, index, host, now);
    return {
        {"id", finding.id},
        {"severity", word(finding.severity)},
        {"title", finding.title},
        {"evidence", finding.evidence},
        {"remedy", remedy(finding.remedy)},
        {"gainBytes", finding.gainBytes},
        {"caution", orNull(finding.caution)},
        {"neverReason", orNull(finding.neverReason)},
        {"startedBy", orNull(finding.startedBy)},
        {"tone", word(finding.tone())},
        {"name", Plain::name(finding, card, host)},
        {"sentence", Plain::sentence(finding, card, snapshot, host)},
        {"remedyLabel", orNull(Words::remedyLabel(finding, index))},
        {"evidenceRows", each(Words::evidence(finding),
                              [](const auto& row) {
                                  return json::array({row.first, row.second});
                              })},
        {"face", face(card)},
        {"tree", tree(finding, index, host)},
    };
}

json groups(const std::vector<AppGroup>& groups) {
    return each(groups, [](const AppGroup& group) {
        return json{{"id", group.id},
                    {"footprintBytes", group.footprintBytes},
                    {"cpuPercent", group.cpuPercent},
                    {"processes", pidsOf(group.processes)}};
    });
}

json sessions(const std::vector<AgentSession>& sessions) {
    return each(sessions, [](const AgentSession& session) {
        return json{{"id", session.id},
                    {"tool", session.tool},
                    {"alive", session.alive},
                    {"members", pidsOf(session.members)},
                    {"footprintBytes", session.footprintBytes()}};
    });
}

json rows(const std::vector<ProcRow>& rows) {
    return each(rows, [](const ProcRow& row) {
        return json{{"id", row.id},           {"command", row.command}, {"mb", row.mb},
                    {"cpu", row.cpu},         {"age", row.age},         {"pid", orNull(row.pid)},
                    {"app", orNull(row.app)}, {"tone", word(row.tone)}, {"word", orNull(row.word)}};
    });
}

json confirmation(const Confirmation& question) {
    return {
        {"title", question.title},
        {"message", question.message},
        {"verb", question.verb},
        {"ends", evidenceLines(question.ends)},
        {"leftAlone", evidenceLines(question.leftAlone)},
    };
}

json memory(const MemoryPicture& picture) {
    return {
        {"segments", each(picture.segments,
                          [](const MemoryPicture::Segment& segment) {
                              return json{{"id", segment.id},
                                          {"label", segment.label},
                                          {"bytes", segment.bytes},
                                          {"freeBytes", segment.freeBytes},
                                          {"quitBytes", segment.quitBytes},
                                          {"findingIDs", segment.findingIDs}};
                          })},
        {"ram", picture.ram},
        {"swap", picture.swap},
        {"held", picture.held()},
        {"freeBytes", picture.freeBytes()},
        {"quitBytes", picture.quitBytes()},
        {"quitApps", picture.quitApps()},
        {"summary", picture.summary()},
    };
}

json decisions(const std::vector<Decision>& decisions) {
    return each(decisions, [](const Decision& decision) {
        return json{{"action", word(decision.action)},
                    {"target", decision.target},
                    {"pids", decision.pids},
                    {"gainBytes", decision.gainBytes},
                    {"reason", decision.reason}};
    });
}

json diagnosis(const Snapshot& snapshot, const ProcessIndex& index, const Host& host, Time now) {
    const auto freeable = snapshot.freeable();
    return {
        {"breaches", snapshot.breaches},
        {"orphans", pidsOf(snapshot.orphans)},
        {"hogs", pidsOf(snapshot.hogs)},
        {"groups", groups(snapshot.groups)},
        {"sessions", sessions(snapshot.sessions)},
        {"findings",
         each(snapshot.findings, [&](const Finding& each) { return finding(each, snapshot, index, host, now); })},
        {"freeable", each(freeable, [](const Finding* each) { return each->id; })},
        {"freeableBytes", snapshot.freeableBytes()},
        {"reclaimableBytes", snapshot.reclaimableBytes()},
        {"gapLine", Words::gapLine(snapshot)},
    };
}

std::string text(const json& value, int indent) {
    return value.dump(indent, ' ', false, json::error_handler_t::replace);
}

}  // namespace ravik::Json
