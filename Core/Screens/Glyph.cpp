#include "Core/Screens/Glyph.h"

#include <fmt/format.h>

#include "Core/Wording/Fmt.h"

namespace ravik {

Glyph::Glyph(const Snapshot& snapshot, const Host& host) : symbol("memorychip") {
    const std::uint64_t reclaimable = snapshot.reclaimableBytes();
    if (!snapshot.sampled) {
        label = fmt::format("Ravik, reading {}", host.nouns().yourMachine);
    } else if (reclaimable > 0) {
        const std::string amount = Fmt::amountText(reclaimable);
        symbol = "memorychip.fill";
        title = " " + amount;
        label = fmt::format("Ravik, {} reclaimable", amount);
    } else {
        label = "Ravik, nothing to free";
    }
}

}  // namespace ravik
