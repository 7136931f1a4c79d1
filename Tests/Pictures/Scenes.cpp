#include "Tests/Pictures/Scenes.h"

#include <QApplication>
#include <QPalette>

#include "Tests/Stage/Machines.h"

namespace ravik::pictures {

namespace {

using stage::Stage;

constexpr double untilRead = 11;

const Look light{};
const Look dark{.suffix = "-dark", .isDark = true};
const Look large{.suffix = "-text200", .textScale = 2};
const Look mirrored{.suffix = "-right-to-left", .isRightToLeft = true};

void openPanel(Stage& stage) {
    stage.launch();
    stage.pass(untilRead);
    stage.toggle();
    stage.draw();
    stage.pass(4);
    stage.draw();
}

void openPanelAndScroll(Stage& stage) {
    openPanel(stage);
    stage.scrollDown();
}

void openPanelAtOnce(Stage& stage) {
    stage.machine().loop.holdBackground = true;
    stage.launch();
    stage.toggle();
    stage.draw();
}

void ask(Stage& stage) {
    openPanel(stage);
    stage.press(Qt::Key_Return);
}

void free(Stage& stage) {
    ask(stage);
    stage.press(Qt::Key_Backspace, Qt::ControlModifier);
    stage.pass(6);
    stage.draw();
}

/// What the Autopilot would do, or has done, with what it has seen idle for half an hour.
void openPanelLater(Stage& stage) {
    stage.launch();
    stage.machine().workspace.focus("Visual Studio Code");
    stage.pass(33 * 60);
    stage.toggle();
    stage.draw();
    stage.scrollDown();
}

/// It pauses what it was allowed to pause.
void openPanelWithLiveActions(Stage& stage) {
    stage.machine().defaults.values["autopilotApproved"] = {"demote", "pause"};
    openPanelLater(stage);
}

void openMain(Stage& stage, int width) {
    stage.launch();
    stage.pass(untilRead);
    stage.openMain();
    if (QQuickWindow* window = Stage::window()) window->resize(width, 900);
    stage.draw();
    stage.pass(4);
    stage.draw();
}

std::function<void(Stage&)> mainAt(int width) {
    return [width](Stage& stage) { openMain(stage, width); };
}

void openMainAtOnce(Stage& stage) {
    stage.machine().loop.holdBackground = true;
    stage.launch();
    stage.openMain();
    stage.draw();
}

/// The ring, with its first part chosen.
void showMap(Stage& stage) {
    stage.machine().defaults.values["diagnosisMode"] = "Map";
    openMain(stage, 960);
    stage.press(Qt::Key_Right);
    stage.draw();
}

void showMapBelow(Stage& stage) {
    showMap(stage);
    stage.scrollDown();
}

void showEvidence(Stage& stage) {
    openMain(stage, 960);
    stage.press(Qt::Key_Down);
    stage.press(Qt::Key_Down);
    stage.press(Qt::Key_Return);
    stage.draw();
}

/// The first card's button, and a yes.
void endOne(Stage& stage) {
    openMain(stage, 960);
    stage.press(Qt::Key_Down);
    stage.press(Qt::Key_Backspace, Qt::ControlModifier);
    stage.draw();
    stage.press(Qt::Key_Backspace, Qt::ControlModifier);
    stage.pass(6);
    stage.draw();
    stage.scrollDown();
}

/// The same for one that does not end.
void endStubbornOne(Stage& stage) {
    for (auto& [pid, process] : stage.machine().processes.all()) process.ignoresTerm = process.ignoresKill = true;
    endOne(stage);
}

}  // namespace

const std::vector<Scene>& scenes() {
    static const std::vector<Scene> all{
        {"panel-pending", stage::furnishCalm, openPanelAtOnce, {light, dark}},
        {"panel-calm", stage::furnishCalm, openPanel, {light, dark}},
        {"panel-findings", stage::furnishBusy, openPanel, {light, dark, large, mirrored}},
        {"panel-findings-below", stage::furnishBusy, openPanelAndScroll, {light, dark, large}},
        {"panel-after", stage::furnishBusy, free, {light, dark}},
        {"panel-crowded", stage::furnishCrowded, openPanel, {light, dark}},
        {"panel-suggestions", stage::furnishBusy, openPanelLater, {light, dark}},
        {"panel-live", stage::furnishBusy, openPanelWithLiveActions, {light, dark}},
        {"question", stage::furnishBusy, ask, {light, dark, large, mirrored}},
        {"window-diagnosis", stage::furnishBusy, mainAt(960), {light, dark, large, mirrored}},
        {"window-diagnosis-820", stage::furnishBusy, mainAt(820), {light, dark}},
        {"window-diagnosis-1600", stage::furnishBusy, mainAt(1600), {light, dark}},
        {"window-diagnosis-calm", stage::furnishCalm, mainAt(960), {light, dark}},
        {"window-diagnosis-waiting", stage::furnishCalm, openMainAtOnce, {light, dark}},
        {"window-diagnosis-map", stage::furnishBusy, showMap, {light, dark, large, mirrored}},
        {"window-diagnosis-map-below", stage::furnishBusy, showMapBelow, {large}},
        {"window-diagnosis-evidence", stage::furnishBusy, showEvidence, {light, dark}},
        {"window-diagnosis-after", stage::furnishBusy, endOne, {light, dark}},
        {"window-diagnosis-failed", stage::furnishBusy, endStubbornOne, {light, dark}},
    };
    return all;
}

void take(const Look& look) {
    if (look.isDark) {
        QPalette palette;
        palette.setColor(QPalette::Window, QColor(0x24, 0x24, 0x27));
        palette.setColor(QPalette::Base, QColor(0x1c, 0x1c, 0x1e));
        palette.setColor(QPalette::AlternateBase, QColor(0x2a, 0x2a, 0x2d));
        palette.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3d));
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            palette.setColor(role, QColor(0xf2, 0xf2, 0xf4));
        }
        palette.setColor(QPalette::PlaceholderText, QColor(0xa6, 0xa6, 0xab));
        QApplication::setPalette(palette);
    }
    QFont font = QApplication::font();
    font.setPointSizeF(10 * look.textScale);
    QApplication::setFont(font);
    if (look.isRightToLeft) QApplication::setLayoutDirection(Qt::RightToLeft);
}

}  // namespace ravik::pictures
