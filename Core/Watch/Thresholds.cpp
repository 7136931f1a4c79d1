#include "Core/Watch/Thresholds.h"

#include <cctype>
#include <cmath>
#include <limits>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace ravik {

namespace {

using nlohmann::json;

bool read(const json& from, double& into) {
    if (!from.is_number()) return false;
    into = from.get<double>();
    return std::isfinite(into);
}

bool read(const json& from, int& into) {
    double value = 0;
    if (!read(from, value) || value != std::trunc(value)) return false;
    if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) return false;
    into = static_cast<int>(value);
    return true;
}

bool read(const json& from, bool& into) {
    if (!from.is_boolean()) return false;
    into = from.get<bool>();
    return true;
}

// Every stored field, in its order, by the key that it is stored under.
template <typename Limits, typename Visit>
bool allFields(Limits& limits, Visit visit) {
    return visit("swapGB", limits.swapGB) && visit("swapOutMBps", limits.swapOutMBps) &&
           visit("memoryFreePct", limits.memoryFreePct) && visit("diskFreeGB", limits.diskFreeGB) &&
           visit("loadPerCore", limits.loadPerCore) && visit("orphanMinHours", limits.orphanMinHours) &&
           visit("hogCPUPercent", limits.hogCPUPercent) && visit("hogMinHours", limits.hogMinHours) &&
           visit("autoEndLeftovers", limits.autoEndLeftovers) &&
           visit("autoLeftoverMinHours", limits.autoLeftoverMinHours);
}

constexpr std::string_view machineInTitles = "Mac";

}  // namespace

std::optional<Thresholds> Thresholds::decode(const json& value) {
    if (!value.is_object()) return {};
    Thresholds limits;
    const bool whole = allFields(limits, [&](const char* key, auto& field) {
        const auto found = value.find(key);
        return found != value.end() && read(*found, field);
    });
    if (!whole) return {};
    return limits;
}

json Thresholds::encode() const {
    json value = json::object();
    allFields(*this, [&](const char* key, const auto& field) {
        value[key] = field;
        return true;
    });
    return value;
}

void ThresholdField::assign(Thresholds& limits, double value) const {
    if (real) {
        limits.*real = value;
    } else if (!std::isnan(value)) {
        limits.*whole = static_cast<int>(
            std::fmin(std::fmax(value, std::numeric_limits<int>::min()), std::numeric_limits<int>::max()));
    }
}

std::string ThresholdField::refusal(double saved) const { return rangeRefusal(low, high, saved); }

std::string ThresholdField::titleWith(const Nouns& nouns) const {
    if (!title.starts_with(machineInTitles)) return std::string(title);
    std::string noun(nouns.machine);
    noun.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(noun.front())));
    return noun + std::string(title.substr(machineInTitles.size()));
}

std::string ThresholdField::hint() const {
    return fmt::format("Default {} {}", value(Thresholds{}),
                       real == &Thresholds::loadPerCore ? std::string_view("× its processor cores") : unit);
}

const std::array<ThresholdField, 7>& thresholdFields() {
    using T = Thresholds;
    static constexpr std::array<ThresholdField, 7> fields{{
        {"swapGB", "Memory spilled to disk, more than", "GB", 1, 128, &T::swapGB},
        {"swapOutMBps", "Spilling to disk faster than", "MB/s", 1, 1000, &T::swapOutMBps},
        {"memoryFreePct", "Free memory below", "%", 1, 99, nullptr, &T::memoryFreePct},
        {"diskFreeGB", "Free disk space below", "GB", 1, 1000, &T::diskFreeGB},
        {"loadPerCore", "Mac busier than", "× cores", 0.5, 16, &T::loadPerCore},
        {"orphanMinHours", "Left running after its window closed, for more than", "h", 0.25, 168, &T::orphanMinHours},
        {"hogCPUPercent", "Using the processor this hard for over an hour", "%", 5, 800, &T::hogCPUPercent},
    }};
    return fields;
}

std::string rangeRefusal(double low, double high, double saved) {
    return fmt::format("Must be between {} and {}. The last saved value, {}, stays in use.", low, high, saved);
}

Thresholds committed(Thresholds edited, const Thresholds& live) {
    edited.autoEndLeftovers = live.autoEndLeftovers;
    edited.autoLeftoverMinHours = live.autoLeftoverMinHours;
    return edited;
}

Thresholds restoredDefaults(const Thresholds& present) { return committed(Thresholds{}, present); }

}  // namespace ravik
