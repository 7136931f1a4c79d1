#include "Core/Screens/QuestionScreen.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ravik {

namespace {

QuestionScreen::Row shown(const EvidenceLine& line) {
    QuestionScreen::Row row{line.icon, line.name, line.line, line.amount, {}};
    if (line.amount.empty()) row.mark = VerdictFace(line.tone);
    return row;
}

QuestionScreen::Section section(const char* heading, const std::vector<EvidenceLine>& lines) {
    QuestionScreen::Section section{heading, {}, moreRows(lines)};
    const std::size_t count = std::min(lines.size(), Confirmation::shownRows);
    for (std::size_t at = 0; at < count; ++at) section.rows.push_back(shown(lines[at]));
    return section;
}

std::string spoken(const QuestionScreen::Section& section) {
    std::vector<std::string> names;
    for (const auto& row : section.rows) names.push_back(row.name);
    if (!section.more.empty()) names.push_back(section.more);
    return fmt::format(" {}: {}.", section.heading, fmt::join(names, ", "));
}

}  // namespace

QuestionScreen::QuestionScreen(const Confirmation& question, const Host& host)
    : title(question.title),
      message(question.message),
      verb(question.verb),
      chord(host.nouns().confirmChord),
      note(Confirmation::note) {
    if (!question.ends.empty()) sections.push_back(section(Confirmation::endsHeading, question.ends));
    if (!question.leftAlone.empty()) sections.push_back(section(Confirmation::leftAloneHeading, question.leftAlone));
    summary = title + " " + message;
    for (const Section& list : sections) summary += spoken(list);
}

}  // namespace ravik
