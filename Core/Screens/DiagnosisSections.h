#pragma once

#include <string_view>
#include <unordered_set>
#include <vector>

#include "Core/Watch/Snapshot.h"

namespace ravik {

/// One stretch of cards on the Diagnosis screen.
struct DiagnosisSection {
    enum class Kind { free, asks, quit, left };
    Kind kind = Kind::free;
    std::string_view heading;
    /// In the order of the snapshot, which must outlive them.
    std::vector<const Finding*> findings;
};

namespace DiagnosisSections {

/// The section that a finding stands in.
DiagnosisSection::Kind kind(const Finding& finding);
std::string_view heading(DiagnosisSection::Kind kind);

/// The sections in their order, without the findings of these ids; those without a finding are left out.
std::vector<DiagnosisSection> of(const Snapshot& snapshot, const std::unordered_set<std::string>& done = {});

}  // namespace DiagnosisSections

}  // namespace ravik
