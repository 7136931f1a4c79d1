#include "App/Views/MainView.h"

namespace ravik::app {

MainView::MainView(const Program& program) : m_program(program) {}

}  // namespace ravik::app
