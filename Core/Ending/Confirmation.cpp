#include "Core/Ending/Confirmation.h"

#include <fmt/format.h>

#include "Core/Watch/ProcessIndex.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Plain.h"

namespace ravik {

namespace {

std::pair<Tone, std::string> whyLeftAlone(const Finding& finding) {
    if (finding.neverReason) return {Tone::never, "A database — never ended from a button."};
    if (finding.caution) return {Tone::caution, "Busy — it has its own button and asks first."};
    if (finding.quits()) return {Tone::safe, "Quit it yourself when you are ready."};
    const Tone tone = finding.kills() ? Tone::safe : Tone::advice;
    return {tone, "Nothing to end — a tip only."};
}

bool isFreeable(const Finding& finding) { return finding.kills() && !finding.caution; }

}  // namespace

std::string moreRows(const std::vector<EvidenceLine>& rows) {
    if (rows.size() <= Confirmation::shownRows) return {};
    return fmt::format("{} more", rows.size() - Confirmation::shownRows);
}

Confirmation freeConfirmation(const Snapshot& snapshot, const Host& host, Time now) {
    const ProcessIndex index(snapshot.processes);
    Confirmation question;
    std::size_t count = 0;
    for (const Finding& finding : snapshot.findings) {
        const CardFace face(finding, snapshot, index, host, now);
        const std::string name = Plain::name(finding, face, host);
        if (isFreeable(finding)) {
            count += finding.kills()->pids.size();
            question.ends.push_back({Tone::safe, name, Plain::sentence(finding, face, snapshot, host),
                                     Fmt::mb(finding.gainBytes), face.icon});
        } else {
            auto [tone, line] = whyLeftAlone(finding);
            question.leftAlone.push_back({tone, name, std::move(line), {}, face.icon});
        }
    }
    question.verb = "End " + Fmt::plural(count, "program");
    question.title = question.verb + "?";
    question.message =
        fmt::format("Frees {}. Only what passes the safety check ends.", Fmt::mb(snapshot.freeableBytes()));
    return question;
}

}  // namespace ravik
