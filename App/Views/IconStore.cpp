#include "App/Views/IconStore.h"

#include <QIcon>
#include <QPixmap>

#include "App/Views/Text.h"

namespace ravik::app {

namespace {

constexpr int kept = 120;  // images

}  // namespace

IconStore& IconStore::instance() {
    static IconStore store;
    return store;
}

IconStore::IconStore() : m_images(kept) {}

void IconStore::setFinder(AppIcons::Cache::Find find) {
    m_paths.reset();
    if (find) m_paths.emplace(std::move(find));
    m_images.clear();
}

QImage IconStore::icon(const IconRef& icon, int pixels) {
    if (icon.app.empty() || !m_paths || pixels <= 0) return {};
    const auto& path = m_paths->path(icon);
    if (!path) return {};
    const QString key = QStringLiteral("%1@%2").arg(text(*path)).arg(pixels);
    if (const QImage* found = m_images.object(key)) return *found;
    QImage image = QIcon(text(*path)).pixmap(QSize(pixels, pixels), 1.0).toImage();
    m_images.insert(key, new QImage(image));
    return image;
}

}  // namespace ravik::app
