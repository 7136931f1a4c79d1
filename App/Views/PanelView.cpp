#include "App/Views/PanelView.h"

namespace ravik::app {

PanelView::PanelView(const Program& program) : m_program(program) {}

void PanelView::openMain() { m_program.openMain(); }

void PanelView::quit() { m_program.quit(); }

}  // namespace ravik::app
