#include "Cli/Table.h"

#include <algorithm>
#include <cwchar>

#include <fmt/format.h>

namespace ravik::cli {

namespace {

/// The last column keeps so much in a terminal that is too narrow for the others.
constexpr std::size_t leastCells = 8;

/// Length of the scalar at the front, 0 if the bytes are no UTF-8.
std::size_t scalar(std::string_view text, char32_t& code) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || length > text.size()) return 0;
    static constexpr unsigned char masks[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    code = lead & masks[length];
    for (std::size_t at = 1; at < length; ++at) {
        const auto next = static_cast<unsigned char>(text[at]);
        if ((next & 0xC0) != 0x80) return 0;
        code = (code << 6) | (next & 0x3F);
    }
    static constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < smallest[length] || (code >= 0xD800 && code < 0xE000) || code > 0x10FFFF) return 0;
    return length;
}

bool isWide(char32_t code) {
    return (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
           (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
           (code >= 0x1F300 && code <= 0x1FAFF) || (code >= 0x20000 && code <= 0x3FFFD);
}

std::size_t width(char32_t code) {
    const bool combining = (code >= 0x300 && code <= 0x36F) || (code >= 0x200B && code <= 0x200F) || code == 0xFEFF;
    return combining ? 0 : isWide(code) ? 2 : 1;
}

std::string cut(const std::string& text, std::size_t room) {
    if (cells(text) <= room) return text;
    std::string kept;
    std::size_t used = 1;  // the ellipsis
    for (std::string_view rest = text; !rest.empty();) {
        char32_t code = 0;
        const std::size_t length = std::max<std::size_t>(scalar(rest, code), 1);
        if (used + width(code) > room) break;
        used += width(code);
        kept += rest.substr(0, length);
        rest.remove_prefix(length);
    }
    return kept + "…";
}

/// Control characters, and those that turn the direction of what follows.
bool isControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069) || code == 0x2028 || code == 0x2029;
}

std::string escaped(char32_t code) { return fmt::format("\\u{:04x}", static_cast<unsigned>(code)); }

}  // namespace

std::string printable(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        char32_t code = 0;
        const std::size_t length = scalar(text, code);
        if (length == 0) {
            out += fmt::format("\\x{:02x}", static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        if (isControl(code)) {
            out += code == '\n' ? "\\n" : code == '\t' ? "\\t" : escaped(code);
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return out;
}

std::string printableLines(std::string_view text) {
    std::string out;
    for (;;) {
        const std::size_t end = text.find('\n');
        out += printable(text.substr(0, end));
        if (end == std::string_view::npos) return out;
        out += '\n';
        text.remove_prefix(end + 1);
    }
}

std::string printableJson(std::string_view json) {
    std::string out;
    out.reserve(json.size());
    while (!json.empty()) {
        char32_t code = 0xFFFD;
        const std::size_t length = scalar(json, code);
        if (length == 0 || (isControl(code) && code != '\n' && code != '\t')) {
            out += length == 0 ? "\\ufffd" : escaped(code);
        } else {
            out += json.substr(0, length);
        }
        json.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

std::size_t cells(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        char32_t code = '?';
        const std::size_t length = std::max<std::size_t>(scalar(text, code), 1);
        count += width(code);
        text.remove_prefix(length);
    }
    return count;
}

void Table::add(std::vector<std::string> row) {
    row.resize(m_columns.size());
    std::ranges::transform(row, row.begin(), printable);
    m_rows.push_back(std::move(row));
}

std::string Table::render(std::size_t width) const {
    std::vector<std::size_t> widths(m_columns.size());
    for (const auto& row : m_rows) {
        for (std::size_t at = 0; at < row.size(); ++at) widths[at] = std::max(widths[at], cells(row[at]));
    }
    std::string out;
    for (const auto& row : m_rows) {
        std::size_t used = 0;
        for (std::size_t at = 0; at < row.size(); ++at) {
            const bool last = at + 1 == row.size();
            std::string cell = row[at];
            if (last && width > 0) cell = cut(cell, std::max(width > used ? width - used : 0, leastCells));
            const std::string pad(widths[at] > cells(cell) ? widths[at] - cells(cell) : 0, ' ');
            if (m_columns[at] == Align::right) {
                out += pad + cell;
            } else {
                out += last ? cell : cell + pad;
            }
            if (!last) out += "  ";
            used += widths[at] + 2;
        }
        out += '\n';
    }
    return out;
}

}  // namespace ravik::cli
