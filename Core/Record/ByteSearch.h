#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace ravik {

/// Finds the lines of a block that hold one of a few words, touching the bytes in between only to search them. Each
/// word is searched for once over the whole block.
class WordLines {
public:
    WordLines(std::string_view block, std::span<const std::string_view> words);

    /// The next line, without its line feed, that holds a word; data() is null when there is none.
    std::string_view next();

private:
    struct Hit {
        std::string_view word;
        std::size_t at;
    };
    void search(Hit& hit) const;

    std::string_view m_block;
    std::vector<Hit> m_hits;
    std::size_t m_from = 0;
};

}  // namespace ravik
