#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace ravik::platform {

struct AddressRange {
    std::uintptr_t start = 0;
    std::uintptr_t end = 0;  // behind the last byte
    friend bool operator==(const AddressRange&, const AddressRange&) = default;
};

/// The machine code that /proc/PID/maps lists: executable, not writable, mapped from a file that lies on a disk.
/// Nothing is ever changed in it, so that to drop its pages loses nothing.
std::vector<AddressRange> mappedCode(std::string_view maps);

}  // namespace ravik::platform
