// Pictures of the app's real windows on machines in memory: ravik-pictures FOLDER [PART OF A NAME]. Each is taken from
// a screen by a process of its own. ravik-pictures --stay NAME shows one on the screen that is there, until it is ended.
#include <cstdio>
#include <cstring>

#include <QApplication>
#include <QScreen>

#include <fmt/format.h>
#include <sys/wait.h>

#include "App/Views/Tokens.h"
#include "Platform/Compositor.h"
#include "Tests/EndToEnd/Desktop/Hands.h"
#include "Tests/Pictures/Palette.h"
#include "Tests/Pictures/Scenes.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::pictures {
namespace {

/// Of the screen around a window and its frame, so that its edge is seen.
constexpr int margin = 8;

int takeOne(const std::string& file) {
    QQuickWindow* window = stage::Stage::window();
    if (!window) {
        std::fprintf(stderr, "%s: no window\n", file.c_str());
        return 1;
    }
    const QRect area = window->frameGeometry().adjusted(-margin, -margin, margin, margin);
    const QImage image = window->screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()).toImage();
    constexpr int smallest = 100;  // percent of the time that packing may take
    return paletted(image).save(QString::fromStdString(file), "PNG", 100 - smallest) ? 0 : 1;
}

int show(int& count, char** words, const Scene& scene, const Look& look) {
    QApplication application(count, words);
    stage::prepareApplication();
    app::Tokens::instance().setCompositor(isComposited);
    take(look);
    stage::Stage stage(scene.furnish);
    scene.play(stage);
    if (std::strcmp(words[1], "--one") == 0) return takeOne(words[3]);
    while (true) stage.draw();
}

/// A child with that one picture to take.
bool taken(char** words, const std::string& folder, const std::string& name) {
    const Pid child = platform::startProgram({words[0], "--one", name, folder + "/" + name + ".png"});
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int takeAll(char** words, const std::string& folder, const std::string& part) {
    const platform::OwnXServer server("1800x1600x24");
    const platform::OwnBus bus;
    setenv("DISPLAY", server.display().c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    const platform::OwnWindowManager manager(server);
    endtoend::Hands hands(server.display());
    hands.paintScreen(0x9a9da3);
    // Where there is none, the main window opens by itself.
    platform::Reaper reaper;
    reaper.add(platform::startProgram({"trayer", "--edge", "bottom", "--align", "left", "--widthtype", "request"}));
    platform::waitUntil([&] { return hands.ownsTray(); });
    int failed = 0;
    for (const Scene& scene : scenes()) {
        for (const Look& look : scene.looks) {
            const std::string name = scene.name + look.suffix;
            if (name.find(part) == name.npos) continue;
            const bool isThere = taken(words, folder, name);
            fmt::print("{}{}\n", name, isThere ? "" : ": FAILED");
            failed += isThere ? 0 : 1;
        }
    }
    return failed > 0;
}

}  // namespace
}  // namespace ravik::pictures

int main(int count, char** words) {
    using namespace ravik::pictures;
    if (count < 2) {
        std::fprintf(stderr, "usage: ravik-pictures FOLDER [PART OF A NAME]\n");
        return 2;
    }
    const bool isOne = std::strcmp(words[1], "--one") == 0 || std::strcmp(words[1], "--stay") == 0;
    if (!isOne) return takeAll(words, words[1], count > 2 ? words[2] : "");
    for (const Scene& scene : scenes()) {
        for (const Look& look : scene.looks) {
            if (count > 2 && scene.name + look.suffix == words[2]) return show(count, words, scene, look);
        }
    }
    return 2;
}
