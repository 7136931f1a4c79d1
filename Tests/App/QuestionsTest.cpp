#include "App/Views/Questions.h"

#include <QKeyEvent>
#include <QQuickItem>
#include <QScreen>
#include <QStyleHints>
#include <QTest>

#include "App/Views/Tokens.h"
#include "Tests/App/Desk.h"

namespace ravik::app {
namespace {

Confirmation question(const char* title = "End 3 programs?") {
    Confirmation question{title, "Frees 1.2 GB. Only what passes the safety check ends.", "End 3 programs", {}, {}};
    question.ends.push_back({Tone::safe, "server.js", "Left running 3 days after its window closed.", "486 MB", {}});
    question.leftAlone.push_back({Tone::never, "postgres", "A database — never ended from a button.", "", {}});
    return question;
}

class QuestionsTest : public Desk {
protected:
    /// Asks and waits until the question can be answered by a click.
    QQuickWindow* ask(const Confirmation& asked = question()) {
        spawn(questions.ask(asked), [this](bool yes) { answers.append(yes); });
        auto* window = theWindow(QString::fromStdString(asked.title));
        EXPECT_TRUE(!window || QTest::qWaitForWindowActive(window));
        return window;
    }
    void settle() { QTest::qWait(20); }
    /// By what assistive technology calls it.
    static QQuickItem* button(QQuickItem* under, const QString& name) {
        if (under->property("spoken").toString() == name) return under;
        for (auto* child : under->childItems()) {
            if (auto* found = button(child, name)) return found;
        }
        return nullptr;
    }
    void click(QQuickWindow* window, const QString& name) {
        auto* item = button(window->contentItem(), name);
        ASSERT_TRUE(item);
        const auto at = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
        QTest::mouseClick(window, Qt::LeftButton, {}, at);
    }

    QList<bool> answers;
    QmlFrame frame;
    Questions questions{frame, program};
};

struct Press {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    QList<bool> answers;
};

class QuestionKeyTest : public QuestionsTest, public testing::WithParamInterface<Press> {};

TEST_P(QuestionKeyTest, AnswersAsItShould) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QTest::keyClick(window, GetParam().key, GetParam().modifiers);
    settle();
    EXPECT_EQ(answers, GetParam().answers);
    EXPECT_EQ(questions.isStanding(), GetParam().answers.isEmpty());
}

TEST_P(QuestionKeyTest, MeansTheSameWhenTheOtherButtonHasTheFocus) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QTest::keyClick(window, Qt::Key_Tab);
    ASSERT_TRUE(window->activeFocusItem());
    ASSERT_EQ(window->activeFocusItem()->property("spoken").toString(), QStringLiteral("End 3 programs"));
    QTest::keyClick(window, GetParam().key, GetParam().modifiers);
    settle();
    EXPECT_EQ(answers, GetParam().answers);
}

const Press presses[]{{"Return", Qt::Key_Return, {}, {false}},
                      {"Enter", Qt::Key_Enter, Qt::KeypadModifier, {false}},
                      {"Escape", Qt::Key_Escape, {}, {false}},
                      {"CtrlBackspace", Qt::Key_Backspace, Qt::ControlModifier, {true}},
                      {"Backspace", Qt::Key_Backspace, {}, {}},
                      {"Delete", Qt::Key_Delete, {}, {}},
                      {"CtrlDelete", Qt::Key_Delete, Qt::ControlModifier, {}},
                      {"CtrlShiftBackspace", Qt::Key_Backspace, Qt::ControlModifier | Qt::ShiftModifier, {}},
                      {"Letter", Qt::Key_Y, {}, {}}};
INSTANTIATE_TEST_SUITE_P(Keys, QuestionKeyTest, testing::ValuesIn(presses),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_F(QuestionsTest, CancelHasTheFocusAndSpaceOnItMeansNo) {
    auto* window = ask();
    ASSERT_TRUE(window);
    ASSERT_TRUE(window->activeFocusItem());
    EXPECT_EQ(window->activeFocusItem()->property("spoken").toString(), QStringLiteral("Cancel"));
    QTest::keyClick(window, Qt::Key_Space);
    settle();
    EXPECT_EQ(answers, QList<bool>{false});
}

TEST_F(QuestionsTest, TabGoesRoundBothButtons) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QStringList names;
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(window, Qt::Key_Tab);
        names << window->activeFocusItem()->property("spoken").toString();
    }
    EXPECT_EQ(names, (QStringList{QStringLiteral("End 3 programs"), QStringLiteral("Cancel"),
                                  QStringLiteral("End 3 programs")}));
}

/// With the time that a double click takes on a desktop.
class DeafQuestion : public QuestionsTest {
protected:
    void SetUp() override { QGuiApplication::styleHints()->setMouseDoubleClickInterval(400); }
    void TearDown() override { QGuiApplication::styleHints()->setMouseDoubleClickInterval(0); }
};

TEST_F(DeafQuestion, TakesAClickOnTheVerbForAYesButNotTheSecondOfADoubleClick) {
    auto* window = ask();
    ASSERT_TRUE(window);
    click(window, QStringLiteral("End 3 programs"));
    settle();
    EXPECT_TRUE(answers.isEmpty()) << "that click was meant for what stood there before";
    QTest::qWait(500);
    click(window, QStringLiteral("End 3 programs"));
    settle();
    EXPECT_EQ(answers, QList<bool>{true});
}

TEST_F(DeafQuestion, TakesTheChordForAYesButNotTheOneThatBroughtItUp) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QTest::keyClick(window, Qt::Key_Backspace, Qt::ControlModifier);
    settle();
    EXPECT_TRUE(answers.isEmpty());
    QTest::qWait(500);
    QTest::keyClick(window, Qt::Key_Backspace, Qt::ControlModifier);
    settle();
    EXPECT_EQ(answers, QList<bool>{true});
}

TEST_F(DeafQuestion, HearsANoAtOnce) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QTest::keyClick(window, Qt::Key_Return);
    settle();
    EXPECT_EQ(answers, QList<bool>{false});
}

TEST_F(QuestionsTest, AClickOnCancelIsANoAtOnce) {
    auto* window = ask();
    ASSERT_TRUE(window);
    click(window, QStringLiteral("Cancel"));
    settle();
    EXPECT_EQ(answers, QList<bool>{false});
}

TEST_F(QuestionsTest, ClosedByTheDesktopItIsANo) {
    auto* window = ask();
    ASSERT_TRUE(window);
    window->close();
    settle();
    EXPECT_EQ(answers, QList<bool>{false});
    EXPECT_FALSE(questions.isStanding());
}

TEST_F(QuestionsTest, ASecondQuestionIsRefusedWhileOneStands) {
    auto* window = ask();
    ASSERT_TRUE(window);
    EXPECT_FALSE(ask(question("Quit Firefox?")));
    EXPECT_EQ(answers, QList<bool>{false});
    EXPECT_TRUE(window->isVisible());
    QTest::keyClick(window, Qt::Key_Backspace, Qt::ControlModifier);
    settle();
    EXPECT_EQ(answers, (QList<bool>{false, true}));
    EXPECT_TRUE(ask(question("Quit Firefox?")));
}

TEST_F(QuestionsTest, TwoKeysAtOnceAreOneAnswerWhichIsHeardAfterTheWindowHasGone) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, {});
    QKeyEvent chord(QEvent::KeyPress, Qt::Key_Backspace, Qt::ControlModifier);
    QCoreApplication::sendEvent(window, &escape);
    QCoreApplication::sendEvent(window, &chord);
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(answers.isEmpty());
    settle();
    EXPECT_EQ(answers, QList<bool>{false});
    EXPECT_TRUE(frame.isEmpty());
}

TEST_F(QuestionsTest, TheEndOfTheProgramIsANoEvenAfterAYesThatWasNotHeardYet) {
    auto* window = ask();
    ASSERT_TRUE(window);
    QKeyEvent chord(QEvent::KeyPress, Qt::Key_Backspace, Qt::ControlModifier);
    QCoreApplication::sendEvent(window, &chord);
    questions.end();
    EXPECT_EQ(answers, QList<bool>{false});
    settle();
    EXPECT_EQ(answers, QList<bool>{false});
    EXPECT_FALSE(ask(question("Quit Firefox?")));
    EXPECT_EQ(answers, (QList<bool>{false, false}));
}

TEST_F(QuestionsTest, StandsWholeOnTheScreenAndShowsSixRowsOfSeven) {
    auto seven = question();
    seven.ends.assign(7, seven.ends.front());
    auto* window = ask(seven);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->width(), 440);
    EXPECT_TRUE(window->screen()->availableGeometry().contains(window->geometry()));
    auto* rows = window->property("model").value<QObject*>()->property("rows").value<QAbstractItemModel*>();
    ASSERT_TRUE(rows);
    ASSERT_EQ(rows->rowCount(), 7);
    const auto role = [rows](int row, const char* name) {
        return rows->data(rows->index(row, 0), rows->roleNames().key(name)).toString();
    };
    EXPECT_EQ(role(0, "heading"), QStringLiteral("Will end"));
    EXPECT_EQ(role(1, "heading"), QString());
    EXPECT_EQ(role(5, "more"), QStringLiteral("1 more"));
    EXPECT_EQ(role(6, "heading"), QStringLiteral("Stays running"));
    EXPECT_EQ(role(6, "word"), QStringLiteral("left alone"));
}

class QuestionLooks : public QuestionsTest {
protected:
    ~QuestionLooks() override {
        Tokens::instance().setTextScale(1);
        Tokens::instance().setCompositor({});
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
    static QList<QQuickItem*> all(QQuickItem* under, const char* type) {
        QList<QQuickItem*> found;
        if (QByteArray(under->metaObject()->className()).startsWith(type)) found.append(under);
        for (auto* child : under->childItems()) found.append(all(child, type));
        return found;
    }
};

TEST_F(QuestionLooks, IconsGrowWithTheText) {
    Tokens::instance().setTextScale(2);
    auto* window = ask();
    ASSERT_TRUE(window);
    const auto icons = all(window->contentItem(), "ravik::app::AppIcon");
    ASSERT_EQ(icons.size(), 2);
    EXPECT_NEAR(icons[0]->property("size").toReal(), 22 * Tokens::instance().grow(), 0.01);
    EXPECT_GT(icons[0]->property("size").toReal(), 35);
}

TEST_F(QuestionLooks, FromRightToLeftTheHeadingsStandAtTheRight) {
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    auto* window = ask();
    ASSERT_TRUE(window);
    int headings = 0;
    for (auto* row : all(window->contentItem(), "QuestionRow_QML")) {
        for (auto* label : all(row, "Label_QML")) {
            if (label->property("text") != row->property("heading") || !label->isVisible()) continue;
            ++headings;
            EXPECT_EQ(label->width(), row->width());
            EXPECT_EQ(label->property("effectiveHorizontalAlignment").toInt(), int(Qt::AlignRight));
        }
    }
    EXPECT_EQ(headings, 2);
}

TEST_F(QuestionLooks, TwoOfOneNameAreTwoRows) {
    Confirmation twice = question();
    twice.ends.push_back(twice.ends[0]);
    twice.leftAlone.push_back(twice.ends[0]);
    auto* window = ask(twice);
    ASSERT_TRUE(window);
    EXPECT_EQ(all(window->contentItem(), "QuestionRow_QML").size(), 4);
}

TEST_F(QuestionLooks, CornersAreRoundOnlyWhereTheScreenIsComposed) {
    auto* window = ask();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->color().alpha(), 0);
    QTest::keyClick(window, Qt::Key_Escape);
    settle();
    Tokens::instance().setCompositor([] { return false; });
    window = ask();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->color().alpha(), 255);
    const auto surfaces = all(window->contentItem(), "QQuickRectangle");
    ASSERT_FALSE(surfaces.isEmpty());
    EXPECT_EQ(surfaces[0]->property("radius").toReal(), 0);
}

TEST_F(QuestionLooks, StandsWholeOnTheScreenWhereTheUserIs) {
    QScreen* small = QGuiApplication::screens().at(1);
    QWindow front;
    front.setScreen(small);
    front.setGeometry(small->geometry());
    front.show();
    front.requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&front));
    Confirmation large = question();
    for (int row = 0; row < 5; ++row) large.ends.push_back(large.ends[0]);
    auto* window = ask(large);
    ASSERT_TRUE(window);
    EXPECT_EQ(window->screen(), small);
    EXPECT_LE(window->height(), small->availableSize().height() - 48);
    EXPECT_TRUE(small->availableGeometry().contains(window->geometry()));
}

}  // namespace
}  // namespace ravik::app
