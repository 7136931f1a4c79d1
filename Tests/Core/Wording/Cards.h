#pragma once

#include <string>

#include "Core/Wording/CardFace.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Words.h"
#include "Tests/Core/Diagnosis/Machine.h"

namespace ravik::fakes {

/// A machine and the findings on it, as the screens see them.
struct Cards {
    explicit Cards(const Machine& machine, std::vector<Finding> findings = {})
        : host(machine.host), snapshot(machine.snapshot()), index(snapshot.processes) {
        snapshot.findings = std::move(findings);
    }
    Cards(const Cards&) = delete;

    CardFace face(const Finding& finding) const { return {finding, snapshot, index, host, now}; }
    std::string name(const Finding& finding) const { return Plain::name(finding, face(finding), host); }
    std::string sentence(const Finding& finding) const {
        return Plain::sentence(finding, face(finding), snapshot, host);
    }

    Host host;
    Snapshot snapshot;
    ProcessIndex index;
};

inline Finding finding(std::string id, Remedy remedy = Advice{}, std::uint64_t gain = 0) {
    Finding made;
    made.id = std::move(id);
    made.remedy = std::move(remedy);
    made.gainBytes = gain;
    return made;
}

inline Finding titled(Finding finding, std::string title, std::string evidence = {}) {
    finding.title = std::move(title);
    finding.evidence = std::move(evidence);
    return finding;
}

inline Finding cautioned(Finding finding, std::string caution = "x is actively working (9% CPU)") {
    finding.caution = std::move(caution);
    return finding;
}

inline Finding forbidden(Finding finding, std::string reason) {
    finding.remedy = Advice{"Stop it from where it was started."};
    finding.neverReason = std::move(reason);
    return finding;
}

}  // namespace ravik::fakes
