#include "App/Views/Tokens.h"

#include <cmath>

#include <gtest/gtest.h>
#include <QFontInfo>
#include <QGuiApplication>
#include <QSignalSpy>

namespace ravik::app {
namespace {

double channel(double value) { return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); }

double luminance(const QColor& c) {
    return 0.2126 * channel(c.redF()) + 0.7152 * channel(c.greenF()) + 0.0722 * channel(c.blueF());
}

double ratio(const QColor& one, const QColor& other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

QPalette plain(const char* window, const char* base, const char* text) {
    QPalette out{QColor(window)};
    for (const auto role : {QPalette::WindowText, QPalette::Text}) out.setColor(role, QColor(text));
    out.setColor(QPalette::Base, QColor(base));
    return out;
}

QPalette light() { return plain("#F7F7F5", "#FFFFFF", "#1B1B1D"); }
QPalette dark() { return plain("#1E1E20", "#28282B", "#F1F1F2"); }

void expectReadable(const Colours& all, double least) {
    for (const QColor& surface : {all.window, all.sidebar, all.panel, all.tolvaneContent}) {
        for (const QColor& layer :
             {surface, over(all.select, surface), over(all.hover, surface), over(all.control, surface)}) {
            for (const QColor& text :
                 {all.text, all.text2, all.tolvaneSignalText, all.tolvaneSafe, all.tolvaneCaution, all.tolvaneNever}) {
                EXPECT_GE(ratio(text, layer), least) << qPrintable(text.name()) << " on " << qPrintable(layer.name());
            }
        }
        EXPECT_GE(ratio(all.text, over(all.controlHover, surface)), least);
        EXPECT_GE(ratio(all.text, over(all.controlPressed, surface)), least);
        EXPECT_GE(ratio(all.text, over(all.wash, surface)), least);
        EXPECT_GE(ratio(all.onData, over(all.tolvaneData, surface)), least);
    }
    EXPECT_GE(ratio(all.text, all.picked), least);
    for (const QColor& fill : {all.tolvaneSignalFill, all.tolvaneSignalFillHover, all.signalPressed})
        EXPECT_GE(ratio(all.tolvaneOnSignal, fill), least);
}

TEST(Colours, AreThePalettesToTheLetter) {
    const Colours day = colours({.dark = false}, light());
    EXPECT_EQ(day.tolvaneSignalText, QColor("#854F00"));
    EXPECT_EQ(day.tolvaneSignalFill, QColor("#EBA941"));
    EXPECT_EQ(day.tolvaneSignalFillHover, QColor("#E29A2C"));
    EXPECT_EQ(day.tolvaneOnSignal, QColor("#24180A"));
    EXPECT_EQ(day.tolvaneSafe, QColor("#1B683E"));
    EXPECT_EQ(day.tolvaneCaution, QColor("#91450D"));
    EXPECT_EQ(day.tolvaneNever, QColor("#A5342B"));
    EXPECT_EQ(day.tolvaneSafeFill, QColor("#7CC89A"));
    EXPECT_EQ(day.tolvaneCautionFill, QColor("#EAA77A"));
    EXPECT_EQ(day.tolvaneData.alpha(), 41);

    const Colours night = colours({.dark = true}, dark());
    EXPECT_EQ(night.tolvaneSignalText, QColor("#F2B458"));
    EXPECT_EQ(night.tolvaneSignalFill, QColor("#F2B458"));
    EXPECT_EQ(night.tolvaneSignalFillHover, QColor("#F7C473"));
    EXPECT_EQ(night.tolvaneOnSignal, QColor("#24180A"));
    EXPECT_EQ(night.tolvaneSafe, QColor("#88D1A2"));
    EXPECT_EQ(night.tolvaneCaution, QColor("#EDA97C"));
    EXPECT_EQ(night.tolvaneNever, QColor("#F2A294"));
    EXPECT_EQ(night.tolvaneSafeFill, QColor("#88D1A2"));
    EXPECT_EQ(night.tolvaneCautionFill, QColor("#EDA97C"));
}

TEST(Colours, LetEveryTextBeReadOnEverySurface) {
    for (const bool isDark : {false, true}) {
        for (const QPalette& desktop :
             {light(), dark(), plain("#EFEFEF", "#FFFFFF", "#000000"), plain("#2A2E32", "#1B1E20", "#FCFCFC")}) {
            SCOPED_TRACE(isDark ? "dark" : "light");
            expectReadable(colours({.dark = isDark}, desktop), 4.5);
        }
    }
}

TEST(Colours, AreReadBetterInHighContrast) {
    for (const bool isDark : {false, true}) {
        for (const QPalette& desktop :
             {light(), dark(), plain("#000000", "#000000", "#FFFFFF"), plain("#FFFFFF", "#FFFFFF", "#000000")}) {
            SCOPED_TRACE(isDark ? "dark" : "light");
            expectReadable(colours({.dark = isDark, .highContrast = true}, desktop), 7);
        }
    }
}

TEST(Colours, LieOnTheDesktopsOwnSurfaces) {
    const Colours breeze = colours({.dark = false}, plain("#EFF0F1", "#FCFCFC", "#232629"));
    EXPECT_EQ(breeze.window, QColor("#EFF0F1"));
    EXPECT_EQ(breeze.tolvaneContent, QColor("#FCFCFC"));
    EXPECT_EQ(breeze.text, QColor("#232629"));
}

TEST(Colours, LeaveSurfacesOnWhichAmberCannotBeRead) {
    const Colours grey = colours({.dark = false}, plain("#9A9A9A", "#B0B0B0", "#000000"));
    EXPECT_EQ(grey.window, QColor("#F7F7F5"));
    EXPECT_EQ(grey.tolvaneContent, QColor("#FFFFFF"));
}

TEST(Colours, LeaveAPaletteOfTheOtherAppearance) {
    EXPECT_EQ(colours({.dark = true}, light()).window, QColor("#1E1E20"));
    EXPECT_EQ(colours({.dark = false}, dark()).window, QColor("#F7F7F5"));
}

TEST(Tokens, FollowTheDesktopsPalette) {
    Tokens tokens(nullptr);
    QSignalSpy spy(&tokens, &Tokens::coloursChanged);
    QGuiApplication::setPalette(dark());
    QCoreApplication::processEvents();
    EXPECT_TRUE(tokens.isDark());
    EXPECT_EQ(tokens.tolvaneSafe(), QColor("#88D1A2"));
    QGuiApplication::setPalette(light());
    QCoreApplication::processEvents();
    EXPECT_FALSE(tokens.isDark());
    EXPECT_EQ(tokens.tolvaneSafe(), QColor("#1B683E"));
    EXPECT_GE(spy.size(), 2);
}

TEST(Tokens, PreferWhatTheDesktopSaysToItsPalette) {
    QGuiApplication::setPalette(light());
    Tokens tokens(nullptr);
    tokens.setDark(true);
    EXPECT_EQ(tokens.tolvaneSignalText(), QColor("#F2B458"));
    tokens.setDark(std::nullopt);
    EXPECT_EQ(tokens.tolvaneSignalText(), QColor("#854F00"));
    EXPECT_EQ(tokens.tolvaneTint(), tokens.tolvaneSignalText());
}

TEST(Tokens, SizeTheirTypeByTheDesktopsFont) {
    QFont font = QGuiApplication::font();
    font.setPointSizeF(10);
    QGuiApplication::setFont(font);
    QCoreApplication::processEvents();
    Tokens tokens(nullptr);
    EXPECT_DOUBLE_EQ(tokens.tolvaneHeadline().pointSizeF(), 12.5);
    EXPECT_EQ(tokens.tolvaneHeadline().weight(), QFont::DemiBold);
    EXPECT_DOUBLE_EQ(tokens.tolvaneBody().pointSizeF(), 10);
    EXPECT_DOUBLE_EQ(tokens.tolvaneCallout().pointSizeF(), 9.5);
    EXPECT_DOUBLE_EQ(tokens.tolvaneCaption().pointSizeF(), 8.8);
    EXPECT_EQ(tokens.tolvaneVerdictWord().weight(), QFont::Medium);
    EXPECT_TRUE(QFontInfo(tokens.tolvaneMono()).fixedPitch());
    EXPECT_DOUBLE_EQ(tokens.tolvaneMonoNumber().pointSizeF(), 10);

    font.setPointSizeF(20);
    QGuiApplication::setFont(font);
    QCoreApplication::processEvents();
    EXPECT_DOUBLE_EQ(tokens.tolvaneBody().pointSizeF(), 20);
    EXPECT_TRUE(tokens.isBig());
    font.setPointSizeF(10);
    QGuiApplication::setFont(font);
}

TEST(Tokens, GrowWithTheTextWhereItIsMuchLarger) {
    QFont font = QGuiApplication::font();
    font.setPointSizeF(10);
    QGuiApplication::setFont(font);
    QCoreApplication::processEvents();
    Tokens tokens(nullptr);
    EXPECT_DOUBLE_EQ(tokens.grow(), 1);
    EXPECT_FALSE(tokens.isBig());
    tokens.setTextScale(1.1);
    EXPECT_DOUBLE_EQ(tokens.grow(), 1);
    tokens.setTextScale(2);
    EXPECT_NEAR(tokens.grow(), 2, 0.05);
    EXPECT_TRUE(tokens.isBig());
    EXPECT_DOUBLE_EQ(tokens.tolvaneBody().pointSizeF(), 20);
}

TEST(Tokens, EnlargeTextOnceWhereQtEnlargesAllBecauseOfTheSameWish) {
    EXPECT_EQ(Tokens::ownTextScale(1.25, true, 1, 96), 1.25) << "nobody has told the X server";
    EXPECT_EQ(Tokens::ownTextScale(1.25, true, 1.25, 96), 1);
    EXPECT_EQ(Tokens::ownTextScale(2, true, 2, 96), 1);
    EXPECT_EQ(Tokens::ownTextScale(1.25, true, 2.5, 96), 1) << "large windows besides";
    EXPECT_EQ(Tokens::ownTextScale(0.8, true, 1, 76), 1) << "Qt makes windows no smaller, but text";
    EXPECT_EQ(Tokens::ownTextScale(1.25, false, 2, 96), 1.25) << "elsewhere that is the screen";
    EXPECT_EQ(Tokens::ownTextScale(1.25, false, 2, 120), 1);
}

TEST(Tokens, StandStillWithReducedMotion) {
    Tokens tokens(nullptr);
    EXPECT_EQ(tokens.tickDownTime(), 400);
    EXPECT_EQ(tokens.rowEndingTime(), 400);
    EXPECT_EQ(tokens.resultInTime(), 150);
    QSignalSpy spy(&tokens, &Tokens::motionChanged);
    tokens.setReducedMotion(true);
    EXPECT_EQ(spy.size(), 1);
    EXPECT_EQ(tokens.tickDownTime(), 0);
    EXPECT_EQ(tokens.rowEndingTime(), 0);
    EXPECT_EQ(tokens.resultInTime(), 0);
}

TEST(Tokens, MoveAlongTheirCurves) {
    const Tokens tokens(nullptr);
    const auto points = [](const QEasingCurve& curve) { return curve.toCubicSpline(); };
    EXPECT_EQ(points(tokens.tickDown()), (QVector<QPointF>{{0.05, 0.7}, {0.1, 1.0}, {1, 1}}));
    EXPECT_EQ(points(tokens.rowEnding()), (QVector<QPointF>{{0.2, 0.0}, {0.0, 1.0}, {1, 1}}));
    EXPECT_EQ(points(tokens.resultIn()), (QVector<QPointF>{{0.2, 0.0}, {0.0, 1.0}, {1, 1}}));
}

}  // namespace
}  // namespace ravik::app
