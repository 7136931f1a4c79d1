#include "App/Views/MainView.h"

#include <array>

namespace ravik::app {

namespace {

const std::array<RecordListModel<SidebarRow>::Role, 6> rowRoles{{
    {"symbol", &SidebarRow::symbol},
    {"label", &SidebarRow::title},
    {"badge", &SidebarRow::badge},
    {"isSelected", &SidebarRow::isSelected},
    {"shortcut", &SidebarRow::shortcut},
    {"spoken", &SidebarRow::spoken},
}};

}  // namespace

MainView::MainView(const Program& program)
    : m_program(program),
      m_rows(
          rowRoles, [](const SidebarRow& row) { return std::string(word(row.destination)); }, this),
      m_diagnosis(program, this) {
    m_watching = program.monitor.observe([this](Monitor::Change change) {
        if (change == Monitor::Change::snapshot) show();
    });
    m_navigating = program.nav.observe([this](Nav::Change change) {
        if (change == Nav::Change::destination) show();
    });
    show();
}

// A sheet goes with its window.
MainView::~MainView() {
    m_navigating.end();
    m_program.nav.setInfo({});
}

void MainView::go(int row) {
    const auto& rows = m_rows.records();
    if (row >= 0 && std::size_t(row) < rows.size()) m_program.nav.go(rows[std::size_t(row)].destination);
}

void MainView::show() {
    const Nav& nav = m_program.nav;
    const Monitor& monitor = m_program.monitor;
    Sidebar sidebar(nav.screens(), nav.destination(), false, monitor.snapshot(), monitor.host());
    m_rows.set(sidebar.rows);
    publish(m_face, {nav.destination(), std::move(sidebar)});
}

}  // namespace ravik::app
