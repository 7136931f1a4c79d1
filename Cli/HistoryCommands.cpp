#include "Cli/HistoryCommands.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Cli/Values.h"
#include "Core/Base/Iso8601.h"
#include "Core/Reading/Json.h"
#include "Core/Record/HistoryJson.h"
#include "Core/Record/HistoryStore.h"
#include "Core/Reporting/Usage.h"

namespace ravik::cli {

std::filesystem::path logFolder(const Context& context, const Arguments& arguments) {
    const auto given = arguments.value("--logs");
    return given ? std::filesystem::path(*given) : context.platform().folders.log;
}

int runHistory(Context& context, const Arguments& arguments) {
    HistoryJson::Query query;
    query.clock = context.now();
    const std::string span = arguments.value("--span").value_or("day");
    if (span != "day" && span != "week") {
        return refuseWords(context, "history",
                           fmt::format("--span: expected day or week, not \"{}\"", printable(span)));
    }
    if (span == "week") query.span = HistoryScreen::Span::week;
    if (const auto text = arguments.value("--now")) {
        query.now = parseNumber(*text);
        if (!query.now) {
            return refuseWords(context, "history",
                               fmt::format("--now: expected seconds since 1970, not \"{}\"", printable(*text)));
        }
    }
    const auto cache = arguments.value("--cache");
    const auto days = HistoryStore::load(
        logFolder(context, arguments), cache ? std::filesystem::path(*cache) : context.platform().folders.historyCache);
    if (arguments.has("--json")) {
        context.out << printableJson(Json::text(HistoryJson::object(days, query))) << "\n";
    } else {
        context.out << printableLines(HistoryJson::text(days, query, context.host));
    }
    return done;
}

int runReport(Context& context, const Arguments& arguments) {
    const std::string today = Iso8601::localDay(context.now());
    const std::string day = arguments.value("--day").value_or(today);
    if (!Usage::isDay(day)) {
        return refuseWords(context, "report",
                           fmt::format("--day: expected a date as {}, not \"{}\"", today, printable(day)));
    }
    const auto folder = logFolder(context, arguments);
    if (const auto refusal = Usage::refusal(folder, day)) {
        context.err << printable(*refusal) << "\n";
        return couldNot;
    }
    Usage::About about;
    Defaults& defaults = context.platform().defaults;
    const auto id = defaults.get("usageID");
    about.id = id && id->is_string() ? id->get<std::string>() : std::string(Usage::noID);
    about.version = RAVIK_VERSION;
    about.os = Usage::osName(context.computer.osRelease());
    about.ramBytes = context.platform().machine.installedBytes();
    context.out << Json::text(Usage::reportOfDay(folder, day, about)) << "\n";
    return done;
}

}  // namespace ravik::cli
