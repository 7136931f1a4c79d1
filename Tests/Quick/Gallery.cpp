// Renders a QML file with the program's tokens to a picture: light or dark, at any text size, mirrored or not.

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>

#include "App/Views/Tokens.h"

void qml_register_types_Ravik();  // NOLINT(readability-identifier-naming): generated

int main(int argc, char** argv) {
    using ravik::app::Tokens;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    qml_register_types_Ravik();

    QCommandLineParser words;
    words.addHelpOption();
    words.addOptions({{"dark", "The dark appearance."},
                      {"contrast", "High contrast."},
                      {"rtl", "Mirrored."},
                      {"text", "By what the text is larger.", "factor", "1"},
                      {"font", "The interface font.", "family"},
                      {"import", "A folder with Ravik/qmldir, looked at before what is built in.", "folder"},
                      {"file", "What to show.", "qml", RAVIK_GALLERY}});
    words.addPositionalArgument("picture", "Where the PNG goes.");
    words.process(application);
    if (words.positionalArguments().isEmpty()) words.showHelp(2);

    QFont font = QGuiApplication::font();
    if (words.isSet("font")) font.setFamily(words.value("font"));
    font.setPointSizeF(10);
    QGuiApplication::setFont(font);
    if (words.isSet("rtl")) QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    Tokens& tokens = Tokens::instance();
    tokens.setDark(words.isSet("dark"));
    tokens.setHighContrast(words.isSet("contrast"));
    tokens.setTextScale(words.value("text").toDouble());

    QQmlApplicationEngine engine;
    engine.addImportPath("qrc:/");
    if (words.isSet("import")) engine.addImportPath(words.value("import"));
    engine.load(QUrl::fromLocalFile(words.value("file")));
    auto* window = engine.rootObjects().isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    if (!window) return 1;
    window->show();
    QTimer::singleShot(300, window, [&] {
        const bool isWritten = window->grabWindow().save(words.positionalArguments().first());
        QCoreApplication::exit(isWritten ? 0 : 1);
    });
    return QGuiApplication::exec();
}
