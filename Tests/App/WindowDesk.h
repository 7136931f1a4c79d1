#pragma once

#include <memory>
#include <string>

#include <QQuickItem>
#include <QTest>

#include "App/Views/MainView.h"
#include "App/Views/QmlFrame.h"
#include "App/Views/Tokens.h"
#include "Tests/App/Desk.h"

namespace ravik::app {

/// The main window on a machine in memory.
class WindowDesk : public Desk {
protected:
    WindowDesk() { machine.clock.advance(100000); }
    ~WindowDesk() override { close(); }

    /// A program that has lost its terminal.
    fakes::FakeProcess& orphan(Pid pid, const std::string& name, std::uint64_t megabytes = 100) {
        fakes::FakeProcess process;
        process.pid = pid;
        process.name = name;
        process.command = "/tmp/" + name;
        process.started = machine.clock.now() - 7200;
        process.footprintBytes = megabytes << 20;
        return machine.processes.add(process);
    }
    void threeOrphans() {
        orphan(800, "big", 300);
        orphan(801, "middle", 200);
        orphan(802, "small", 100);
    }
    void manyOrphans() {
        for (Pid pid = 800; pid < 840; ++pid) orphan(pid, "server-" + std::to_string(pid), 100);
    }

    void tick() {
        machine.clock.advance(5);
        monitor.readNow();
        settle();
    }
    /// What is in the loop, without animations that are long.
    static void settle() { QTest::qWait(30); }
    void letRun() {
        machine.loop.runFor(20);
        settle();
    }

    QQuickWindow& open() {
        auto view = std::make_unique<MainView>(program);
        model = view.get();
        window = frame.open("MainWindow", std::move(view));
        window->show();
        window->requestActivate();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        settle();
        return *window;
    }
    void close() {
        if (window) frame.close(window);
        window = nullptr;
        settle();
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window, key, modifiers);
        settle();
    }
    void click(const QQuickItem* item) {
        QTest::mouseClick(window, Qt::LeftButton, {}, middle(item));
        settle();
    }
    static QPoint middle(const QQuickItem* item) {
        return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
    }

    /// All items of that QML file that are to be seen, in the order of the tree.
    QList<QQuickItem*> all(const char* file) const {
        QList<QQuickItem*> found;
        gather(window->contentItem(), QByteArray(file), found);
        return found;
    }
    QQuickItem* the(const char* file) const {
        const auto found = all(file);
        return found.size() == 1 ? found.first() : nullptr;
    }
    bool says(const char* words) const {
        for (const QQuickItem* label : all("Label")) {
            if (label->property("text").toString() == QString::fromUtf8(words)) return true;
        }
        return false;
    }
    DiagnosisView& screen() const { return *model->diagnosis(); }
    /// The name on the chosen card; empty if none is.
    QString chosen() const {
        for (const QQuickItem* card : all("FindingCard")) {
            if (card->property("isSelected").toBool()) return card->property("name").toString();
        }
        return {};
    }
    bool holdsFocus(const QQuickItem* item) const {
        for (const QQuickItem* each = window->activeFocusItem(); each; each = each->parentItem()) {
            if (each == item) return true;
        }
        return false;
    }

    QmlFrame frame;
    QQuickWindow* window = nullptr;
    MainView* model = nullptr;

private:
    static void gather(QQuickItem* item, const QByteArray& file, QList<QQuickItem*>& found) {
        if (!item->isVisible()) return;
        const QByteArray name = item->metaObject()->className();
        if (name.startsWith(file + "_QML")) found.append(item);
        for (QQuickItem* child : item->childItems()) gather(child, file, found);
    }
};

}  // namespace ravik::app
