#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/Program.h"
#include "App/Views/View.h"

namespace ravik::app {

/// The panel, for one opening.
class PanelView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made with its window")

public:
    explicit PanelView(const Program& program);

    Q_INVOKABLE void openMain();
    Q_INVOKABLE void quit();

private:
    const Program& m_program;
};

}  // namespace ravik::app
