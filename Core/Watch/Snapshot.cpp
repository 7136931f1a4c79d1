#include "Core/Watch/Snapshot.h"

namespace ravik {

std::vector<const Finding*> Snapshot::freeable() const {
    std::vector<const Finding*> safe;
    for (const Finding& finding : findings) {
        if (finding.kills() && !finding.caution) safe.push_back(&finding);
    }
    return safe;
}

std::uint64_t Snapshot::freeableBytes() const {
    std::uint64_t sum = 0;
    for (const Finding* finding : freeable()) sum += finding->gainBytes;
    return sum;
}

std::uint64_t Snapshot::reclaimableBytes() const {
    std::uint64_t sum = 0;
    for (const Finding& finding : findings) sum += finding.gainBytes;
    return sum;
}

}  // namespace ravik
