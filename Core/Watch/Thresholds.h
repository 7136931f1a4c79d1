#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

namespace ravik {

/// The user's limits. Stored as one JSON object with exactly these keys.
struct Thresholds {
    double swapGB = 8.0;            // GiB
    double swapOutMBps = 5.0;       // MiB a second
    int memoryFreePct = 15;         // percent
    double diskFreeGB = 15.0;       // GiB
    double loadPerCore = 2.0;
    double orphanMinHours = 1.0;
    double hogCPUPercent = 50.0;    // percent of one core
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
};

/// The seven limits that the settings show, in their order.
const std::array<ThresholdField, 7>& thresholdFields();

}  // namespace ravik
