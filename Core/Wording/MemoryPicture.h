#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Wording/AppIcons.h"

namespace ravik {

/// The machine's memory split by app, with the part marked that can be had back.
struct MemoryPicture {
    struct Segment {
        enum class Kind { app, leftovers, rest };

        /// A group's id, "leftovers" or "rest"; a group may have one of these names too, which `kind` tells.
        std::string id;
        std::string label;
        /// Absent for "rest".
        std::optional<IconRef> icon;
        std::uint64_t bytes = 0;
        /// Of that, what Free can end without asking.
        std::uint64_t freeBytes = 0;
        /// Of that, what comes back if the user quits or confirms.
        std::uint64_t quitBytes = 0;
        std::vector<std::string> findingIDs;
        Kind kind = Kind::app;

        friend bool operator==(const Segment&, const Segment&) = default;
    };

    std::vector<Segment> segments;
    /// Installed memory.
    std::uint64_t ram = 0;
    std::uint64_t swap = 0;

    MemoryPicture() = default;
    /// Names at most `topApps` apps, and none below a hundredth of the `installed` bytes. `index` is over
    /// `snapshot.processes`.
    MemoryPicture(const Snapshot& snapshot, const ProcessIndex& index, std::uint64_t installed, std::size_t topApps,
                  const Host& host);

    std::uint64_t held() const;
    std::uint64_t freeBytes() const;
    std::uint64_t quitBytes() const;
    /// Labels of the segments that give back memory when the user quits them.
    std::vector<std::string> quitApps() const;
    /// What remains once all of it has been had back.
    MemoryPicture after() const;
    /// One sentence.
    std::string summary() const;

    friend bool operator==(const MemoryPicture&, const MemoryPicture&) = default;
};

/// What a mark in the picture stands for.
struct LegendItem {
    enum class Mark { held, free, quit, spilled, ram };
    Mark mark;
    std::string text;
    friend bool operator==(const LegendItem&, const LegendItem&) = default;
};

/// `quit`: some of it comes back by quitting.
std::vector<LegendItem> memoryLegend(std::uint64_t ram, bool quit, const Host& host);

/// "12%", and "<1%" for what is more than nothing; a total of 0 counts as 1.
std::string memoryShare(std::uint64_t bytes, std::uint64_t total);

}  // namespace ravik
