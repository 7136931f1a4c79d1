#pragma once

#include <functional>
#include <optional>

#include <QCache>
#include <QImage>

#include "Core/Wording/AppIcons.h"

namespace ravik::app {

/// The applications' own icons, read once each. One for the program's life. Main thread.
class IconStore {
public:
    static IconStore& instance();

    /// Where the desktop keeps an application's icon. Without one (empty) no application has an icon.
    void setFinder(AppIcons::Cache::Find find);
    /// Square, of this many device pixels; null where the application has no icon that can be read.
    QImage icon(const IconRef& icon, int pixels);

private:
    IconStore();

    std::optional<AppIcons::Cache> m_paths;
    QCache<QString, QImage> m_images;
};

}  // namespace ravik::app
