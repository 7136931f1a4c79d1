#include "App/Views/Tokens.h"

#include <QEvent>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QJSEngine>
#include <QPointer>
#include <QScreen>

namespace ravik::app {

namespace {

constexpr qreal usualBase = 40.0 / 3;  // 10 points at 96 dots an inch
constexpr double usualDotsPerInch = 96;
constexpr double growsFrom = 1.25;
constexpr double bigFrom = 1.5;
constexpr double lineRatio = 1.4;
constexpr double headlineRatio = 1.3;

/// What QFontInfo would say, but not rounded.
qreal pixels(const QFont& font) {
    if (font.pixelSize() > 0) return font.pixelSize();
    const QScreen* screen = QGuiApplication::primaryScreen();
    return font.pointSizeF() * (screen ? screen->logicalDotsPerInchY() : usualDotsPerInch) / 72;
}

bool hasEqualDigits(const QFont& font) {
    const QFontMetricsF metrics(font);
    const qreal zero = metrics.horizontalAdvance(u'0');
    for (char16_t digit = u'1'; digit <= u'9'; ++digit) {
        if (!qFuzzyCompare(zero, metrics.horizontalAdvance(digit))) return false;
    }
    return true;
}

}  // namespace

Tokens::Tokens(QObject* parent) : QObject(parent) {
    qGuiApp->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &Tokens::followScreen);
    readColours();
    followScreen();
}

Tokens& Tokens::instance() {
    static QPointer<Tokens> tokens;
    if (!tokens) tokens = new Tokens(qGuiApp);
    return *tokens;
}

Tokens* Tokens::create(QQmlEngine*, QJSEngine*) {
    Tokens* tokens = &instance();
    QJSEngine::setObjectOwnership(tokens, QJSEngine::CppOwnership);
    return tokens;
}

void Tokens::setDark(std::optional<bool> dark) {
    m_dark = dark;
    readColours();
}

void Tokens::setHighContrast(bool highContrast) {
    m_scheme.highContrast = highContrast;
    readColours();
}

void Tokens::setReducedMotion(bool reducedMotion) {
    if (m_isMotionReduced == reducedMotion) return;
    m_isMotionReduced = reducedMotion;
    Q_EMIT motionChanged();
}

void Tokens::setTextScale(double scale) {
    m_scale = scale > 0 ? scale : 1;
    readFonts();
}

bool Tokens::eventFilter(QObject* watched, QEvent* event) {
    if (watched != qGuiApp) return false;
    if (event->type() == QEvent::ApplicationPaletteChange) readColours();
    if (event->type() == QEvent::ApplicationFontChange) readFonts();
    return false;
}

void Tokens::readColours() {
    const QPalette desktop = QGuiApplication::palette();
    const bool wasDark = m_scheme.dark;
    m_scheme.dark = m_dark.value_or(app::isDark(desktop));
    const Colours now = colours(m_scheme, desktop);
    if (now == m_colours && wasDark == m_scheme.dark) return;
    m_colours = now;
    Q_EMIT coloursChanged();
}

double Tokens::ownTextScale(double wanted, bool isX11, double devicePixelRatio, double dotsPerInch) {
    // Elsewhere the ratio is the screen's own, and says nothing of text.
    const double byQt = dotsPerInch / usualDotsPerInch * (isX11 ? devicePixelRatio : 1);
    return qFuzzyCompare(byQt, 1) ? wanted : 1;
}

void Tokens::followScreen() {
    disconnect(m_following);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        m_following = connect(screen, &QScreen::logicalDotsPerInchChanged, this, &Tokens::readFonts);
    }
    readFonts();
}

void Tokens::readFonts() {
    m_font = QGuiApplication::font();
    double scale = m_scale;
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const bool isX11 = QGuiApplication::platformName() == QLatin1String("xcb");
        scale = ownTextScale(scale, isX11, screen->devicePixelRatio(), screen->logicalDotsPerInchY());
    }
    if (m_font.pointSizeF() > 0) {
        m_font.setPointSizeF(m_font.pointSizeF() * scale);
    } else {
        m_font.setPixelSize(qRound(m_font.pixelSize() * scale));
    }
    m_monospaced = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    m_isTabular = hasEqualDigits(m_font);
    m_base = pixels(m_font);
    Q_EMIT fontsChanged();
}

qreal Tokens::textScale() const { return m_base / usualBase; }

qreal Tokens::grow() const { return textScale() < growsFrom ? 1 : textScale(); }

bool Tokens::isBig() const { return textScale() >= bigFrom; }

QFont Tokens::styled(double size, QFont::Weight weight) const {
    QFont out = m_font;
    if (out.pointSizeF() > 0) {
        out.setPointSizeF(out.pointSizeF() * size);
    } else {
        out.setPixelSize(qRound(out.pixelSize() * size));
    }
    out.setWeight(weight);
    return out;
}

QFont Tokens::monospaced(double size) const {
    QFont out = styled(size, QFont::Normal);
    out.setFamily(m_monospaced);
    out.setStyleHint(QFont::Monospace);
    return out;
}

qreal Tokens::line(const QFont& font) const {
    const qreal size = pixels(font);
    return qRound(size * (size >= m_base * 1.2 ? headlineRatio : lineRatio));
}

qreal Tokens::lead(const QFont& font) const { return qRound((line(font) - QFontMetricsF(font).height()) / 2); }

qreal Tokens::digit(const QFont& font) const {
    const QFontMetricsF metrics(font);
    qreal widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) widest = qMax(widest, metrics.horizontalAdvance(digit));
    return widest;
}

QEasingCurve Tokens::curve(QPointF first, QPointF second) {
    QEasingCurve out(QEasingCurve::BezierSpline);
    out.addCubicBezierSegment(first, second, {1, 1});
    return out;
}

}  // namespace ravik::app
