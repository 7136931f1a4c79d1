#include "Core/Reading/Replay.h"

#include <set>

#include <nlohmann/json.hpp>

#include "Core/Reading/Json.h"
#include "Core/Screens/DiagnosisSections.h"
#include "Core/Screens/Glyph.h"
#include "Core/Watch/AlertPolicy.h"
#include "Core/Watch/TickLines.h"
#include "Core/Wording/AlertText.h"
#include "Core/Wording/InfoText.h"

namespace ravik {

using nlohmann::json;

namespace {

constexpr std::size_t topApps = 6;

json alertCauses(const Snapshot& snapshot) {
    const AlertPolicy::Causes causes = AlertPolicy::causes(snapshot.findings);
    return {{"critical", causes.critical}, {"urgent", causes.urgent}};
}

json glyph(const Snapshot& snapshot, const Host& host) {
    const Glyph glyph(snapshot, host);
    return {{"symbol", glyph.symbol}, {"title", glyph.title}, {"label", glyph.label}};
}

json rows(const Capture& capture, const Snapshot& snapshot, const ProcessIndex& index) {
    using ProcessRows::Scope;
    const Reading& reading = capture.reading;
    const ProcessRows::Running running(capture.running.begin(), capture.running.end());
    const auto of = [&](Scope scope) {
        return Json::rows(ProcessRows::rows(snapshot, index, scope, capture.query, running, reading.host, reading.now));
    };
    return {{"apps", of(Scope::apps)}, {"leftovers", of(Scope::leftovers)}, {"all", of(Scope::all)}};
}

json notification(const Snapshot& snapshot) {
    const Notification alert = alertText(snapshot);
    json actions = json::array();
    for (const auto& [identifier, title] : alert.actions) actions.push_back(json::array({identifier, title}));
    return {{"title", alert.title}, {"body", alert.body}, {"actions", std::move(actions)}};
}

json sections(const Snapshot& snapshot) {
    json list = json::array();
    for (const DiagnosisSection& section : DiagnosisSections::of(snapshot)) {
        json ids = json::array();
        for (const Finding* finding : section.findings) ids.push_back(finding->id);
        list.push_back({{"heading", section.heading}, {"ids", std::move(ids)}});
    }
    return list;
}

json info(const Snapshot& snapshot, const Reading& reading) {
    json pages = json::object();
    for (const Destination destination : allDestinations) {
        json page = json::array();
        for (const auto& [heading, text] : InfoText::sections(destination, snapshot, reading.ramBytes, reading.host)) {
            page.push_back(json::array({heading, text}));
        }
        pages[std::string(word(destination))] = std::move(page);
    }
    return pages;
}

json logLines(const Snapshot& snapshot, const Host& host) {
    json lines = json::array();
    const auto add = [&](const char* kind, json fields) {
        fields["kind"] = kind;
        lines.push_back(std::move(fields));
    };
    add("tick", TickLines::tick(snapshot));
    if (!snapshot.findings.empty()) add("diagnosis", TickLines::diagnosis(snapshot));
    std::set<std::string> seen;
    for (const Finding& finding : snapshot.findings) {
        if (seen.insert(finding.id).second) add("finding", TickLines::finding(finding));
    }
    if (auto self = TickLines::self(snapshot, host.pid)) add("self", std::move(*self));
    return lines;
}

json trendAfter(const Snapshot& snapshot, const Reading& reading) {
    Trend trend = reading.trend ? *reading.trend : Trend{};
    trend.record(snapshot, reading.limits);
    return trendJson(trend);
}

}  // namespace

json replay(const Capture& capture) {
    const Reading& reading = capture.reading;
    const Host& host = reading.host;
    const Snapshot snapshot = diagnosed(reading);
    const ProcessIndex index(snapshot.processes);
    Engine engine;
    engine.keep = reading.keep;
    const Engine::Conditions conditions = Engine::conditions(snapshot);

    json result = Json::diagnosis(snapshot, index, host, reading.now);
    result["alertCauses"] = alertCauses(snapshot);
    result["glyph"] = glyph(snapshot, host);
    result["confirmation"] = Json::confirmation(freeConfirmation(snapshot, host, reading.now));
    result["memory"] = Json::memory(MemoryPicture(snapshot, index, reading.ramBytes, topApps, host));
    result["rows"] = rows(capture, snapshot, index);
    result["conditions"] = {{"underPressure", conditions.underPressure}, {"loaded", conditions.loaded}};
    result["decisions"] = Json::decisions(
        engine.decide(snapshot, capture.engineHistory, capture.foreground, host, reading.now, reading.now));
    result["notification"] = notification(snapshot);
    result["sections"] = sections(snapshot);
    result["info"] = info(snapshot, reading);
    result["trendAfter"] = trendAfter(snapshot, reading);
    result["logLines"] = logLines(snapshot, host);
    return result;
}

}  // namespace ravik
