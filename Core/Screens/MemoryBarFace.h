#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Core/Wording/MemoryPicture.h"

namespace ravik {

/// A MemoryPicture laid out along a bar. All places and lengths are fractions of the bar's full length, 0 to 1, from
/// the leading edge on.
struct MemoryBarFace {
    /// One app. Its parts stand in the order stays, quit, free, and together make up its length.
    struct Segment {
        std::string id;
        std::string label;
        /// Absent for what has no name of its own.
        std::optional<IconRef> icon;
        double start = 0;
        double stays = 0;
        double quit = 0;
        double free = 0;
        bool isRest = false;
        friend bool operator==(const Segment&, const Segment&) = default;
    };
    std::vector<Segment> segments;
    /// Where the installed memory ends.
    double ramAt = 1;
    /// What is held ends here. Beyond `ramAt` it is spilled to disk.
    double heldAt = 0;
    /// One sentence, for those who hear the screen.
    std::string accessible;

    /// Bytes that the full bar stands for: what is held or what is installed, whichever is more.
    static std::uint64_t scale(const MemoryPicture& picture);

    MemoryBarFace() = default;
    explicit MemoryBarFace(const MemoryPicture& picture) : MemoryBarFace(picture, scale(picture)) {}
    /// With a scale of another picture, two bars can be compared.
    MemoryBarFace(const MemoryPicture& picture, std::uint64_t scale);

    bool spills() const { return heldAt > ramAt; }

    friend bool operator==(const MemoryBarFace&, const MemoryBarFace&) = default;
};

}  // namespace ravik
