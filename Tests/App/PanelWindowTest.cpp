#include "App/Views/PanelView.h"
#include "Tests/App/WindowDesk.h"

namespace ravik::app {
namespace {

class PanelWindow : public WindowDesk {
protected:
    void openPanel() {
        monitor.readNow();
        window = frame.open("MenuBarPanel", std::make_unique<PanelView>(program));
        window->show();
        window->requestActivate();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        letShow();
    }
    void letShow() {
        machine.loop.settle();
        settle();
    }
    QStringList names() const {
        QList<QQuickItem*> rows = all("PanelRow");
        std::ranges::sort(rows, {}, &QQuickItem::y);
        QStringList found;
        for (const QQuickItem* row : rows) found.append(row->property("name").toString());
        return found;
    }
    QQuickItem* row(const QString& name) const {
        for (QQuickItem* row : all("PanelRow")) {
            if (row->property("name").toString() == name) return row;
        }
        return nullptr;
    }
};

TEST_F(PanelWindow, ANewFirstFindingComesInBesideTheRowUnderThePointer) {
    threeOrphans();
    openPanel();
    ASSERT_EQ(names(), (QStringList{"big", "middle", "small"}));
    QQuickItem* pointed = row("small");
    const qreal place = pointed->y();
    QTest::mouseMove(window, middle(pointed));
    letShow();
    orphan(803, "huge", 900);
    tick();
    letShow();
    EXPECT_EQ(names(), (QStringList{"big", "huge", "small"}));
    EXPECT_EQ(row("small"), pointed);
    EXPECT_EQ(pointed->y(), place);
    QTest::mouseMove(window, QPoint(100, 10));
    letShow();
    EXPECT_EQ(names(), (QStringList{"huge", "big", "middle"}));
}

TEST_F(PanelWindow, AKeepThatCannotBeStoredIsSaidInItsRow) {
    orphan(800, "big", 300);
    openPanel();
    machine.defaults.isReadOnly = true;
    ASSERT_TRUE(the("TextLink"));
    click(the("TextLink"));
    letShow();
    EXPECT_TRUE(says("Ravik could not store that, so it is not on your Keep list."));
    EXPECT_TRUE(folder.lines("keep").empty());
}

}  // namespace
}  // namespace ravik::app
