#include "Core/Diagnosis/Finding.h"

namespace ravik {

Tone Finding::tone() const {
    if (neverReason) return Tone::never;
    if (caution) return Tone::caution;
    if (std::holds_alternative<Advice>(remedy) || std::holds_alternative<ScanDisk>(remedy)) return Tone::advice;
    return Tone::safe;
}

std::string_view word(Tone tone) {
    switch (tone) {
        case Tone::safe: return "safe";
        case Tone::caution: return "caution";
        case Tone::never: return "never";
        case Tone::advice: return "advice";
    }
    return {};
}

std::string_view word(Finding::Severity severity) {
    switch (severity) {
        case Finding::Severity::info: return "info";
        case Finding::Severity::warn: return "warn";
        case Finding::Severity::critical: return "critical";
    }
    return {};
}

}  // namespace ravik
