#include "Core/Screens/DiagnosisSections.h"

namespace ravik::DiagnosisSections {

using Kind = DiagnosisSection::Kind;

Kind kind(const Finding& finding) {
    if (finding.caution) return Kind::asks;
    if (finding.kills()) return Kind::free;
    return finding.quits() ? Kind::quit : Kind::left;
}

std::string_view heading(Kind kind) {
    switch (kind) {
        case Kind::free: return "Safe to end";
        case Kind::asks: return "Busy — asks first";
        case Kind::quit: return "Quit when you are ready";
        case Kind::left: return "Left alone";
    }
    return {};
}

std::vector<DiagnosisSection> of(const Snapshot& snapshot, const std::unordered_set<std::string>& done) {
    std::vector<DiagnosisSection> sections;
    for (const Kind section : {Kind::free, Kind::asks, Kind::quit, Kind::left}) {
        DiagnosisSection made{section, heading(section), {}};
        for (const Finding& finding : snapshot.findings) {
            if (kind(finding) == section && !done.contains(finding.id)) made.findings.push_back(&finding);
        }
        if (!made.findings.empty()) sections.push_back(std::move(made));
    }
    return sections;
}

}  // namespace ravik::DiagnosisSections
