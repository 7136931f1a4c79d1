#include "Core/Record/ByteSearch.h"

#include <algorithm>

#include <string.h>

namespace ravik {

WordLines::WordLines(std::string_view block, std::span<const std::string_view> words) : m_block(block) {
    m_hits.reserve(words.size());
    for (const std::string_view word : words) {
        m_hits.push_back({word, 0});
        search(m_hits.back());
    }
}

void WordLines::search(Hit& hit) const {
    const char* const found = static_cast<const char*>(
        memmem(m_block.data() + m_from, m_block.size() - m_from, hit.word.data(), hit.word.size()));
    hit.at = found ? static_cast<std::size_t>(found - m_block.data()) : std::string_view::npos;
}

std::string_view WordLines::next() {
    if (m_from >= m_block.size()) return {};
    std::size_t first = std::string_view::npos;
    for (Hit& hit : m_hits) {
        if (hit.at < m_from) search(hit);
        first = std::min(first, hit.at);
    }
    if (first == std::string_view::npos) return {};
    const std::size_t before = m_block.substr(0, first).rfind('\n');
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    const std::size_t end = std::min(m_block.find('\n', first), m_block.size());
    m_from = std::min(end + 1, m_block.size());
    return m_block.substr(begin, end - begin);
}

}  // namespace ravik
