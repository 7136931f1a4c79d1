#include "App/Views/PanelView.h"

#include <array>

#include "Core/Screens/Sidebar.h"

namespace ravik::app {

namespace {

using Row = PanelScreen::Row;
using Suggestion = PanelScreen::Suggestion;
using Live = PanelScreen::Live;

const std::array<RecordListModel<Row>::Role, 17> rowRoles{{
    {"id", &Row::id},
    {"iconApp", [](const Row& row) { return row.icon.app; }},
    {"iconSymbol", [](const Row& row) { return row.icon.symbol; }},
    {"name", &Row::name},
    {"sentence", &Row::sentence},
    {"amount", &Row::amount},
    {"tone", [](const Row& row) { return static_cast<int>(row.verdict.shape); }},
    {"verdict", [](const Row& row) { return row.verdict.word; }},
    {"verdictSpoken", [](const Row& row) { return row.verdict.spoken(); }},
    {"button", &Row::button},
    {"help", &Row::help},
    {"isEnabled", &Row::isEnabled},
    {"hasKeep", &Row::hasKeep},
    {"keepNote", &Row::keepNote},
    {"isResolved", [](const Row& row) { return row.resolved.has_value(); }},
    {"resolvedSymbol", [](const Row& row) { return row.resolved ? std::string(row.resolved->symbol) : std::string(); }},
    {"isWell", [](const Row& row) { return row.resolved && row.resolved->colour == Colour::safe; }},
}};

const std::array<RecordListModel<Suggestion>::Role, 7> suggestionRoles{{
    {"id", &Suggestion::id},
    {"iconApp", [](const Suggestion& row) { return row.icon.app; }},
    {"iconSymbol", [](const Suggestion& row) { return row.icon.symbol; }},
    {"title", &Suggestion::title},
    {"reason", &Suggestion::reason},
    {"acceptHelp", &Suggestion::acceptHelp},
    {"dismissHelp", &Suggestion::dismissHelp},
}};

const std::array<RecordListModel<Live>::Role, 5> liveRoles{{
    {"id", [](const Live& row) { return std::to_string(row.id); }},
    {"word", &Live::word},
    {"target", &Live::target},
    {"timeLeft", &Live::timeLeft},
    {"undoHelp", &Live::undoHelp},
}};

}  // namespace

PanelView::PanelView(const Program& program)
    : m_program(program),
      m_model(program.monitor, program.asker, program.sendFeedback),
      m_rows(rowRoles, &Row::id, this),
      m_suggestions(suggestionRoles, &Suggestion::id, this),
      m_live(
          liveRoles, [](const Live& row) { return std::to_string(row.id); }, this) {
    m_model.onChange([this] { show(); });
    show();
}

QStringList PanelView::screenKeys() const {
    const Sidebar sidebar(m_program.nav.screens(), m_program.nav.destination(), false, {}, m_program.monitor.host());
    QStringList keys;
    for (const SidebarRow& row : sidebar.rows) keys.append(text(row.shortcut));
    return keys;
}

void PanelView::openScreen(int key) {
    const auto& screens = m_program.nav.screens();
    if (key < 0 || std::size_t(key) >= screens.size()) return;
    m_program.nav.go(screens[std::size_t(key)]);
    m_program.openMain();
}

void PanelView::show() {
    const PanelScreen& screen = m_model.screen();
    m_picture.show(MemoryBarFace(screen.picture), screen.legend);
    m_rows.set(screen.rows);
    m_suggestions.set(screen.suggestions);
    m_live.set(screen.live);
    publish(m_screen, screen);
}

}  // namespace ravik::app
