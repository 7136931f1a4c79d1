#include "App/StatusItem.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include "App/GlyphIcon.h"
#include "App/Views/Text.h"

namespace ravik::app {

namespace {

using namespace std::chrono_literals;

// Asking costs a call on the bus: often only while there is none.
constexpr auto looksWithout = 5s;
constexpr auto looksWith = 60s;

const QColor onLight(0x1B, 0x1B, 0x1D);
const QColor onDark(0xF1, 0xF1, 0xF2);

/// " 4.6 GB" is drawn as "4.6"; label and tooltip say the unit.
QString figure(const Glyph& glyph) { return text(glyph.title).trimmed().section(QLatin1Char(' '), 0, 0); }

}  // namespace

StatusItem::StatusItem(const std::vector<Destination>& screens) {
    fillMenu(screens);
    make();
    m_looking.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_looking, &QTimer::timeout, this, &StatusItem::look);
    m_wasAvailable = isAvailable();
    m_looking.start(m_wasAvailable ? looksWith : looksWithout);
    m_menu.installEventFilter(this);
}

StatusItem::~StatusItem() = default;

bool StatusItem::isAvailable() { return QSystemTrayIcon::isSystemTrayAvailable(); }

void StatusItem::fillMenu(const std::vector<Destination>& screens) {
    m_menu.addAction(QStringLiteral("Open Ravik"), this, &StatusItem::openChosen);
    m_menu.addSeparator();
    for (const Destination screen : screens) {
        auto* action = m_menu.addAction(text(title(screen)), this, [this, screen] { Q_EMIT screenChosen(screen); });
        action->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_1 + int(screen))));
    }
    m_menu.addSeparator();
    auto* quit = m_menu.addAction(QStringLiteral("Quit Ravik"), this, &StatusItem::quitChosen);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
}

void StatusItem::make() {
    m_item = std::make_unique<QSystemTrayIcon>();
    m_item->setContextMenu(&m_menu);
    connect(m_item.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        // The second of two quick clicks comes as a double click, and not as a click besides.
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick ||
            reason == QSystemTrayIcon::MiddleClick)
            Q_EMIT clicked();
    });
}

void StatusItem::look() {
    const bool available = isAvailable();
    if (available == m_wasAvailable) return;
    m_wasAvailable = available;
    m_looking.start(available ? looksWith : looksWithout);
    if (!available || !m_rendered) return;
    make();
    draw();
}

void StatusItem::render(const Glyph& glyph) {
    if (m_rendered == glyph) return;
    const bool isDrawn = m_rendered && m_rendered->key() == glyph.key();
    m_rendered = glyph;
    if (!isDrawn) {
        draw();
        return;
    }
    // Its words alone: nothing to free after the first reading.
    ++m_updates;
    m_item->setToolTip(text(glyph.label));
}

void StatusItem::setDark(std::optional<bool> dark) {
    if (m_dark == dark) return;
    m_dark = dark;
    if (m_rendered) draw();
}

void StatusItem::draw() {
    ++m_updates;
    const bool dark = m_dark.value_or(QGuiApplication::palette().color(QPalette::Window).lightness() < 128);
    m_item->setIcon(glyphIcon(figure(*m_rendered), dark ? onDark : onLight));
    m_item->setToolTip(text(m_rendered->label));
    if (!m_item->isVisible()) m_item->show();
}

QRect StatusItem::place() const { return m_item->geometry(); }

bool StatusItem::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::PaletteChange && m_rendered && !m_dark) draw();
    return QObject::eventFilter(watched, event);
}

}  // namespace ravik::app
