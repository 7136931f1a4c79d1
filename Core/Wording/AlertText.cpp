#include "Core/Wording/AlertText.h"

#include <fmt/format.h>

#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

std::string body(const Snapshot& snapshot, const std::string& breaches) {
    const Finding* top = snapshot.findings.empty() ? nullptr : &snapshot.findings.front();
    if (top && top->quits()) {
        return fmt::format("Quitting {} gives back about {} GB. Save your work first.", top->quits()->app,
                           Fmt::gbByThousands(top->gainBytes));
    }
    if (snapshot.sampled && snapshot.reclaimableBytes() > 0) {
        return Fmt::amountText(snapshot.reclaimableBytes()) + " reclaimable";
    }
    return breaches;
}

}  // namespace

Notification alertText(const Snapshot& snapshot) {
    const std::string breaches = fmt::format("{}", fmt::join(snapshot.breaches, ", "));
    Notification notification;
    notification.title = snapshot.findings.empty() ? "Ravik: " + breaches : snapshot.findings.front().title;
    notification.body = body(snapshot, breaches);
    if (snapshot.freeableBytes() > 0) {
        notification.actions.emplace_back("free", fmt::format("Free {}…", Fmt::mb(snapshot.freeableBytes())));
    }
    notification.actions.emplace_back("show", "Show");
    return notification;
}

}  // namespace ravik
