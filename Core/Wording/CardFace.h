#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Core/Base/Time.h"
#include "Core/Diagnosis/Finding.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Wording/AppIcons.h"

namespace ravik {

/// The facts of a card: what one finding is about, as far as the snapshot knows.
struct CardFace {
    /// Whom it is about.
    std::string name;
    /// The small second line.
    std::string sub;
    IconRef icon;
    /// Seconds that the subject has run; absent where there is no subject.
    std::optional<double> age;
    /// Memory held by the subject.
    std::uint64_t heldBytes = 0;
    /// Short words for what the action will do.
    std::string does;

    CardFace() = default;
    /// `index` is over `snapshot.processes`.
    CardFace(const Finding& finding, const Snapshot& snapshot, const ProcessIndex& index, const Host& host, Time now);

    friend bool operator==(const CardFace&, const CardFace&) = default;

private:
    struct Subject;
    void describe(const Finding& finding, const Snapshot& snapshot, const Subject& subject, const Host& host);
};

/// The browser in the title of an automation finding.
std::optional<std::string> automationBrowser(const Finding& finding);

}  // namespace ravik
