#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Record/JsonValue.h"

namespace ravik {

/// The fields of log lines that the history counts, whatever the kind.
enum class Field : std::uint8_t {
    t, kind, swapGB, memFreePct, load, top, findings, reclaimableMB, survivors, gainMB, mb,
    id, title, finding, refused, needsConfirmation, quit, cancelled, ended, group
};

/// One parsed line, each field read with a test of its type. Views into the parser's memory.
class LineFields {
public:
    explicit LineFields(const simdjson::dom::object& line) {
        for (const auto field : line) {
            const auto at = std::find(names.begin(), names.end(), field.key);
            if (at == names.end()) continue;
            const auto index = static_cast<std::size_t>(at - names.begin());
            m_values[index] = field.value;
            m_present |= 1u << index;
        }
    }

    /// Whatever its value.
    bool has(Field field) const { return (m_present >> static_cast<unsigned>(field) & 1) != 0; }

    double real(Field field) const { return read(field, JsonValue::real).value_or(0); }
    std::int64_t whole(Field field, std::int64_t otherwise = 0) const {
        return read(field, JsonValue::whole).value_or(otherwise);
    }
    std::optional<std::string_view> text(Field field) const { return read(field, JsonValue::text); }
    /// A boolean, and this one.
    bool is(Field field, bool expected) const { return read(field, JsonValue::boolean) == expected; }
    std::optional<simdjson::dom::array> array(Field field) const {
        return read(field, [](const JsonValue::Element& value) -> std::optional<simdjson::dom::array> {
            if (!value.is_array()) return {};
            return value.get_array().value_unsafe();
        });
    }
    /// Empty unless every element is a string.
    std::vector<std::string_view> texts(Field field) const {
        std::vector<std::string_view> result;
        const auto values = array(field);
        if (!values) return result;
        for (const JsonValue::Element value : *values) {
            const auto one = JsonValue::text(value);
            if (!one) return {};
            result.push_back(*one);
        }
        return result;
    }

private:
    static constexpr std::array<std::string_view, 20> names{
        "t", "kind", "swapGB", "memFreePct", "load", "top", "findings", "reclaimableMB", "survivors", "gainMB", "mb",
        "id", "title", "finding", "refused", "needsConfirmation", "quit", "cancelled", "ended", "group"};

    template <typename Read>
    auto read(Field field, Read how) const -> decltype(how(JsonValue::Element())) {
        if (!has(field)) return {};
        return how(m_values[static_cast<std::size_t>(field)]);
    }

    std::array<JsonValue::Element, names.size()> m_values;
    std::uint32_t m_present = 0;
};

}  // namespace ravik
