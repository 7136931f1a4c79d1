#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Platform/Linux/LeverRecord.h"

namespace ravik::platform {

/// levers.json in the run-time folder: what is in force now, so that the next run can undo it if this one ends without
/// a word. Each change is on the disk, whole, before it returns. One process at a time writes it. Main loop.
class LeverJournal {
public:
    /// `boot` names this run of the kernel: what another one left behind is gone.
    LeverJournal(std::filesystem::path folder, std::uint32_t uid, std::string boot);

    /// Gives the record its id; absent, and nothing remembered, if it could not be written down.
    std::optional<std::uint64_t> add(LeverRecord record);
    /// Writes the record anew under its id.
    void update(const LeverRecord& record);
    void remove(std::uint64_t id);

    /// In the order in which they were made.
    const std::vector<LeverRecord>& records();
    /// Those that an earlier run left, among them.
    std::vector<LeverRecord> earlier();

private:
    void load();
    bool store();
    /// Makes the folder if there is none; false if it is not this user's alone.
    bool ownsFolder() const;

    std::filesystem::path m_folder;
    std::uint32_t m_uid;
    LeverPage m_page;
    std::uint64_t m_next = 1;
    std::uint64_t m_firstOwn = 1;
    bool m_loaded = false;
};

}  // namespace ravik::platform
