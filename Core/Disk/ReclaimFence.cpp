#include "Core/Disk/ReclaimFence.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include <fmt/format.h>

#include "Core/Disk/Descent.h"
#include "Core/Disk/MountPoints.h"

namespace ravik::DiskScanner {

namespace {

namespace fs = std::filesystem;

std::string asPrefix(const fs::path& folder) { return folder.string() + "/"; }

/// What is at the end of a path, itself: a link is not followed.
struct Found {
    bool isFolder = false;
    FolderIdentity identity;
    friend bool operator==(const Found&, const Found&) = default;
};

/// Absent if there is nothing.
std::optional<Found> look(const fs::path& path) {
    struct stat status;
    if (lstat(path.c_str(), &status) != 0) return {};
    return Found{S_ISDIR(status.st_mode), {status.st_dev, status.st_ino}};
}

/// Paths of the tables as they are now. One that leads to the home folder or above it names no cache.
class KnownPaths {
public:
    explicit KnownPaths(const fs::path& home) : m_home(home), m_resolvedHome(resolved(home)) {}

    std::optional<fs::path> at(std::string_view relative) const {
        if (!m_resolvedHome) return {};
        auto path = resolved(m_home / relative);
        if (path && (*path == *m_resolvedHome || path->string() == "/" ||
                     m_resolvedHome->string().starts_with(asPrefix(*path)))) {
            return {};
        }
        return path;
    }

private:
    fs::path m_home;
    std::optional<fs::path> m_resolvedHome;
};

template <typename... F>
struct Overloaded : F... {
    using F::operator()...;
};
// Clang before 17 deduces none for an aggregate.
template <typename... F>
Overloaded(F...) -> Overloaded<F...>;

}  // namespace

std::string description(const ReclaimError& error) {
    return std::visit(
        Overloaded{
            [](const OutsideKnownRoots& e) {
                return fmt::format("{} is not a cache or a build folder Ravik found, so it was left where it is.",
                                   e.path);
            },
            [](const OwnerRunning& e) {
                return fmt::format("{0} is running and may be using it. Quit {0} first; nothing was changed.", e.app);
            },
            [](const HoldsMount& e) {
                return fmt::format("Another file system is mounted in {}, so it was left where it is.", e.path);
            },
            [](const TrashRefused& e) { return e.sentence; },
        },
        error);
}

std::optional<fs::path> resolved(const fs::path& path) {
    if (!path.is_absolute() || path.native().find('\0') != std::string::npos) return {};
    const std::unique_ptr<char, decltype(&std::free)> whole(realpath(path.c_str(), nullptr), &std::free);
    if (whole) return fs::path(whole.get());
    if (errno != ENOENT && errno != ENOTDIR) return {};
    // Where a part does not exist, ".." behind it is taken out by name only, which can bring a link to light.
    constexpr int rounds = 16;
    fs::path current = path;
    for (int round = 0; round < rounds; ++round) {
        std::error_code error;
        fs::path next = fs::weakly_canonical(current, error);
        if (error) return {};
        if (!next.has_filename() && next.has_relative_path()) next = next.parent_path();
        if (next.native() == current.native()) return next;
        current = std::move(next);
    }
    return {};
}

bool isReclaimable(const fs::path& path, const DiskTables& tables, const fs::path& home,
                   const ProjectRoots& projectRoots) {
    const KnownPaths known(home);
    const auto isKnown = [&](std::string_view relative, const fs::path& asked) {
        const auto at = known.at(relative);
        return at && at->native() == asked.native();
    };
    if (std::ranges::any_of(tables.caches, [&](const auto& cache) { return isKnown(cache.path, path); })) return true;

    const std::string name = path.filename().string();
    const fs::path parent = path.parent_path();
    const bool isChild = isKnown(tables.browsers, parent) || isKnown(tables.transcripts, parent);
    if (isChild && !name.empty() && !name.starts_with('.')) return true;

    if (!tables.buildDirs.contains(name)) return false;
    return std::ranges::any_of(projectRoots, [&](const fs::path& root) {
        const auto at = resolved(root);
        if (!at) return false;
        const std::string prefix = asPrefix(*at);
        return path.native().starts_with(prefix) && path.native().size() > prefix.size();
    });
}

const DiskTables::Owner* runningOwner(const fs::path& path, const fs::path& home, const DiskTables::Owners& owners,
                                      const IsRunning& isRunning) {
    const KnownPaths known(home);
    const auto hit = std::ranges::find_if(owners, [&](const DiskTables::Owner& owner) {
        const auto owned = known.at(owner.path);
        return owned && owned->native() == path.native() && isRunning(owner);
    });
    return hit == owners.end() ? nullptr : &*hit;
}

std::optional<ReclaimError> reclaim(const ReclaimScope& scope, const Reclaimable& item,
                                    const ProjectRoots& projectRoots, const DiskTables::Owners& owners) {
    const auto folder = resolved(item.id);
    if (!folder || !isReclaimable(*folder, scope.tables, scope.home, projectRoots)) {
        return OutsideKnownRoots{item.id};
    }
    // Where there is nothing, the Trash says so in its own words.
    const auto found = look(*folder);
    if (found && !found->isFolder) return OutsideKnownRoots{item.id};

    if (const auto* owner = runningOwner(*folder, scope.home, owners, scope.isRunning)) {
        return OwnerRunning{std::string(owner->app)};
    }
    if (!mountPointsBelow(*folder).empty()) return HoldsMount{item.id};

    // One last look: a link may have been swapped in on the way here, or another folder.
    const auto now = resolved(*folder);
    if (!now || now->native() != folder->native() || look(*folder) != found) return OutsideKnownRoots{item.id};
    if (auto refusal = scope.trash.move(*folder)) return TrashRefused{std::move(*refusal)};
    return {};
}

}  // namespace ravik::DiskScanner
