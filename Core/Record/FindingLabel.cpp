#include "Core/Record/FindingLabel.h"

#include <algorithm>

#include "Core/Wording/Fmt.h"

namespace ravik::HistoryStore {

namespace {

std::string lastPiece(std::string_view id) {
    const std::size_t end = id.find_last_not_of(':');
    if (end == std::string_view::npos) return std::string(id);
    id = id.substr(0, end + 1);
    return std::string(id.substr(id.rfind(':') + 1));
}

std::string without(std::string_view text, std::string_view word) {
    std::string rest(text);
    for (std::size_t at = 0; (at = rest.find(word, at)) != std::string::npos;) rest.erase(at, word.size());
    return rest;
}

}  // namespace

std::string label(std::string_view id, const std::map<std::string, std::string>& titles) {
    const auto known = titles.find(std::string(id));
    if (known == titles.end()) return lastPiece(id);
    const std::string_view title = known->second;
    if (const std::size_t from = title.find(" from "); title.starts_with("A hidden automation") && from != title.npos) {
        const std::size_t begin = std::min(Fmt::firstScalars(title, 20).size(), from);
        return "Hidden automation " + without(title.substr(begin, from - begin), "automation ");
    }
    for (const std::string_view separator : {" has run", " has been", " has used", " holds", " is "}) {
        if (const std::size_t at = title.find(separator); at != title.npos) return std::string(title.substr(0, at));
    }
    return std::string(title);
}

}  // namespace ravik::HistoryStore
