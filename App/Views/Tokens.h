#pragma once

#include <functional>
#include <optional>

#include <qqml.h>
#include <QEasingCurve>
#include <QFont>
#include <QObject>

#include "App/Views/Colours.h"

class QJSEngine;

namespace ravik::app {

/// Colours, type, measures and motion of every view. Follows the desktop's palette and font by itself; what else the
/// desktop says is set from outside. One for the program's life, which views know as `Tokens`. Main thread.
class Tokens : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

    Q_PROPERTY(QColor tolvaneSignalText READ tolvaneSignalText NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneSignalFill READ tolvaneSignalFill NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneSignalFillHover READ tolvaneSignalFillHover NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor signalPressed READ signalPressed NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneOnSignal READ tolvaneOnSignal NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneSafe READ tolvaneSafe NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneCaution READ tolvaneCaution NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneNever READ tolvaneNever NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneSafeFill READ tolvaneSafeFill NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneCautionFill READ tolvaneCautionFill NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneContent READ tolvaneContent NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneSeparator READ tolvaneSeparator NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneSwap READ tolvaneSwap NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneData READ tolvaneData NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor window READ window NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor sidebar READ sidebar NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor panel READ panel NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor text READ text NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor text2 READ text2 NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor text3 READ text3 NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor control READ control NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor controlBorder READ controlBorder NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor controlHover READ controlHover NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor controlPressed READ controlPressed NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor hover READ hover NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor select READ select NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor wash READ wash NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor picked READ picked NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor rest READ rest NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor track READ track NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor onData READ onData NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor edge READ edge NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor shade READ shade NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor safeWash READ safeWash NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor cautionWash READ cautionWash NOTIFY coloursChanged FINAL)
    Q_PROPERTY(QColor tolvaneTint READ tolvaneTint NOTIFY coloursChanged FINAL)

    // The desktop's interface font at the sizes and weights of the interface.
    Q_PROPERTY(QFont tolvaneHeadline READ tolvaneHeadline NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneBody READ tolvaneBody NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneLabel READ tolvaneLabel NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneCallout READ tolvaneCallout NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneCaption READ tolvaneCaption NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneMono READ tolvaneMono NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneMonoNumber READ tolvaneMonoNumber NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont tolvaneVerdictWord READ tolvaneVerdictWord NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont amount READ amount NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont button READ button NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont sectionHead READ sectionHead NOTIFY fontsChanged FINAL)
    Q_PROPERTY(QFont listHead READ listHead NOTIFY fontsChanged FINAL)
    /// Pixels of the body text. 13.333 in a desktop of 10 points and 96 dots an inch.
    Q_PROPERTY(qreal base READ base NOTIFY fontsChanged FINAL)
    /// By what a figure grows that has its size in pixels at that base.
    Q_PROPERTY(qreal textScale READ textScale NOTIFY fontsChanged FINAL)
    /// By what glyphs, marks and controls grow: with the text where it is much larger than usual, else 1.
    Q_PROPERTY(qreal grow READ grow NOTIFY fontsChanged FINAL)
    /// Text of 150 % and more: rows break their lines.
    Q_PROPERTY(bool isBig READ isBig NOTIFY fontsChanged FINAL)
    /// Whether every digit of the interface font is as wide as the others.
    Q_PROPERTY(bool isTabular READ isTabular NOTIFY fontsChanged FINAL)

    Q_PROPERTY(bool isDark READ isDark NOTIFY coloursChanged FINAL)
    Q_PROPERTY(bool isHighContrast READ isHighContrast NOTIFY coloursChanged FINAL)

    Q_PROPERTY(int radiusCard READ radiusCard CONSTANT FINAL)
    Q_PROPERTY(int radiusControl READ radiusControl CONSTANT FINAL)
    Q_PROPERTY(int radiusPopup READ radiusPopup CONSTANT FINAL)
    Q_PROPERTY(int panelPadding READ panelPadding CONSTANT FINAL)
    Q_PROPERTY(int windowPadding READ windowPadding CONSTANT FINAL)

    Q_PROPERTY(bool isMotionReduced READ isMotionReduced NOTIFY motionChanged FINAL)
    /// Milliseconds; 0 with reduced motion.
    Q_PROPERTY(int tickDownTime READ tickDownTime NOTIFY motionChanged FINAL)
    Q_PROPERTY(int rowEndingTime READ rowEndingTime NOTIFY motionChanged FINAL)
    Q_PROPERTY(int resultInTime READ resultInTime NOTIFY motionChanged FINAL)
    Q_PROPERTY(QEasingCurve tickDown READ tickDown CONSTANT FINAL)
    Q_PROPERTY(QEasingCurve rowEnding READ rowEnding CONSTANT FINAL)
    Q_PROPERTY(QEasingCurve resultIn READ resultIn CONSTANT FINAL)

public:
    /// The application has to exist.
    explicit Tokens(QObject* parent);

    /// The program's own, which dies with the application.
    static Tokens& instance();
    static Tokens* create(QQmlEngine*, QJSEngine*);

    /// Absent: as the desktop's palette is.
    void setDark(std::optional<bool> dark);
    void setHighContrast(bool highContrast);
    void setReducedMotion(bool reducedMotion);
    /// By what text is to be larger than the desktop's font says; 1 for as it says.
    void setTextScale(double scale);
    /// What of that is left to do: on X11 the same wish reaches Qt as the resolution of the screen, and then Qt enlarges
    /// all there is. `devicePixelRatio` and `dotsPerInch` are what Qt says of that screen.
    static double ownTextScale(double wanted, bool isX11, double devicePixelRatio, double dotsPerInch);
    /// How to find out whether what a window leaves transparent can be seen through now; empty: it can.
    void setCompositor(std::function<bool()> isComposited) { m_isComposited = std::move(isComposited); }

    const Colours& all() const { return m_colours; }
    QColor tolvaneSignalText() const { return m_colours.tolvaneSignalText; }
    QColor tolvaneSignalFill() const { return m_colours.tolvaneSignalFill; }
    QColor tolvaneSignalFillHover() const { return m_colours.tolvaneSignalFillHover; }
    QColor signalPressed() const { return m_colours.signalPressed; }
    QColor tolvaneOnSignal() const { return m_colours.tolvaneOnSignal; }
    QColor tolvaneSafe() const { return m_colours.tolvaneSafe; }
    QColor tolvaneCaution() const { return m_colours.tolvaneCaution; }
    QColor tolvaneNever() const { return m_colours.tolvaneNever; }
    QColor tolvaneSafeFill() const { return m_colours.tolvaneSafeFill; }
    QColor tolvaneCautionFill() const { return m_colours.tolvaneCautionFill; }
    QColor tolvaneContent() const { return m_colours.tolvaneContent; }
    QColor tolvaneSeparator() const { return m_colours.tolvaneSeparator; }
    QColor tolvaneSwap() const { return m_colours.tolvaneSwap; }
    QColor tolvaneData() const { return m_colours.tolvaneData; }
    QColor window() const { return m_colours.window; }
    QColor sidebar() const { return m_colours.sidebar; }
    QColor panel() const { return m_colours.panel; }
    QColor text() const { return m_colours.text; }
    QColor text2() const { return m_colours.text2; }
    QColor text3() const { return m_colours.text3; }
    QColor control() const { return m_colours.control; }
    QColor controlBorder() const { return m_colours.controlBorder; }
    QColor controlHover() const { return m_colours.controlHover; }
    QColor controlPressed() const { return m_colours.controlPressed; }
    QColor hover() const { return m_colours.hover; }
    QColor select() const { return m_colours.select; }
    QColor wash() const { return m_colours.wash; }
    QColor picked() const { return m_colours.picked; }
    QColor rest() const { return m_colours.rest; }
    QColor track() const { return m_colours.track; }
    QColor onData() const { return m_colours.onData; }
    QColor edge() const { return m_colours.edge; }
    QColor shade() const { return m_colours.shade; }
    QColor safeWash() const { return m_colours.safeWash; }
    QColor cautionWash() const { return m_colours.cautionWash; }
    QColor tolvaneTint() const { return m_colours.tolvaneSignalText; }
    bool isDark() const { return m_scheme.dark; }
    bool isHighContrast() const { return m_scheme.highContrast; }

    QFont tolvaneHeadline() const { return styled(1.25, QFont::DemiBold); }
    QFont tolvaneBody() const { return styled(1.0, QFont::Normal); }
    QFont tolvaneLabel() const { return styled(1.0, QFont::DemiBold); }
    QFont tolvaneCallout() const { return styled(callout, QFont::Normal); }
    QFont tolvaneCaption() const { return styled(sub, QFont::Normal); }
    QFont tolvaneMono() const { return monospaced(callout); }
    QFont tolvaneMonoNumber() const { return monospaced(1.0); }
    QFont tolvaneVerdictWord() const { return styled(callout, QFont::Medium); }
    QFont amount() const { return styled(1.0, QFont::Medium); }
    QFont button() const { return styled(callout, QFont::Medium); }
    QFont sectionHead() const { return styled(callout, QFont::DemiBold); }
    QFont listHead() const { return styled(sub, QFont::DemiBold); }
    qreal base() const { return m_base; }
    qreal textScale() const;
    qreal grow() const;
    bool isBig() const;
    bool isTabular() const { return m_isTabular; }
    /// The height of a line in this font, and what of it is empty above the text.
    Q_INVOKABLE qreal line(const QFont& font) const;
    Q_INVOKABLE qreal lead(const QFont& font) const;
    /// The width of the widest digit.
    Q_INVOKABLE qreal digit(const QFont& font) const;
    /// Whether a window of this moment can have round corners.
    Q_INVOKABLE bool isComposited() const { return !m_isComposited || m_isComposited(); }

    int radiusCard() const { return 8; }
    int radiusControl() const { return 6; }
    int radiusPopup() const { return 12; }
    int panelPadding() const { return 16; }
    int windowPadding() const { return 24; }

    bool isMotionReduced() const { return m_isMotionReduced; }
    int tickDownTime() const { return m_isMotionReduced ? 0 : 400; }
    int rowEndingTime() const { return m_isMotionReduced ? 0 : 400; }
    int resultInTime() const { return m_isMotionReduced ? 0 : 150; }
    QEasingCurve tickDown() const { return curve({0.05, 0.7}, {0.1, 1.0}); }
    QEasingCurve rowEnding() const { return curve({0.2, 0.0}, {0.0, 1.0}); }
    QEasingCurve resultIn() const { return curve({0.2, 0.0}, {0.0, 1.0}); }

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void coloursChanged();
    void fontsChanged();
    void motionChanged();

private:
    static constexpr double callout = 0.95;
    static constexpr double sub = 0.88;

    void readColours();
    void readFonts();
    void followScreen();
    QFont styled(double size, QFont::Weight weight) const;
    QFont monospaced(double size) const;
    static QEasingCurve curve(QPointF first, QPointF second);

    std::optional<bool> m_dark;
    ColourScheme m_scheme;
    Colours m_colours;
    double m_scale = 1;
    std::function<bool()> m_isComposited;
    QMetaObject::Connection m_following;
    QFont m_font;
    QString m_monospaced;
    qreal m_base = 0;
    bool m_isTabular = true;
    bool m_isMotionReduced = false;
};

}  // namespace ravik::app
