#include "App/StatusItem.h"

#include <QAction>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace ravik::app {
namespace {

Glyph glyph(const char* symbol, const char* title, const char* label) {
    Glyph glyph;
    glyph.symbol = symbol;
    glyph.title = title;
    glyph.label = label;
    return glyph;
}

const Glyph reading = glyph("memorychip", "", "Ravik, reading your computer");
const Glyph calm = glyph("memorychip", "", "Ravik, nothing to free");
const Glyph some = glyph("memorychip.fill", " 4.6 GB", "Ravik, 4.6 GB reclaimable");

class StatusItemTest : public testing::Test {
protected:
    QAction* action(const QString& name) {
        for (auto* action : item.menu().actions()) {
            if (action->text() == name) return action;
        }
        return nullptr;
    }
    const Host host{HostKind::linux, 1000, 50, {1}, {}};
    StatusItem item{{Destination::diagnosis, Destination::history}, host};
};

TEST_F(StatusItemTest, TouchesNothingUnlessWhatItShowsHasChanged) {
    item.render(reading);
    EXPECT_EQ(item.updates(), 1);
    const qint64 icon = item.icon().cacheKey();
    for (int tick = 0; tick < 5; ++tick) item.render(reading);
    EXPECT_EQ(item.updates(), 1);
    EXPECT_EQ(item.icon().cacheKey(), icon);
    item.render(some);
    EXPECT_EQ(item.updates(), 2);
    EXPECT_NE(item.icon().cacheKey(), icon);
    item.render(some);
    EXPECT_EQ(item.updates(), 2);
}

TEST_F(StatusItemTest, SaysInItsTooltipWhatTheGlyphSays) {
    item.render(some);
    EXPECT_EQ(item.toolTip(), QStringLiteral("Ravik, 4.6 GB reclaimable"));
    item.render(calm);
    EXPECT_EQ(item.toolTip(), QStringLiteral("Ravik, nothing to free"));
}

TEST_F(StatusItemTest, NoLongerSaysThatItReadsOnceItHasAndKeepsItsPicture) {
    item.render(reading);
    const qint64 icon = item.icon().cacheKey();
    item.render(calm);
    EXPECT_EQ(item.toolTip(), QStringLiteral("Ravik, nothing to free"));
    EXPECT_EQ(item.icon().cacheKey(), icon);
}

TEST_F(StatusItemTest, IsDrawnAnewForADarkStatusArea) {
    item.render(some);
    item.setDark(true);
    const QImage dark = item.icon().pixmap(22).toImage();
    item.setDark(false);
    EXPECT_NE(item.icon().pixmap(22).toImage(), dark);
    EXPECT_EQ(item.updates(), 3);
}

TEST_F(StatusItemTest, ItsMenuOpensTheScreensThatExistReadsNowAndQuits) {
    QSignalSpy open(&item, &StatusItem::openChosen);
    QSignalSpy screen(&item, &StatusItem::screenChosen);
    QSignalSpy quit(&item, &StatusItem::quitChosen);
    ASSERT_TRUE(action(QStringLiteral("Open Ravik")));
    action(QStringLiteral("Open Ravik"))->trigger();
    EXPECT_EQ(open.size(), 1);
    ASSERT_TRUE(action(QStringLiteral("History")));
    EXPECT_EQ(action(QStringLiteral("History"))->shortcut(), QKeySequence(QStringLiteral("Ctrl+5")));
    action(QStringLiteral("History"))->trigger();
    ASSERT_EQ(screen.size(), 1);
    EXPECT_EQ(screen[0][0].value<Destination>(), Destination::history);
    EXPECT_FALSE(action(QStringLiteral("Processes")));
    QSignalSpy read(&item, &StatusItem::readChosen);
    ASSERT_TRUE(action(QStringLiteral("Read the computer Now")));
    EXPECT_EQ(action(QStringLiteral("Read the computer Now"))->shortcut(), QKeySequence(QStringLiteral("Ctrl+R")));
    action(QStringLiteral("Read the computer Now"))->trigger();
    EXPECT_EQ(read.size(), 1);
    ASSERT_TRUE(action(QStringLiteral("Quit Ravik")));
    EXPECT_EQ(action(QStringLiteral("Quit Ravik"))->shortcut(), QKeySequence(QStringLiteral("Ctrl+Q")));
    action(QStringLiteral("Quit Ravik"))->trigger();
    EXPECT_EQ(quit.size(), 1);
}

}  // namespace
}  // namespace ravik::app
