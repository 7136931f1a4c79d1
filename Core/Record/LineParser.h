#pragma once

#include <string_view>

#include <simdjson.h>

namespace ravik {

/// Parses log lines as JSON. A whole number beyond 64 bits is JSON too, but the library refuses it and with it all that
/// stands beside it, so here it is read as a real number. Confined to one thread.
class LineParser {
public:
    /// LogBytes::padding readable bytes follow the line. The value is good until the next call.
    simdjson::simdjson_result<simdjson::dom::element> parse(std::string_view line);

private:
    simdjson::dom::parser m_parser;
};

}  // namespace ravik
