#include "Core/Record/LineFields.h"

namespace ravik {

namespace {

constexpr std::array<std::string_view, static_cast<std::size_t>(Field::count)> names{
    "cancelled",  "ended", "finding",           "findings", "gainMB",        "group",   "id",     "kind",      "load",
    "memFreePct", "mb",    "needsConfirmation", "quit",     "reclaimableMB", "refused", "swapGB", "survivors", "t",
    "top",        "title"};

/// No two names share both their length and their first letter, which leaves one to compare.
constexpr std::size_t longest = 17;
constexpr auto byLengthAndLetter = [] {
    std::array<std::array<Field, 32>, longest + 1> table{};
    for (auto& row : table) row.fill(Field::count);
    for (std::size_t at = 0; at < names.size(); ++at) {
        Field& field = table[names[at].size()][static_cast<std::size_t>(names[at][0] - 'a')];
        if (field != Field::count) throw "two names in one place";
        field = static_cast<Field>(at);
    }
    return table;
}();

Field named(std::string_view key) {
    if (key.empty() || key.size() > longest) return Field::count;
    const auto letter = static_cast<std::size_t>(static_cast<unsigned char>(key[0]) - 'a');
    if (letter >= 32) return Field::count;
    const Field field = byLengthAndLetter[key.size()][letter];
    return field != Field::count && names[static_cast<std::size_t>(field)] == key ? field : Field::count;
}

}  // namespace

LineFields::LineFields(const simdjson::dom::object& line) {
    for (const auto field : line) {
        const Field at = named(field.key);
        if (at == Field::count) continue;
        m_values[static_cast<std::size_t>(at)] = field.value;
        m_present |= 1u << static_cast<unsigned>(at);
    }
}

}  // namespace ravik
