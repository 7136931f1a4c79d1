#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>

#include <QString>

namespace ravik::app {

/// The core's text is UTF-8.
template <std::convertible_to<std::string_view> Text>
QString text(const Text& text) {
    const std::string_view view(text);
    return QString::fromUtf8(view.data(), qsizetype(view.size()));
}

/// Absent reads as empty.
inline QString text(const std::optional<std::string>& maybe) { return maybe ? text(*maybe) : QString(); }

}  // namespace ravik::app
