#include "App/Views/QuestionView.h"

#include <utility>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyleHints>

namespace ravik::app {

namespace {

using Row = QuestionView::Row;

const RecordListModel<Row>::Role roles[]{
    {"name", [](const Row& row) { return row.row.name; }},
    {"line", [](const Row& row) { return row.row.line; }},
    {"amount", [](const Row& row) { return row.row.amount; }},
    {"hasMark", [](const Row& row) { return row.row.mark.has_value(); }},
    {"tone", [](const Row& row) { return row.row.mark ? int(row.row.mark->shape) : 0; }},
    {"word", [](const Row& row) { return row.row.mark ? row.row.mark->word : std::string(); }},
    {"spoken", [](const Row& row) { return row.row.mark ? row.row.mark->spoken() : std::string(); }},
    {"heading", &Row::heading},
    {"more", &Row::more},
    {"iconApp", [](const Row& row) { return row.row.icon.app; }},
    {"iconSymbol", [](const Row& row) { return row.row.icon.symbol; }},
};

std::vector<Row> rowsOf(const QuestionScreen& screen) {
    std::vector<Row> rows;
    for (const auto& section : screen.sections) {
        for (const auto& row : section.rows) rows.push_back({rows.size(), row, {}, {}});
        rows[rows.size() - section.rows.size()].heading = section.heading;
        rows.back().more = section.more;
    }
    return rows;
}

QuestionKeys::Press press(const QKeyEvent& event) {
    using QuestionKeys::Key;
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    QuestionKeys::Press press{Key::other, modifiers.testFlag(Qt::ControlModifier),
                              (modifiers & ~Qt::ControlModifier) != Qt::NoModifier, event.isAutoRepeat()};
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter: press.key = Key::enter; break;
        case Qt::Key_Escape: press.key = Key::escape; break;
        case Qt::Key_Backspace: press.key = Key::backspace; break;
        case Qt::Key_Delete: press.key = Key::forwardDelete; break;
        default: break;
    }
    return press;
}

}  // namespace

QuestionView::QuestionView(QuestionScreen screen, Answer answer)
    : m_screen(std::move(screen)),
      m_rows(
          roles, [](const Row& row) { return std::to_string(row.place); }, this),
      m_answer(std::move(answer)) {
    m_rows.set(rowsOf(m_screen));
}

void QuestionView::watch(QWindow& window) { window.installEventFilter(this); }

void QuestionView::goAhead() {
    if (m_shown.isValid() && m_shown.hasExpired(QGuiApplication::styleHints()->mouseDoubleClickInterval()))
        answer(true);
}

bool QuestionView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && !m_shown.isValid()) m_shown.start();
    if (event->type() == QEvent::Close) answer(false);
    if (event->type() == QEvent::KeyPress) {
        if (const auto yes = QuestionKeys::answer(press(*static_cast<QKeyEvent*>(event)))) {
            if (*yes) {
                goAhead();
            } else {
                answer(false);
            }
            return true;
        }
    }
    return View::eventFilter(watched, event);
}

void QuestionView::answer(bool yes) {
    if (const auto once = std::exchange(m_answer, {})) once(yes);
}

}  // namespace ravik::app
