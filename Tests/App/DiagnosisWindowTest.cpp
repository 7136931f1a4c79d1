#include <QStyleHints>

#include "Tests/App/WindowDesk.h"

namespace ravik::app {
namespace {

class DiagnosisWindow : public WindowDesk {
protected:
    void openWithThree() {
        threeOrphans();
        monitor.readNow();
        open();
    }
};

TEST_F(DiagnosisWindow, UpAndDownChooseACard) {
    openWithThree();
    press(Qt::Key_Down);
    EXPECT_EQ(chosen(), QStringLiteral("big"));
    press(Qt::Key_Down);
    EXPECT_EQ(chosen(), QStringLiteral("middle"));
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(chosen(), QStringLiteral("big"));
}

TEST_F(DiagnosisWindow, SpaceOpensTheEvidenceAndEscapeGoesBackToTheCard) {
    openWithThree();
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    ASSERT_TRUE(the("EvidenceSheet"));
    EXPECT_EQ(idOf(*nav.info()), "f:orphan:801");
    EXPECT_TRUE(holdsFocus(the("EvidenceSheet")));
    press(Qt::Key_Escape);
    EXPECT_FALSE(the("EvidenceSheet"));
    EXPECT_FALSE(nav.info());
    EXPECT_EQ(chosen(), QStringLiteral("middle"));
    press(Qt::Key_Down);
    EXPECT_EQ(chosen(), QStringLiteral("small"));
    press(Qt::Key_Return);
    EXPECT_TRUE(the("EvidenceSheet"));
}

TEST_F(DiagnosisWindow, AClickOnACardOpensItsEvidence) {
    openWithThree();
    window->resize(960, 900);
    settle();
    const auto cards = all("FindingCard");
    ASSERT_EQ(cards.size(), 3);
    click(cards[1]);
    EXPECT_TRUE(the("EvidenceSheet"));
    EXPECT_EQ(idOf(*nav.info()), "f:orphan:801");
}

TEST_F(DiagnosisWindow, TheKeyboardStaysWithinTheSheet) {
    openWithThree();
    screen().open(QStringLiteral("orphan:800"));
    settle();
    for (int step = 0; step < 5; ++step) {
        EXPECT_TRUE(holdsFocus(the("EvidenceSheet"))) << step;
        press(Qt::Key_Tab);
    }
    for (int step = 0; step < 5; ++step) {
        EXPECT_TRUE(holdsFocus(the("EvidenceSheet"))) << step;
        press(Qt::Key_Backtab, Qt::ShiftModifier);
    }
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_TRUE(asker.asked.empty());
}

TEST_F(DiagnosisWindow, TheChordRunsTheChosenCard) {
    asker.answer = false;
    openWithThree();
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_TRUE(asker.asked.empty()) << "none is chosen";
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    letRun();
    ASSERT_EQ(asker.asked.size(), 1u);
    EXPECT_TRUE(machine.processes.sent.empty());
}

TEST_F(DiagnosisWindow, AnEndedOneTurnsIntoItsOutcome) {
    openWithThree();
    press(Qt::Key_Down);
    press(Qt::Key_Backspace, Qt::ControlModifier);
    letRun();
    EXPECT_FALSE(machine.processes.find(800));
    ASSERT_EQ(all("ResolvedRow").size(), 1);
    EXPECT_TRUE(all("ResolvedRow").first()->property("isWell").toBool());
    QTest::qWait(600);
    EXPECT_EQ(all("FindingCard").size(), 2);
}

TEST_F(DiagnosisWindow, FreeEndsAllThatIsSafe) {
    openWithThree();
    ASSERT_TRUE(the("FreeButton"));
    click(the("FreeButton"));
    letRun();
    EXPECT_EQ(asker.asked.size(), 1u);
    EXPECT_EQ(all("ResolvedRow").size(), 3);
}

TEST_F(DiagnosisWindow, ARowLeavesInItsTime) {
    openWithThree();
    const auto before = all("FindingCard");
    machine.processes.end(801);
    tick();
    EXPECT_EQ(all("FindingCard"), before) << "it is on its way out";
    EXPECT_TRUE(before[1]->property("isLeaving").toBool());
    QTest::qWait(600);
    EXPECT_EQ(all("FindingCard"), (QList<QQuickItem*>{before[0], before[2]}));
}

TEST_F(DiagnosisWindow, WithReducedMotionItLeavesAtOnce) {
    Tokens::instance().setReducedMotion(true);
    openWithThree();
    machine.processes.end(801);
    tick();
    EXPECT_EQ(all("FindingCard").size(), 2);
    Tokens::instance().setReducedMotion(false);
}

TEST_F(DiagnosisWindow, ATickLeavesEverythingInItsPlace) {
    manyOrphans();
    monitor.readNow();
    open();
    for (int step = 0; step < 30; ++step) press(Qt::Key_Down);
    press(Qt::Key_Space);
    const auto place = all("ScrollArea");
    const auto cards = all("FindingCard");
    auto* sheet = the("EvidenceSheet");
    const QString before = chosen();
    QList<qreal> scrolled;
    for (const auto* each : place) scrolled.append(each->property("contentY").toReal());
    EXPECT_GT(*std::ranges::max_element(scrolled), 500);
    auto* focused = window->activeFocusItem();

    machine.processes.find(839)->footprintBytes = 900ull << 20;
    tick();
    tick();
    EXPECT_EQ(all("FindingCard"), cards);
    EXPECT_EQ(the("EvidenceSheet"), sheet);
    EXPECT_EQ(chosen(), before);
    EXPECT_EQ(window->activeFocusItem(), focused);
    QList<qreal> after;
    for (const auto* each : all("ScrollArea")) after.append(each->property("contentY").toReal());
    EXPECT_EQ(after, scrolled);
    EXPECT_TRUE(says("900\u00a0MB back"));
}

TEST_F(DiagnosisWindow, TheChosenCardIsScrolledIntoView) {
    manyOrphans();
    monitor.readNow();
    open();
    for (int step = 0; step < 30; ++step) press(Qt::Key_Down);
    for (const QQuickItem* card : all("FindingCard")) {
        if (!card->property("isSelected").toBool()) continue;
        const QRectF place = card->mapRectToScene(card->boundingRect());
        EXPECT_GE(place.top(), 0);
        EXPECT_LE(place.bottom(), window->height());
    }
}

TEST_F(DiagnosisWindow, RowsKeepTheirPlacesUnderThePointer) {
    openWithThree();
    window->resize(960, 900);
    settle();
    const auto cards = all("FindingCard");
    ASSERT_EQ(cards.size(), 3);
    QTest::mouseMove(window, middle(cards[2]));
    settle();
    machine.processes.find(802)->footprintBytes = 900ull << 20;
    tick();
    EXPECT_LT(cards[0]->y(), cards[2]->y());
    QTest::mouseMove(window, QPoint(100, 500));
    settle();
    tick();
    settle();
    EXPECT_GT(cards[0]->y(), cards[2]->y());
}

TEST_F(DiagnosisWindow, TheMapIsGoneRoundByKeys) {
    orphan(800, "big", 4000);
    orphan(801, "middle", 2000);
    monitor.readNow();
    open();
    screen().setMode(1);
    settle();
    auto* ring = the("MapRing");
    ASSERT_TRUE(ring);
    EXPECT_TRUE(says("Click a part to see its causes."));
    ring->forceActiveFocus(Qt::TabFocusReason);
    press(Qt::Key_Right);
    EXPECT_TRUE(screen().map()->hasArc());
    const QString first = screen().map()->name();
    press(Qt::Key_Right);
    EXPECT_NE(screen().map()->name(), first);
    press(Qt::Key_Left);
    EXPECT_EQ(screen().map()->name(), first);
    press(Qt::Key_Escape);
    EXPECT_FALSE(screen().map()->hasArc());
    EXPECT_EQ(the("MapRing"), ring);
}

TEST_F(DiagnosisWindow, AClickOnTheRingChoosesItsPart) {
    orphan(800, "big", 4000);
    orphan(801, "middle", 2000);
    monitor.readNow();
    open();
    screen().setMode(1);
    window->resize(960, 1000);
    settle();
    auto* ring = the("MapRing");
    ASSERT_TRUE(ring);
    const auto& arcs = screen().map()->face().arcs;
    ASSERT_FALSE(arcs.empty());
    // Half way through the first arc, in the middle of the inner ring.
    const double angle = qDegreesToRadians(arcs[0].span.start + arcs[0].span.degrees / 2);
    const QPointF place = QPointF(ring->width() / 2, ring->height() / 2) +
                          QPointF(std::sin(angle), -std::cos(angle)) * (109.0 / 304 * ring->width());
    QTest::mouseClick(window, Qt::LeftButton, {}, ring->mapToScene(place).toPoint());
    settle();
    EXPECT_EQ(screen().map()->name().toStdString(), arcs[0].label);
    QTest::mouseClick(window, Qt::LeftButton, {},
                      ring->mapToScene(QPointF(ring->width() / 2, ring->height() / 2)).toPoint());
    settle();
    EXPECT_FALSE(screen().map()->hasArc()) << "the middle is no part";
}

TEST_F(DiagnosisWindow, ASheetThatIsAskedForElsewhereOpensAndGoesWithTheWindow) {
    openWithThree();
    nav.setInfo(FindingInfo{"orphan:802"});
    settle();
    ASSERT_TRUE(the("EvidenceSheet"));
    EXPECT_EQ(screen().evidence()->name(), QStringLiteral("small"));
    close();
    EXPECT_FALSE(nav.info());
}

TEST_F(DiagnosisWindow, ASheetSaysThatItsSubjectIsGone) {
    openWithThree();
    screen().open(QStringLiteral("orphan:801"));
    settle();
    machine.processes.end(801);
    tick();
    ASSERT_TRUE(the("EvidenceSheet"));
    EXPECT_TRUE(screen().evidence()->isGone());
    EXPECT_FALSE(screen().evidence()->hasKeep());
}

TEST_F(DiagnosisWindow, WithoutAGainACardSaysWhatItHolds) {
    orphan(800, "postgres", 200);
    monitor.readNow();
    open();
    EXPECT_TRUE(says("no button — left running"));
    EXPECT_TRUE(says("200\u00a0MB"));
}

TEST_F(DiagnosisWindow, TabComesToACardAlsoWhereNothingIsSafeToEnd) {
    orphan(800, "postgres", 200);
    monitor.readNow();
    open();
    ASSERT_TRUE(the("FindingCard"));
    bool came = false;
    for (int step = 0; step < 8 && !came; ++step) {
        press(Qt::Key_Tab);
        came = holdsFocus(the("FindingCard"));
    }
    EXPECT_TRUE(came);
}

TEST_F(DiagnosisWindow, BehindTheMapTheCardsStayAsTheyWere) {
    openWithThree();
    auto list = screen().sections();
    const auto leaving = [&] {
        const RecordModel* cards = list.at(&list, 0)->cards();
        const int role = cards->roleNames().key("isLeaving");
        int count = 0;
        for (int row = 0; row < cards->count(); ++row) count += cards->data(cards->index(row), role).toBool();
        return count;
    };
    screen().setMode(1);
    settle();
    machine.processes.end(801);
    tick();
    EXPECT_EQ(leaving(), 0);
    screen().setMode(0);
    settle();
    ASSERT_EQ(all("FindingCard").size(), 2);
    EXPECT_EQ(all("FindingCard")[1]->property("name").toString(), QStringLiteral("small"));
}

TEST_F(DiagnosisWindow, AFullDiskLeadsToItsScreenOnceThereIsOne) {
    machine.readings.diskFree = 1ull << 30;
    monitor.readNow();
    open();
    ASSERT_TRUE(the("FindingCard"));
    EXPECT_TRUE(all("TextLink").isEmpty());
    EXPECT_FALSE(says("opens Disk"));
    close();

    Nav both{folder.log, {Destination::diagnosis, Destination::disk}};
    const Program later{monitor, both, actions, disk, history, asker, {}, [] {}, [] {}, [] {}};
    auto view = std::make_unique<MainView>(later);
    window = frame.open("MainWindow", std::move(view));
    window->show();
    settle();
    ASSERT_TRUE(the("TextLink"));
    EXPECT_TRUE(says("opens Disk"));
    click(the("TextLink"));
    EXPECT_EQ(both.destination(), Destination::disk);
    close();
}

TEST_F(DiagnosisWindow, ThePickerExplainsItself) {
    openWithThree();
    ASSERT_TRUE(the("ModePicker"));
    const char* help = "Cards: every cause with its button. Map: where the memory is.";
    EXPECT_FALSE(says(help));
    QTest::mouseMove(window, middle(the("ModePicker")));
    QTest::qWait(900);
    EXPECT_TRUE(says(help));
    QTest::mouseMove(window, QPoint(5, 5));
    settle();
    EXPECT_FALSE(says(help));
}

TEST_F(DiagnosisWindow, AKeepThatCannotBeStoredIsSaidInTheSheet) {
    openWithThree();
    screen().open(QStringLiteral("orphan:800"));
    settle();
    machine.defaults.isReadOnly = true;
    screen().keep();
    settle();
    EXPECT_TRUE(says("Ravik could not store that, so it is not on your Keep list."));
}

/// Whoever presses twice is still pressing the first one.
TEST_F(DiagnosisWindow, ADoubleClickOnACardLeavesItsEvidenceOpen) {
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(300);
    openWithThree();
    window->resize(960, 900);
    settle();
    // Beside where the sheet comes.
    const QQuickItem* card = all("FindingCard")[0];
    const QPoint edge = card->mapToScene(QPointF(card->width() - 4, 4)).toPoint();
    QTest::mouseClick(window, Qt::LeftButton, {}, edge);
    settle();
    QTest::mouseClick(window, Qt::LeftButton, {}, edge);
    settle();
    EXPECT_TRUE(the("EvidenceSheet"));
    QTest::qWait(300);
    QTest::mouseClick(window, Qt::LeftButton, {}, edge);
    settle();
    EXPECT_FALSE(the("EvidenceSheet"));
    QGuiApplication::styleHints()->setMouseDoubleClickInterval(0);
}

}  // namespace
}  // namespace ravik::app
