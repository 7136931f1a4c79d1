#include "Core/Record/LineFold.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "Core/Base/Saturating.h"
#include "Core/Record/FindingLabel.h"
#include "Core/Record/LineFields.h"
#include "Core/Record/LogBytes.h"
#include "Core/Record/StampReader.h"

namespace ravik {

namespace {

using JsonValue::Element;
using simdjson::dom::element_type;

static_assert(LogBytes::padding >= simdjson::SIMDJSON_PADDING);

/// Fixes less than so many seconds older than their batch belong to it.
constexpr double batchSeconds = 90;

/// True if the line holds the bytes `"kind":"X"` with one of the kinds that count. The others are never parsed.
bool mentionsAKind(std::string_view line) {
    constexpr std::string_view key = "\"kind\":\"";
    constexpr std::array<std::string_view, 7> kinds{"tick\"",   "diagnosis\"", "finding\"", "remedy\"",
                                                    "fixAll\"", "autopilot\"", "kill\""};
    // There are far fewer letters k in a line than quotes, and a search for one byte is the fastest there is.
    for (std::size_t k = 1; k < line.size() && (k = line.find('k', k)) != std::string_view::npos; ++k) {
        if (line.compare(k - 1, key.size(), key) != 0) continue;
        const std::string_view rest = line.substr(k - 1 + key.size());
        if (std::any_of(kinds.begin(), kinds.end(), [&](std::string_view kind) { return rest.starts_with(kind); })) {
            return true;
        }
    }
    return false;
}

std::string without(std::string text, std::string_view word) {
    for (std::size_t at = 0; (at = text.find(word, at)) != std::string::npos;) text.erase(at, word.size());
    return text;
}

bool mayStillNeedAnAnswer(const LineFields& line) {
    return line.has(Field::refused) || line.has(Field::needsConfirmation);
}

}  // namespace

struct LineFold::State {
    simdjson::dom::parser parser;
    DayAggregate* day = nullptr;

    HourBucket& bucketAt(std::int64_t hour);
    void fold(const LineFields& line);
    void tick(const LineFields& line, std::int64_t hour);
    void diagnosis(const LineFields& line, std::int64_t hour);
    void remedy(const LineFields& line, HistoryEvent event);
    void fixAll(const LineFields& line, HistoryEvent event);
    void kill(const LineFields& line, HistoryEvent event);

    // Lines stand in order of time and much alike, so what the line before them came to mostly holds for them.
    StampReader stamps;
    std::int64_t bucketHour = 0;
    HourBucket* bucket = nullptr;
    std::vector<HourBucket::Apps::value_type*> lastTop;
    std::vector<const std::string*> lastCauses;
};

LineFold::LineFold() : m_state(std::make_unique<State>()) {}
LineFold::~LineFold() = default;

void LineFold::begin(DayAggregate& day) {
    m_state->day = &day;
    m_state->bucket = nullptr;
}

void LineFold::apply(std::string_view line) {
    if (!mentionsAKind(line)) return;
    simdjson::dom::object object;
    if (m_state->parser.parse(line.data(), line.size(), false).get_object().get(object) != simdjson::SUCCESS) return;
    m_state->fold(LineFields(object));
}

HourBucket& LineFold::State::bucketAt(std::int64_t hour) {
    if (bucket && bucketHour == hour) return *bucket;
    bucket = &day->hours[hour];
    bucket->start = static_cast<Time>(hour) * 3600;
    bucketHour = hour;
    lastTop.clear();
    lastCauses.clear();
    return *bucket;
}

void LineFold::State::fold(const LineFields& line) {
    const auto kind = line.text(Field::kind);
    const auto stamp = line.text(Field::t);
    if (!kind || !stamp) return;
    const auto at = stamps.read(*stamp);
    if (!at) return;
    const auto hour = static_cast<std::int64_t>(*at / 3600);
    if (*kind == "tick") return tick(line, hour);
    if (*kind == "diagnosis") return diagnosis(line, hour);
    if (*kind == "finding") {
        const auto id = line.text(Field::id);
        const auto title = line.text(Field::title);
        if (id && title) day->titles.insert_or_assign(std::string(*id), std::string(*title));
        return;
    }

    HistoryEvent event;
    event.at = *at;
    event.survivors = line.length(Field::survivors);
    if (*kind == "remedy") return remedy(line, std::move(event));
    if (*kind == "fixAll") return fixAll(line, std::move(event));
    if (*kind == "kill") return kill(line, std::move(event));
    if (*kind == "autopilot") {
        event.what = fmt::format("Autopilot · {} ended", line.whole(Field::ended));
        event.mb = line.whole(Field::mb);
        day->events.push_back(std::move(event));
    }
}

void LineFold::State::tick(const LineFields& line, std::int64_t hour) {
    HourBucket& into = bucketAt(hour);
    const double swap = line.real(Field::swapGB);
    into.samples = saturatingAdd(into.samples, 1);
    into.swapSum += swap;
    into.swapMax = std::max(into.swapMax, swap);
    into.memFreeMin = std::min(into.memFreeMin, line.whole(Field::memFreePct, 100));
    into.loadMax = std::max(into.loadMax, line.real(Field::load));
    std::size_t rank = 0;
    line.forEach(Field::top, element_type::ARRAY, [&](const Element& app) {
        const simdjson::dom::array pair = app.get_array().value_unsafe();
        if (pair.size() != 2) return;
        auto part = pair.begin();
        const auto name = JsonValue::text(*part);
        const auto mb = JsonValue::whole(*++part);
        if (!name || !mb) return;
        if (rank == lastTop.size()) lastTop.push_back(nullptr);
        auto*& held = lastTop[rank++];
        if (!held || held->first != *name) {
            const auto known = into.apps.find(*name);
            held = known != into.apps.end() ? &*known : &*into.apps.emplace(std::string(*name), 0).first;
        }
        held->second = std::max(held->second, *mb);
    });
}

void LineFold::State::diagnosis(const LineFields& line, std::int64_t hour) {
    HourBucket& into = bucketAt(hour);
    into.reclaimMB = std::max(into.reclaimMB, line.whole(Field::reclaimableMB));
    std::size_t rank = 0;
    line.forEach(Field::findings, element_type::STRING, [&](const Element& finding) {
        const std::string_view id = finding.get_string().value_unsafe();
        if (rank == lastCauses.size()) lastCauses.push_back(nullptr);
        const std::string*& cause = lastCauses[rank++];
        if (cause && *cause == id) return;
        const auto known = into.causes.find(id);
        cause = known != into.causes.end() ? &*known : &*into.causes.emplace(id).first;
    });
}

void LineFold::State::remedy(const LineFields& line, HistoryEvent event) {
    const auto id = line.text(Field::finding);
    if (!id || mayStillNeedAnAnswer(line) || line.is(Field::quit, false)) return;
    const bool quit = id->starts_with("browser:") || line.has(Field::quit);
    event.what = quit ? "Quit " + without(without(std::string(*id), "browser:"), "app:")
                      : "Ended " + HistoryStore::label(*id, day->titles);
    event.ids = {std::string(*id)};
    event.mb = line.whole(Field::gainMB);
    day->events.push_back(std::move(event));
}

void LineFold::State::fixAll(const LineFields& line, HistoryEvent event) {
    if (line.is(Field::cancelled, true)) return;
    line.forEach(Field::findings, element_type::STRING,
                 [&](const Element& id) { event.ids.emplace_back(id.get_string().value_unsafe()); });
    const auto belongs = [&](const HistoryEvent& earlier) {
        return earlier.what.starts_with("Ended") && event.at - earlier.at < batchSeconds &&
               std::all_of(earlier.ids.begin(), earlier.ids.end(), [&](const std::string& id) {
                   return std::find(event.ids.begin(), event.ids.end(), id) != event.ids.end();
               });
    };
    for (const HistoryEvent& earlier : day->events) {
        if (belongs(earlier)) event.mb = saturatingAdd(event.mb, earlier.mb);
    }
    std::erase_if(day->events, belongs);
    event.what = fmt::format("Free · {} ended", event.ids.size());
    day->events.push_back(std::move(event));
}

void LineFold::State::kill(const LineFields& line, HistoryEvent event) {
    if (mayStillNeedAnAnswer(line)) return;
    event.what = fmt::format("Ended {}", line.text(Field::group).value_or("a process"));
    event.mb = line.whole(Field::mb);
    day->events.push_back(std::move(event));
}

}  // namespace ravik
