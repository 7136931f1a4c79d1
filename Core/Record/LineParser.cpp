#include "Core/Record/LineParser.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string>

namespace ravik {

namespace {

bool isBeyond64Bits(std::string_view number) {
    std::int64_t negative = 0;
    std::uint64_t positive = 0;
    const char* const end = number.data() + number.size();
    const auto read = number.starts_with('-') ? std::from_chars(number.data(), end, negative)
                                              : std::from_chars(number.data(), end, positive);
    return read.ec == std::errc::result_out_of_range;
}

/// Behind the closing quote of the text that begins at `at`.
std::size_t textEnd(std::string_view json, std::size_t at) {
    for (++at; at < json.size() && json[at] != '"'; ++at) {
        if (json[at] == '\\') ++at;
    }
    return std::min(at + 1, json.size());
}

/// The same JSON with an exponent behind each whole number that is beyond 64 bits.
std::string asRealNumbers(std::string_view json) {
    std::string result;
    for (std::size_t at = 0; at < json.size();) {
        std::size_t end = at + 1;
        if (json[at] == '"') end = textEnd(json, at);
        const bool isNumber = json[at] == '-' || (json[at] >= '0' && json[at] <= '9');
        if (isNumber) end = std::min(json.find_first_not_of("0123456789+-.eE", at), json.size());
        const std::string_view token = json.substr(at, end - at);
        result += token;
        const bool isWhole = isNumber && token.find_first_of("+.eE") == std::string_view::npos;
        if (isWhole && isBeyond64Bits(token)) result += "e0";
        at = end;
    }
    return result;
}

}  // namespace

simdjson::simdjson_result<simdjson::dom::element> LineParser::parse(std::string_view line) {
    auto parsed = m_parser.parse(line.data(), line.size(), false);
    if (parsed.error() == simdjson::NUMBER_ERROR) parsed = m_parser.parse(asRealNumbers(line));
    return parsed;
}

}  // namespace ravik
