#include "App/Views/Program.h"

#include "App/Views/Text.h"

namespace ravik::app {

QUrl Program::icon(const IconRef& icon) const {
    const auto& path = icons.path(icon);
    return path ? QUrl::fromLocalFile(text(*path)) : QUrl();
}

}  // namespace ravik::app
