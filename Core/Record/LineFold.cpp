#include "Core/Record/LineFold.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "Core/Base/Saturating.h"
#include "Core/Record/FindingLabel.h"
#include "Core/Record/LineFields.h"
#include "Core/Record/LineParser.h"
#include "Core/Record/LogBytes.h"
#include "Core/Record/QuickLine.h"
#include "Core/Record/StampReader.h"

namespace ravik {

namespace {

using JsonValue::Element;
using simdjson::dom::element_type;

static_assert(LogBytes::padding >= simdjson::SIMDJSON_PADDING);

/// Fixes less than so many seconds older than their batch belong to it.
constexpr double batchSeconds = 90;

constexpr std::array<std::string_view, 7> kinds{"tick\"",   "diagnosis\"", "finding\"", "remedy\"",
                                                "fixAll\"", "autopilot\"", "kill\""};

/// Where among `kinds` the first one stands whose bytes `"kind":"X"` the line holds; their number if it holds none. Such
/// lines are never parsed.
std::size_t mentionedKind(std::string_view line) {
    constexpr std::string_view key = "\"kind\":\"";
    // There are far fewer letters k in a line than quotes, and a search for one byte is the fastest there is.
    for (std::size_t k = 1; k < line.size() && (k = line.find('k', k)) != std::string_view::npos; ++k) {
        if (line.compare(k - 1, key.size(), key) != 0) continue;
        const std::string_view rest = line.substr(k - 1 + key.size());
        const auto kind =
            std::find_if(kinds.begin(), kinds.end(), [&](std::string_view one) { return rest.starts_with(one); });
        if (kind != kinds.end()) return static_cast<std::size_t>(kind - kinds.begin());
    }
    return kinds.size();
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
    LineParser parser;
    QuickLine quick;
    DayAggregate* day = nullptr;

    HourBucket& bucketAt(Time at);
    void fold(const LineFields& line);
    void foldQuick(QuickLine::Kind kind);
    void tick(const LineFields& line, Time at);
    void diagnosis(const LineFields& line, Time at);
    void sample(HourBucket& into, double swapGB, std::int64_t memFreePct, double load) const;
    void held(HourBucket& into, std::size_t rank, std::string_view app, std::int64_t mb);
    void caused(HourBucket& into, std::size_t rank, std::string_view id);
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
    const std::size_t kind = mentionedKind(line);
    if (kind == kinds.size()) return;
    if (kind < 2) {
        const auto quickKind = kind == 0 ? QuickLine::Kind::tick : QuickLine::Kind::diagnosis;
        if (m_state->quick.read(line, quickKind)) return m_state->foldQuick(quickKind);
    }
    simdjson::dom::object object;
    if (m_state->parser.parse(line).get_object().get(object) != simdjson::SUCCESS) return;
    m_state->fold(LineFields(object));
}

HourBucket& LineFold::State::bucketAt(Time at) {
    const auto hour = static_cast<std::int64_t>(at / 3600);
    if (bucket && bucketHour == hour) return *bucket;
    bucket = &day->hours[hour];
    bucket->start = static_cast<Time>(hour) * 3600;
    bucketHour = hour;
    lastTop.clear();
    lastCauses.clear();
    return *bucket;
}

void LineFold::State::foldQuick(QuickLine::Kind kind) {
    const auto at = stamps.read(quick.t);
    if (!at) return;
    HourBucket& into = bucketAt(*at);
    if (kind == QuickLine::Kind::tick) {
        sample(into, quick.swapGB, quick.memFreePct, quick.load);
        for (std::size_t rank = 0; rank < quick.top.size(); ++rank) {
            held(into, rank, quick.top[rank].first, quick.top[rank].second);
        }
    } else {
        into.reclaimMB = std::max(into.reclaimMB, quick.reclaimableMB);
        for (std::size_t rank = 0; rank < quick.findings.size(); ++rank) caused(into, rank, quick.findings[rank]);
    }
}

void LineFold::State::fold(const LineFields& line) {
    const auto kind = line.text(Field::kind);
    const auto stamp = line.text(Field::t);
    if (!kind || !stamp) return;
    const auto at = stamps.read(*stamp);
    if (!at) return;
    if (*kind == "tick") return tick(line, *at);
    if (*kind == "diagnosis") return diagnosis(line, *at);
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

void LineFold::State::tick(const LineFields& line, Time at) {
    HourBucket& into = bucketAt(at);
    sample(into, line.real(Field::swapGB), line.whole(Field::memFreePct, 100), line.real(Field::load));
    std::size_t rank = 0;
    line.forEach(Field::top, element_type::ARRAY, [&](const Element& app) {
        const simdjson::dom::array pair = app.get_array().value_unsafe();
        if (pair.size() != 2) return;
        auto part = pair.begin();
        const auto name = JsonValue::text(*part);
        const auto mb = JsonValue::whole(*++part);
        if (name && mb) held(into, rank++, *name, *mb);
    });
}

void LineFold::State::diagnosis(const LineFields& line, Time at) {
    HourBucket& into = bucketAt(at);
    into.reclaimMB = std::max(into.reclaimMB, line.whole(Field::reclaimableMB));
    std::size_t rank = 0;
    line.forEach(Field::findings, element_type::STRING,
                 [&](const Element& id) { caused(into, rank++, id.get_string().value_unsafe()); });
}

void LineFold::State::sample(HourBucket& into, double swapGB, std::int64_t memFreePct, double load) const {
    into.samples = saturatingAdd(into.samples, 1);
    into.swapSum += swapGB;
    into.swapMax = std::max(into.swapMax, swapGB);
    into.memFreeMin = std::min(into.memFreeMin, memFreePct);
    into.loadMax = std::max(into.loadMax, load);
}

void LineFold::State::held(HourBucket& into, std::size_t rank, std::string_view app, std::int64_t mb) {
    if (rank >= lastTop.size()) lastTop.resize(rank + 1);
    auto*& last = lastTop[rank];
    if (!last || last->first != app) {
        const auto known = into.apps.find(app);
        last = known != into.apps.end() ? &*known : &*into.apps.emplace(std::string(app), 0).first;
    }
    last->second = std::max(last->second, mb);
}

void LineFold::State::caused(HourBucket& into, std::size_t rank, std::string_view id) {
    if (rank >= lastCauses.size()) lastCauses.resize(rank + 1);
    const std::string*& last = lastCauses[rank];
    if (last && *last == id) return;
    const auto known = into.causes.find(id);
    last = known != into.causes.end() ? &*known : &*into.causes.emplace(id).first;
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
