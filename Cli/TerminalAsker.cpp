#include "Cli/TerminalAsker.h"

#include <fmt/format.h>

#include "Cli/Table.h"

namespace ravik::cli {

namespace {

std::string list(std::string_view heading, const std::vector<EvidenceLine>& rows) {
    if (rows.empty()) return {};
    Table table({Table::Align::left, Table::Align::right, Table::Align::left});
    for (std::size_t at = 0; at < rows.size() && at < Confirmation::shownRows; ++at) {
        table.add({"  " + rows[at].name, rows[at].amount, rows[at].line});
    }
    std::string text = fmt::format("\n{}\n{}", heading, table.render(0));
    if (const std::string more = moreRows(rows); !more.empty()) text += "  " + more + "\n";
    return text;
}

}  // namespace

std::string questionText(const Confirmation& question) {
    return printable(question.title) + "\n" + printable(question.message) + "\n" +
           list(Confirmation::endsHeading, question.ends) + list(Confirmation::leftAloneHeading, question.leftAlone) +
           "\n" + Confirmation::note + "\n";
}

Task<bool> TerminalAsker::ask(const Confirmation& question) {
    if (m_alwaysYes) co_return true;
    if (!m_context.computer.terminal().canAsk()) {
        m_foundNobody = true;
        co_return false;
    }
    const auto answer = m_context.computer.terminal().readLine([&] {
        m_context.err << questionText(question) << "\n" << printable(question.verb) << "? [y/N] ";
        m_context.err.flush();
    });
    if (!answer) m_context.err << "\n";
    co_return answer && (*answer == "y" || *answer == "yes");
}

}  // namespace ravik::cli
