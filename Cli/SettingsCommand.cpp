#include "Cli/SettingsCommand.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Cli/Values.h"
#include "Core/Screens/LiveLeftoversRule.h"
#include "Core/Watch/Thresholds.h"

namespace ravik::cli {

namespace {

constexpr std::string_view storeKey = "thresholds";

Thresholds stored(Context& context) {
    const auto value = context.platform().defaults.get(storeKey);
    return value ? Thresholds::decode(*value).value_or(Thresholds{}) : Thresholds{};
}

/// A change that changes nothing writes nothing.
int store(Context& context, const Thresholds& before, const Thresholds& limits) {
    if (limits == before || context.platform().defaults.set(storeKey, limits.encode())) return done;
    context.err << fmt::format("ravik settings: {} could not be written\n",
                               context.platform().folders.settings.string());
    return couldNot;
}

/// The limits that the settings screen leaves to others.
struct FreeField {
    std::string_view key;
    std::string_view title;
    double Thresholds::*hours = nullptr;
    bool Thresholds::*flag = nullptr;
    double low = 0;
    /// Absent: any finite number.
    std::optional<double> high = {};

    bool accepts(double value) const { return low <= value && (!high || value <= *high); }
};

constexpr FreeField freeFields[] = {
    {"hogMinHours", "Hours at that load before it counts", &Thresholds::hogMinHours, nullptr},
    {"autoEndLeftovers", "End leftovers without asking", nullptr, &Thresholds::autoEndLeftovers},
    {"autoLeftoverMinHours", "Hours before that rule acts", &Thresholds::autoLeftoverMinHours, nullptr,
     LiveLeftoversRule::lowestHours, LiveLeftoversRule::highestHours},
};

std::string show(const Thresholds& limits, const FreeField& field) {
    return field.flag ? (limits.*field.flag ? "true" : "false") : fmt::format("{}", limits.*field.hours);
}

std::string keys() {
    std::vector<std::string_view> names;
    for (const ThresholdField& field : thresholdFields()) names.push_back(field.key);
    for (const FreeField& field : freeFields) names.push_back(field.key);
    return fmt::format("{}", fmt::join(names, ", "));
}

int refuse(Context& context, const std::string& sentence) {
    context.err << sentence << "\n";
    return couldNot;
}

int setFree(Context& context, const FreeField& field, const std::string& text) {
    const Thresholds before = stored(context);
    Thresholds limits = before;
    if (field.flag) {
        if (text != "true" && text != "false") {
            return refuse(context, fmt::format("Must be true or false. The last saved value, {}, stays in use.",
                                               show(limits, field)));
        }
        limits.*field.flag = text == "true";
        const int status = store(context, before, limits);
        if (status == done && limits != before) context.log.event("autopilotRule", {{"on", limits.*field.flag}});
        return status;
    }
    const auto value = parseNumber(text);
    if (!value || !field.accepts(*value)) {
        const double saved = limits.*field.hours;
        return refuse(context, field.high
                                   ? rangeRefusal(field.low, *field.high, saved)
                                   : fmt::format("Must be a number of hours, {} or more. The last saved value, {}, "
                                                 "stays in use.",
                                                 field.low, saved));
    }
    limits.*field.hours = *value;
    return store(context, before, limits);
}

}  // namespace

int runSettings(Context& context, const Arguments& arguments) {
    const Thresholds limits = stored(context);
    if (arguments.has("--json")) {
        context.out << limits.encode().dump() << "\n";
        return done;
    }
    Table table({Table::Align::left, Table::Align::right, Table::Align::left, Table::Align::left, Table::Align::left});
    for (const ThresholdField& field : thresholdFields()) {
        table.add({std::string(field.key), fmt::format("{}", field.value(limits)), std::string(field.unit),
                   fmt::format("{} to {}", field.low, field.high), field.titleWith(context.host.nouns())});
    }
    for (const FreeField& field : freeFields) {
        table.add({std::string(field.key), show(limits, field), field.flag ? "" : "h",
                   field.high ? fmt::format("{} to {}", field.low, *field.high) : "", std::string(field.title)});
    }
    context.out << table.render(0);
    return done;
}

int runSettingsSet(Context& context, const Arguments& arguments) {
    const std::string key = *arguments.value("KEY");
    const std::string text = *arguments.value("VALUE");
    for (const FreeField& field : freeFields) {
        if (field.key == key) return setFree(context, field, text);
    }
    for (const ThresholdField& field : thresholdFields()) {
        if (field.key != key) continue;
        const Thresholds before = stored(context);
        const auto value = parseNumber(text);
        if (!value || !field.accepts(*value)) return refuse(context, field.refusal(field.value(before)));
        Thresholds limits = before;
        field.assign(limits, *value);
        return store(context, before, limits);
    }
    return refuseWords(context, "settings set",
                       fmt::format("there is no \"{}\"; expected one of {}", printable(key), keys()));
}

int runSettingsReset(Context& context, const Arguments&) {
    const Thresholds before = stored(context);
    return store(context, before, restoredDefaults(before));
}

}  // namespace ravik::cli
