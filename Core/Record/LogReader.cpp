#include "Core/Record/LogReader.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "Core/Record/ByteSearch.h"
#include "Core/Record/JsonValue.h"
#include "Core/Record/LineParser.h"
#include "Core/Record/LogBytes.h"
#include "Core/Record/LogFiles.h"

namespace ravik::LogReader {

namespace {

using JsonValue::Element;
using simdjson::dom::element_type;

nlohmann::json converted(const Element& value) {
    switch (value.type()) {
        case element_type::OBJECT: {
            auto result = nlohmann::json::object();
            const simdjson::dom::object members = value.get_object().value_unsafe();
            for (const auto member : members) result[std::string(member.key)] = converted(member.value);
            return result;
        }
        case element_type::ARRAY: {
            auto result = nlohmann::json::array();
            const simdjson::dom::array elements = value.get_array().value_unsafe();
            for (const Element one : elements) result.push_back(converted(one));
            return result;
        }
        case element_type::STRING: return std::string(value.get_string().value_unsafe());
        case element_type::INT64: return value.get_int64().value_unsafe();
        case element_type::UINT64: return value.get_uint64().value_unsafe();
        case element_type::DOUBLE: return value.get_double().value_unsafe();
        case element_type::BOOL: return value.get_bool().value_unsafe();
        case element_type::NULL_VALUE: break;
    }
    return nullptr;
}

/// Of two members of one name the last one counts, here as in the converted line.
bool isOneOf(std::span<const std::string_view> kinds, const Element& line) {
    simdjson::dom::object members;
    if (line.get_object().get(members) != simdjson::SUCCESS) return false;
    std::optional<std::string_view> kind;
    for (const auto member : members) {
        if (member.key == "kind") kind = JsonValue::text(member.value);
    }
    return kind && std::find(kinds.begin(), kinds.end(), *kind) != kinds.end();
}

}  // namespace

void forEachLine(const std::filesystem::path& folder, std::span<const std::string_view> kinds, const Days& days,
                 const std::function<void(const nlohmann::json&)>& each) {
    LogBytes bytes;
    LineParser parser;
    const auto deliver = [&](std::string_view block) {
        WordLines lines(block, kinds);
        for (std::string_view line = lines.next(); line.data(); line = lines.next()) {
            Element parsed;
            if (parser.parse(line).get(parsed) != simdjson::SUCCESS) continue;
            if (isOneOf(kinds, parsed)) each(converted(parsed));
        }
    };
    for (const auto& file : logFiles(folder)) {
        if (days && !days->contains(file.stem().string())) continue;
        if (!bytes.open(file)) continue;
        for (std::string_view block = bytes.next(); !block.empty(); block = bytes.next()) deliver(block);
        // Unlike the history, a reader takes a last line that still lacks its line feed, if it is whole.
        deliver(bytes.tail());
    }
}

std::vector<nlohmann::json> lines(const std::filesystem::path& folder, std::span<const std::string_view> kinds,
                                  const Days& days) {
    std::vector<nlohmann::json> result;
    forEachLine(folder, kinds, days, [&](const nlohmann::json& line) { result.push_back(line); });
    return result;
}

}  // namespace ravik::LogReader
