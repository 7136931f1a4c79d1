#include "Core/Record/HistoryCache.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <fstream>
#include <iterator>
#include <system_error>

#include <fmt/format.h>

#include "Core/Base/ReplaceFile.h"
#include "Core/Record/JsonValue.h"

namespace ravik::HistoryCache {

namespace {

using JsonValue::Element;
using simdjson::dom::array;
using simdjson::dom::object;

/// Dates in the file count from here: 2001-01-01T00:00:00Z in seconds since 1970. Do not change.
constexpr Time epoch = 978307200;

/// Writes the file's JSON; keys come in the order of the calls.
class Writer {
public:
    std::string bytes;
    bool finite = true;

    void raw(std::string_view json) { bytes += json; }
    void comma() {
        if (const char last = bytes.back(); last != '{' && last != '[') bytes += ',';
    }
    void text(std::string_view value) {
        bytes += '"';
        for (const char byte : value) {
            if (byte == '"' || byte == '\\') {
                (bytes += '\\') += byte;
            } else if (static_cast<unsigned char>(byte) < 0x20) {
                fmt::format_to(std::back_inserter(bytes), "\\u{:04x}", byte);
            } else {
                bytes += byte;
            }
        }
        bytes += '"';
    }
    void key(std::string_view name) {
        comma();
        text(name);
        bytes += ':';
    }
    template <typename Number>
    void number(std::string_view name, Number value) {
        key(name);
        if constexpr (std::is_floating_point_v<Number>) finite = finite && std::isfinite(value);
        fmt::format_to(std::back_inserter(bytes), "{}", value);
    }
    template <typename Strings>
    void texts(std::string_view name, const Strings& values) {
        key(name);
        bytes += '[';
        for (const auto& value : values) {
            comma();
            text(value);
        }
        bytes += ']';
    }
};

void encodeBucket(Writer& out, const HourBucket& bucket) {
    out.raw("{");
    out.number("start", bucket.start - epoch);
    out.number("samples", bucket.samples);
    out.number("swapSum", bucket.swapSum);
    out.number("swapMax", bucket.swapMax);
    out.number("memFreeMin", bucket.memFreeMin);
    out.number("loadMax", bucket.loadMax);
    out.number("reclaimMB", bucket.reclaimMB);
    out.key("apps");
    out.raw("{");
    for (const auto& [app, mb] : bucket.apps) out.number(app, mb);
    out.raw("}");
    out.texts("causes", bucket.causes);
    out.raw("}");
}

/// Reads an object's members, and remembers when one is missing or of another type.
class Reader {
public:
    explicit Reader(const object& from, bool& complete) : m_from(from), m_complete(complete) {}

    template <typename Value, typename Read>
    void take(std::string_view key, Value& into, Read how) {
        Element value;
        if (m_from.at_key(key).get(value) != simdjson::SUCCESS) {
            m_complete = false;
            return;
        }
        if (auto read = how(value)) {
            into = std::move(*read);
        } else {
            m_complete = false;
        }
    }
    void take(std::string_view key, std::int64_t& into) { take(key, into, JsonValue::whole); }
    void take(std::string_view key, double& into) { take(key, into, JsonValue::real); }
    void take(std::string_view key, std::string& into) { take(key, into, JsonValue::text); }
    void takeDate(std::string_view key, Time& into) {
        take(key, into);
        into += epoch;
    }
    template <typename Each>
    void members(std::string_view key, Each each) {
        object value;
        if (m_from.at_key(key).get_object().get(value) != simdjson::SUCCESS) {
            m_complete = false;
            return;
        }
        for (const auto member : value) m_complete = each(member.key, member.value) && m_complete;
    }
    template <typename Each>
    void elements(std::string_view key, Each each) {
        array value;
        if (m_from.at_key(key).get_array().get(value) != simdjson::SUCCESS) {
            m_complete = false;
            return;
        }
        for (const Element element : value) m_complete = each(element) && m_complete;
    }

private:
    const object& m_from;
    bool& m_complete;
};

bool decodeBucket(const Element& value, HourBucket& bucket) {
    if (!value.is_object()) return false;
    const object members = value.get_object().value_unsafe();
    bool complete = true;
    Reader in(members, complete);
    in.takeDate("start", bucket.start);
    in.take("samples", bucket.samples);
    in.take("swapSum", bucket.swapSum);
    in.take("swapMax", bucket.swapMax);
    in.take("memFreeMin", bucket.memFreeMin);
    in.take("loadMax", bucket.loadMax);
    in.take("reclaimMB", bucket.reclaimMB);
    in.members("apps", [&](std::string_view app, const Element& mb) {
        const auto number = JsonValue::whole(mb);
        if (number) bucket.apps.insert_or_assign(bucket.apps.end(), std::string(app), *number);
        return number.has_value();
    });
    in.elements("causes", [&](const Element& cause) {
        const auto id = JsonValue::text(cause);
        if (id) bucket.causes.emplace_hint(bucket.causes.end(), *id);
        return id.has_value();
    });
    return complete;
}

bool decodeEvent(const Element& value, HistoryEvent& event) {
    if (!value.is_object()) return false;
    const object members = value.get_object().value_unsafe();
    bool complete = true;
    Reader in(members, complete);
    in.takeDate("at", event.at);
    in.take("what", event.what);
    in.take("mb", event.mb);
    in.take("survivors", event.survivors);
    in.elements("ids", [&](const Element& id) {
        const auto text = JsonValue::text(id);
        if (text) event.ids.emplace_back(*text);
        return text.has_value();
    });
    return complete;
}

std::optional<std::int64_t> hourNumber(std::string_view text) {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end) return {};
    return number;
}

std::optional<std::uint64_t> byteCount(const Element& value) {
    std::uint64_t count = 0;
    if (value.get_uint64().get(count) != simdjson::SUCCESS) return {};
    return count;
}

}  // namespace

std::optional<std::string> encode(const DayAggregate& day) {
    Writer out;
    out.raw("{");
    out.number("format", day.format);
    out.key("day");
    out.text(day.day);
    out.number("offset", day.offset);
    out.key("hours");
    out.raw("{");
    for (const auto& [hour, bucket] : day.hours) {
        out.key(fmt::format("{}", hour));
        encodeBucket(out, bucket);
    }
    out.raw("}");
    out.key("events");
    out.raw("[");
    for (const HistoryEvent& event : day.events) {
        out.comma();
        out.raw("{");
        out.number("at", event.at - epoch);
        out.key("what");
        out.text(event.what);
        out.texts("ids", event.ids);
        out.number("mb", event.mb);
        out.number("survivors", event.survivors);
        out.raw("}");
    }
    out.raw("]");
    out.key("titles");
    out.raw("{");
    for (const auto& [id, title] : day.titles) {
        out.key(id);
        out.text(title);
    }
    out.raw("}}");
    if (!out.finite) return {};
    return std::move(out.bytes);
}

std::optional<DayAggregate> decode(std::string_view bytes) {
    simdjson::dom::parser parser;
    object members;
    if (parser.parse(bytes.data(), bytes.size()).get_object().get(members) != simdjson::SUCCESS) return {};
    DayAggregate day;
    bool complete = true;
    Reader in(members, complete);
    in.take("format", day.format);
    in.take("day", day.day);
    in.take("offset", day.offset, byteCount);
    in.members("hours", [&](std::string_view key, const Element& value) {
        const auto hour = hourNumber(key);
        return hour && decodeBucket(value, day.hours[*hour]);
    });
    in.elements("events", [&](const Element& value) { return decodeEvent(value, day.events.emplace_back()); });
    in.members("titles", [&](std::string_view id, const Element& title) {
        const auto text = JsonValue::text(title);
        if (text) day.titles.insert_or_assign(day.titles.end(), std::string(id), std::string(*text));
        return text.has_value();
    });
    if (!complete || day.format != DayAggregate::currentFormat) return {};
    return day;
}

std::optional<DayAggregate> read(const std::filesystem::path& file) {
    // Of a pipe or a device the end may never come, and a folder is none to read.
    std::error_code failed;
    if (!std::filesystem::is_regular_file(file, failed)) return {};
    std::ifstream in(file, std::ios::binary);
    std::string bytes;
    std::array<char, 1 << 16> block{};
    while (in.read(block.data(), block.size()) || in.gcount() > 0) {
        bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad()) return {};
    return decode(bytes);
}

void sweep(const std::filesystem::path& folder) {
    namespace fs = std::filesystem;
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(1);
    std::error_code failed;
    fs::directory_iterator entry(folder, failed);
    for (; !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
        const std::string name = entry->path().filename().string();
        if (!name.starts_with('.') || name.find(".json.") == std::string::npos) continue;
        std::error_code gone;
        const auto written = entry->last_write_time(gone);
        if (!gone && written < old) fs::remove(entry->path(), gone);
    }
}

bool write(const std::filesystem::path& file, const DayAggregate& day) {
    const auto bytes = encode(day);
    return bytes && replaceFile(file, *bytes);
}

}  // namespace ravik::HistoryCache
