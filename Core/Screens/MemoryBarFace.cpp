#include "Core/Screens/MemoryBarFace.h"

#include <algorithm>

namespace ravik {

std::uint64_t MemoryBarFace::scale(const MemoryPicture& picture) { return std::max(picture.held(), picture.ram); }

MemoryBarFace::MemoryBarFace(const MemoryPicture& picture, std::uint64_t scale) : accessible(picture.summary()) {
    const auto whole = static_cast<double>(std::max<std::uint64_t>(scale, 1));
    const auto fraction = [&](std::uint64_t bytes) { return std::min(1.0, static_cast<double>(bytes) / whole); };
    std::uint64_t before = 0;
    segments.reserve(picture.segments.size());
    for (const MemoryPicture::Segment& segment : picture.segments) {
        // Two findings may claim the same memory; the bar shows it once.
        const std::uint64_t free = std::min(segment.bytes, segment.freeBytes);
        const std::uint64_t quit = std::min(segment.bytes - free, segment.quitBytes);
        segments.push_back({.id = segment.id,
                            .label = segment.label,
                            .icon = segment.icon,
                            .start = fraction(before),
                            .stays = fraction(segment.bytes - free - quit),
                            .quit = fraction(quit),
                            .free = fraction(free),
                            .isRest = segment.kind == MemoryPicture::Segment::Kind::rest});
        before += segment.bytes;
    }
    ramAt = fraction(picture.ram);
    heldAt = fraction(before);
}

}  // namespace ravik
