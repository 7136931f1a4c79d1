#include "Platform/Linux/ControlGroup.h"

#include <string>

namespace ravik::platform::ControlGroup {

namespace {

/// Goes through the components of a path and knows how much of it is taken.
struct Walk {
    std::string_view path;
    std::size_t at = 0;

    /// The next component, empty at the end.
    std::string_view next() {
        while (at < path.size() && path[at] == '/') ++at;
        const std::size_t begin = at;
        while (at < path.size() && path[at] != '/') ++at;
        return path.substr(begin, at - begin);
    }
    std::string_view taken() const { return path.substr(0, at); }
};

bool isUnit(std::string_view name) {
    return name.ends_with(".service") || name.ends_with(".scope") || name.ends_with(".slice");
}

/// A component that names one container by itself.
bool namesContainer(std::string_view name) {
    if (name.starts_with("lxc.")) return true;
    if (name.ends_with(".service")) return false;
    return name.starts_with("docker-") || name.starts_with("libpod-") || name.starts_with("libpod_") ||
           name.starts_with("crio-");
}

/// A component below which each group is a container.
bool holdsContainers(std::string_view name) {
    return name == "docker" || name == "lxc" || name == "machine.slice" || name.starts_with("kubepods");
}

std::string_view cut(std::string_view path) {
    constexpr std::string_view deleted = " (deleted)";
    if (path.ends_with(deleted)) path.remove_suffix(deleted.size());
    return path;
}

}  // namespace

std::string_view path(std::string_view text) {
    std::string_view unified;
    std::string_view systemd;
    std::string_view longest;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);

        const std::size_t first = line.find(':');
        if (first == std::string_view::npos) continue;
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string_view::npos) continue;
        const std::string_view controllers = line.substr(first + 1, second - first - 1);
        const std::string_view group = cut(line.substr(second + 1));
        if (!group.starts_with('/')) continue;
        if (controllers.empty()) {
            unified = group;
        } else if (controllers == "name=systemd") {
            systemd = group;
        }
        if (group.size() > longest.size()) longest = group;
    }
    if (unified.size() > 1) return unified;
    if (systemd.size() > 1) return systemd;
    return longest;
}

std::string_view unitPath(std::string_view path) {
    std::string_view deepest;
    Walk walk{path};
    for (auto name = walk.next(); !name.empty(); name = walk.next()) {
        if (isUnit(name)) deepest = walk.taken();
    }
    return deepest;
}

std::string_view unit(std::string_view path) {
    const std::string_view whole = unitPath(path);
    const std::size_t slash = whole.rfind('/');
    return slash == std::string_view::npos ? whole : whole.substr(slash + 1);
}

std::string_view containerPath(std::string_view path) {
    std::string_view found;
    bool below = false;
    Walk walk{path};
    for (auto name = walk.next(); !name.empty(); name = walk.next()) {
        if (namesContainer(name)) {
            found = walk.taken();
            below = false;
        } else if (holdsContainers(name)) {
            found = walk.taken();
            below = true;
        } else if (below) {
            // Slices only sort containers; the first group that is none is the container.
            found = walk.taken();
            below = name.ends_with(".slice") || name == "burstable" || name == "besteffort" || name == "guaranteed" ||
                    (name.starts_with("pod") && !name.ends_with(".scope"));
        }
    }
    return found;
}

bool isUserManager(std::string_view path, std::uint32_t uid) {
    return path.ends_with("/user@" + std::to_string(uid) + ".service/init.scope");
}

bool isService(std::string_view path) {
    Walk walk{path};
    for (auto name = walk.next(); !name.empty(); name = walk.next()) {
        if (name == "session.slice" || name == "background.slice") return true;
    }
    const std::string_view deepest = unit(path);
    return deepest == "init.scope" || (deepest.ends_with(".service") && !deepest.starts_with("app-"));
}

bool isApplication(std::string_view unit) {
    if (unit.starts_with("app-")) return unit.ends_with(".scope") || unit.ends_with(".service");
    return (unit.starts_with("snap.") || unit.starts_with("flatpak-")) && unit.ends_with(".scope");
}

bool isManaged(std::string_view path, std::string_view ownPath) {
    const std::string_view container = containerPath(path);
    if (!container.empty() && container != containerPath(ownPath)) return true;
    return isService(path) && unitPath(path) != unitPath(ownPath);
}

}  // namespace ravik::platform::ControlGroup
