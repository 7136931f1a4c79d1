#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "Core/Record/JsonValue.h"

namespace ravik {

/// The fields of log lines that the history counts, whatever the kind.
enum class Field : std::uint8_t {
    cancelled,
    ended,
    finding,
    findings,
    gainMB,
    group,
    id,
    kind,
    load,
    memFreePct,
    mb,
    needsConfirmation,
    quit,
    reclaimableMB,
    refused,
    swapGB,
    survivors,
    t,
    top,
    title,
    count
};

/// One parsed line, each field read with a test of its type. Of two fields of one name the last counts. Views into the
/// parser's memory, valid until its next line.
class LineFields {
public:
    explicit LineFields(const simdjson::dom::object& line);

    /// Whatever its value.
    bool has(Field field) const { return (m_present >> static_cast<unsigned>(field) & 1) != 0; }

    double real(Field field) const { return read(field, JsonValue::real).value_or(0); }
    std::int64_t whole(Field field, std::int64_t otherwise = 0) const {
        return read(field, JsonValue::whole).value_or(otherwise);
    }
    std::optional<std::string_view> text(Field field) const { return read(field, JsonValue::text); }
    /// A boolean, and this one.
    bool is(Field field, bool expected) const { return read(field, JsonValue::boolean) == expected; }

    /// Calls `each` with every element of the field, if it is an array of nothing but `type`.
    template <typename Each>
    void forEach(Field field, simdjson::dom::element_type type, Each each) const {
        if (!has(field) || !m_values[static_cast<std::size_t>(field)].is_array()) return;
        const simdjson::dom::array values = m_values[static_cast<std::size_t>(field)].get_array().value_unsafe();
        for (const JsonValue::Element value : values) {
            if (value.type() != type) return;
        }
        for (const JsonValue::Element value : values) each(value);
    }
    /// Elements of the field, if it is an array.
    std::int64_t length(Field field) const {
        if (!has(field) || !m_values[static_cast<std::size_t>(field)].is_array()) return 0;
        return static_cast<std::int64_t>(m_values[static_cast<std::size_t>(field)].get_array().value_unsafe().size());
    }

private:
    template <typename Read>
    auto read(Field field, Read how) const -> decltype(how(JsonValue::Element())) {
        if (!has(field)) return {};
        return how(m_values[static_cast<std::size_t>(field)]);
    }

    std::array<JsonValue::Element, static_cast<std::size_t>(Field::count)> m_values;
    std::uint32_t m_present = 0;
};

}  // namespace ravik
