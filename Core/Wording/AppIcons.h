#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Core/Host/Host.h"

namespace ravik {

/// What stands beside a name: the icon of an application, or a symbol of the system.
struct IconRef {
    /// Group whose application's icon is meant; empty for a plain symbol.
    std::string app;
    /// The symbol; where `app` is set, what stands in for an application that has no icon.
    std::string symbol;

    friend bool operator==(const IconRef&, const IconRef&) = default;
};

namespace AppIcons {

inline constexpr std::string_view cylinder = "cylinder.split.1x2";
inline constexpr std::string_view code = "chevron.left.forwardslash.chevron.right";
inline constexpr std::string_view terminal = "terminal";
inline constexpr std::string_view gear = "gearshape";

/// The symbol for a program without an application.
std::string_view symbol(std::string_view name, const Host& host);

/// The icon of a group's application. A foreign group's "[uid] " is cut off.
IconRef icon(std::string_view group, const Host& host);

/// How strongly the primary colour tints an icon: one of three opacities, always the same for the same text.
double tint(std::string_view pathOrSymbol);

/// Remembers where each application's icon lies, for the life of the program. Main loop.
class Cache {
public:
    /// Answers with a path for a group name, or nothing.
    using Find = std::function<std::optional<std::string>(const std::string& group)>;
    explicit Cache(Find find) : m_find(std::move(find)) {}

    /// Path of the application's icon; absent: draw the symbol.
    const std::optional<std::string>& path(const IconRef& icon);

private:
    Find m_find;
    std::unordered_map<std::string, std::optional<std::string>> m_paths;
};

}  // namespace AppIcons

}  // namespace ravik
