#include "App/StatusItem.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include "App/GlyphIcon.h"
#include "App/Views/Text.h"
#include "Core/Screens/Sidebar.h"

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

StatusItem::StatusItem(const std::vector<Destination>& screens, const Host& host) {
    fillMenu(screens, host);
    make();
    m_looking.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_looking, &QTimer::timeout, this, &StatusItem::look);
    m_wasAvailable = isAvailable();
    m_looking.start(m_wasAvailable ? looksWith : looksWithout);
    m_menu.installEventFilter(this);
}

StatusItem::~StatusItem() = default;

bool StatusItem::isAvailable() { return QSystemTrayIcon::isSystemTrayAvailable(); }

void StatusItem::fillMenu(const std::vector<Destination>& screens, const Host& host) {
    const auto add = [this](const QString& words, const QString& keys, auto chosen) {
        m_menu.addAction(words, this, chosen)->setShortcut(QKeySequence(keys));
    };
    add(QStringLiteral("Open Ravik"), {}, &StatusItem::openChosen);
    m_menu.addSeparator();
    const Sidebar sidebar(screens, Destination::diagnosis, false, {}, host);
    for (const SidebarRow& row : sidebar.rows) {
        add(text(row.title), text(row.shortcut), [this, screen = row.destination] { Q_EMIT screenChosen(screen); });
    }
    m_menu.addSeparator();
    add(text(GoMenu::readNow(host)), text(host.nouns().refreshChord), &StatusItem::readChosen);
    m_menu.addSeparator();
    add(QStringLiteral("Quit Ravik"), text(host.nouns().quitChord), &StatusItem::quitChosen);
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
