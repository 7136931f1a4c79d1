#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "Core/Host/Host.h"

namespace ravik {

/// The user's limits. Stored as one JSON object with exactly these keys.
struct Thresholds {
    double swapGB = 8.0;       // GiB
    double swapOutMBps = 5.0;  // MiB a second
    int memoryFreePct = 15;    // percent
    double diskFreeGB = 15.0;  // GiB
    double loadPerCore = 2.0;
    double orphanMinHours = 1.0;
    double hogCPUPercent = 50.0;  // percent of one core
    double hogMinHours = 1.0;
    bool autoEndLeftovers = false;
    double autoLeftoverMinHours = 1.0;

    /// All ten keys with their right types, or nothing: a stored value is never partly applied.
    static std::optional<Thresholds> decode(const nlohmann::json& value);
    nlohmann::json encode() const;

    friend bool operator==(const Thresholds&, const Thresholds&) = default;
};

/// One limit as the settings show it.
struct ThresholdField {
    std::string_view key;
    std::string_view title;
    std::string_view unit;
    double low;
    double high;
    double Thresholds::*real = nullptr;
    int Thresholds::*whole = nullptr;

    double value(const Thresholds& limits) const { return real ? limits.*real : limits.*whole; }
    /// The value is cut where the limit is a whole number.
    void assign(Thresholds& limits, double value) const;
    /// Both ends of the range are allowed; NaN is not.
    bool accepts(double value) const { return low <= value && value <= high; }
    /// "Must be between 1 and 128. The last saved value, 8, stays in use."
    std::string refusal(double saved) const;
    /// The title with the host's own word for the machine.
    std::string titleWith(const Nouns& nouns) const;
    /// "Default 8 GB"
    std::string hint() const;
};

/// The seven limits that the settings show, in their order.
const std::array<ThresholdField, 7>& thresholdFields();

/// The sentence for a value outside a range, all three numbers in their shortest form.
std::string rangeRefusal(double low, double high, double saved);

/// What a change in the settings stores: the edited limits, with the Autopilot rule as it is in force, which is
/// set elsewhere and may have changed meanwhile.
Thresholds committed(Thresholds edited, const Thresholds& live);

/// The defaults, with the Autopilot rule of `present` kept.
Thresholds restoredDefaults(const Thresholds& present);

}  // namespace ravik
