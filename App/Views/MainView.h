#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/Program.h"
#include "App/Views/View.h"

namespace ravik::app {

/// The main window, from its opening to its closing.
class MainView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")

public:
    explicit MainView(const Program& program);

private:
    const Program& m_program;
};

}  // namespace ravik::app
