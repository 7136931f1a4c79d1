#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QStyleHints>
#include <QtQuickTest>

#include "App/Views/Tokens.h"

void qml_register_types_Ravik();  // NOLINT(readability-identifier-naming): generated

namespace ravik::app {

/// What a test asks of the desktop and of the program: `desk` in QML.
class Desk : public QObject {
    Q_OBJECT

public:
    Q_INVOKABLE void setTextScale(double scale) { Tokens::instance().setTextScale(scale); }
    Q_INVOKABLE void setDoubleClickTime(int milliseconds) {
        QGuiApplication::styleHints()->setMouseDoubleClickInterval(milliseconds);
    }
    Q_INVOKABLE void setReducedMotion(bool reduced) { Tokens::instance().setReducedMotion(reduced); }
};

class Setup : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void applicationAvailable() {
        // Tests press faster than any hand.
        QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        qml_register_types_Ravik();
        QFont font = QGuiApplication::font();
        font.setPointSizeF(10);
        QGuiApplication::setFont(font);
    }
    void qmlEngineAvailable(QQmlEngine* engine) {
        engine->addImportPath("qrc:/");
        engine->rootContext()->setContextProperty("desk", &m_desk);
    }

private:
    Desk m_desk;
};

}  // namespace ravik::app

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ravik::app::Setup setup;
    return quick_test_main_with_setup(argc, argv, "ravik-quick-tests", QUICK_TEST_SOURCE_DIR, &setup);
}

#include "Main.moc"
