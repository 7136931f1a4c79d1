#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace ravik {

/// Reads the two kinds of lines that a log is full of, "tick" and "diagnosis", where they are written plainly, as the log
/// writes them: no escapes, no letters beyond ASCII, no blanks. It knows the keys of the line before, which mostly come
/// again in their order. Of every other line it says nothing, and the JSON parser decides. Confined to one thread.
class QuickLine {
public:
    enum class Kind { tick, diagnosis };

    /// True if the line is a whole JSON object of that kind and was read; false says nothing about it. A control
    /// character and LogBytes::padding readable bytes must follow the line, which what is read points into.
    bool read(std::string_view line, Kind kind);

    // As in the line, each with the value that stands for a field that is missing or of another type.
    std::string_view t;
    double swapGB = 0;
    double load = 0;
    std::int64_t memFreePct = 100;
    std::int64_t reclaimableMB = 0;
    std::vector<std::pair<std::string_view, std::int64_t>> top;
    std::vector<std::string_view> findings;

private:
    enum class Field : std::uint8_t { other, t, kind, swapGB, load, memFreePct, reclaimableMB, top, findings };
    /// A key with what stands around it, from the "{" or "," to the ":", in words of eight bytes.
    struct Key {
        std::array<std::uint64_t, 3> words{};
        std::array<std::uint64_t, 3> masks{};
        std::uint8_t size = 0;
        Field field = Field::other;

        bool standsAt(const char* at) const;
    };

    const Key* key(const char*& at, std::size_t index, Kind kind);
    const char* value(const char* at, Field field);
    const char* readTop(const char* at);
    const char* readFindings(const char* at);

    std::array<std::vector<Key>, 2> m_keys;
    std::string_view m_kind;
};

}  // namespace ravik
