#include "Platform/Linux/ProcParse.h"

#include <charconv>

namespace ravik::platform {

namespace {

template <typename Number>
bool number(std::string_view text, Number& value) {
    return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc{};
}

/// Takes fields off the front, one blank between two.
class Fields {
public:
    explicit Fields(std::string_view text) : m_rest(text) {}

    std::string_view next() {
        std::size_t begin = 0;
        while (begin < m_rest.size() && (m_rest[begin] == ' ' || m_rest[begin] == '\t')) ++begin;
        std::size_t end = begin;
        while (end < m_rest.size() && m_rest[end] != ' ' && m_rest[end] != '\t' && m_rest[end] != '\n') ++end;
        const std::string_view field = m_rest.substr(begin, end - begin);
        m_rest.remove_prefix(end);
        return field;
    }
    template <typename Number>
    bool next(Number& value) {
        return number(next(), value);
    }
    void skip(int count) {
        for (int field = 0; field < count; ++field) next();
    }

private:
    std::string_view m_rest;
};

template <typename Visit>
void eachLine(std::string_view text, Visit visit) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        visit(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
    }
}

}  // namespace

std::optional<ProcStat> parseProcStat(std::string_view text) {
    // A program may put any byte into its name, ")" and line ends among them.
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return {};

    ProcStat stat;
    stat.comm = text.substr(open + 1, close - open - 1);
    Fields fields(text.substr(close + 1));
    const std::string_view state = fields.next();
    if (state.size() != 1) return {};
    stat.state = state.front();
    if (!fields.next(stat.ppid)) return {};
    fields.skip(4);  // group, session, terminal, its foreground group
    if (!fields.next(stat.flags)) return {};
    fields.skip(4);  // faults
    if (!fields.next(stat.userTime) || !fields.next(stat.systemTime)) return {};
    fields.skip(6);  // children's times, priority, nice, threads, timer
    if (!fields.next(stat.startTicks)) return {};
    fields.skip(1);  // virtual size
    if (!fields.next(stat.residentPages)) return {};
    fields.skip(3);  // limit, ends of the code
    fields.next(stat.image);
    return stat;
}

std::optional<ProcStatm> parseProcStatm(std::string_view text) {
    ProcStatm statm;
    Fields fields(text);
    if (!fields.next(statm.size) || !fields.next(statm.resident) || !fields.next(statm.shared)) return {};
    return statm;
}

std::optional<std::uint64_t> parseVmSwap(std::string_view status) {
    constexpr std::string_view key = "VmSwap:";
    std::optional<std::uint64_t> bytes;
    eachLine(status, [&](std::string_view line) {
        std::uint64_t kilobytes = 0;
        if (line.starts_with(key) && Fields(line.substr(key.size())).next(kilobytes)) bytes = kilobytes * 1024;
    });
    return bytes;
}

std::uint64_t parseSwapUsed(std::string_view swaps) {
    std::uint64_t kilobytes = 0;
    eachLine(swaps, [&](std::string_view line) {
        Fields fields(line);
        fields.skip(3);  // file name (its blanks are escaped), type, size
        std::uint64_t used = 0;
        if (fields.next(used)) kilobytes += used;
    });
    return kilobytes * 1024;
}

}  // namespace ravik::platform
