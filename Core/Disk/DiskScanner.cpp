#include "Core/Disk/DiskScanner.h"

#include <algorithm>
#include <unordered_set>

#include <fmt/format.h>

#include "Core/Disk/VersionedName.h"

namespace ravik::DiskScanner {

namespace {

/// One scan on its way through the steps; the order is the one that the progress counts by.
class Scan {
public:
    Scan(const Scope& scope, const ProjectRoots& roots, const Progress& progress)
        : m_scope(scope), m_tables(scope.tables), m_progress(progress) {
        for (const auto& root : roots) {
            for (const Child& child : children(root, Hidden::skip)) {
                if (child.isFolder) m_projects.push_back(root / child.name);
            }
        }
        constexpr std::size_t parentFolders = 2;
        m_total = static_cast<int>(m_projects.size() + m_tables.caches.size() + parentFolders);
    }

    std::vector<Reclaimable> run() {
        for (const auto& cache : m_tables.caches) {
            step();
            addCache(cache);
        }
        addBrowsers();
        step();
        addTranscripts();
        step();
        for (const auto& project : m_projects) {
            if (!m_tables.buildDirs.contains(project.filename().string())) {
                for (Reclaimable& row : staleBuildDirs(m_scope, project, projectDepth)) add(std::move(row));
            }
            step();
        }
        std::ranges::stable_sort(m_rows, std::ranges::greater{}, &Reclaimable::bytes);
        return std::move(m_rows);
    }

private:
    static constexpr int projectDepth = 2;

    void step() {
        ++m_done;
        if (m_progress && !m_scope.isCancelled()) m_progress(m_done, m_total);
    }

    /// Overlapping roots reach a folder twice.
    void add(Reclaimable row) {
        if (m_seen.insert(row.id).second) m_rows.push_back(std::move(row));
    }

    std::uint64_t size(const std::filesystem::path& folder) const { return directorySize(folder, m_scope.cancelled); }

    void addCache(const DiskTables::Cache& cache) {
        const auto* owner = m_tables.owner(cache.path);
        if (owner && m_scope.isRunning(*owner)) return;
        const auto path = m_scope.home / cache.path;
        const std::uint64_t bytes = size(path);
        if (bytes <= cacheBytes) return;
        std::string note = "recreated on next use";
        if (owner) note = fmt::format("downloaded again when {} next needs it", owner->app);
        add({path.string(), std::string(cache.kind), bytes, std::move(note)});
    }

    void addBrowsers() {
        const auto parent = m_scope.home / m_tables.browsers;
        std::vector<std::string> names;
        for (Child& child : children(parent, Hidden::include)) names.push_back(std::move(child.name));
        for (const std::string& name : oldVersions(names)) {
            const auto path = parent / name;
            const std::uint64_t bytes = size(path);
            if (bytes <= smallBytes) continue;
            const std::string note = fmt::format("a newer {} is installed", VersionedName::parse(name)->family);
            add({path.string(), "Old Playwright browser", bytes, note});
        }
    }

    void addTranscripts() {
        const auto parent = m_scope.home / m_tables.transcripts;
        for (const Child& child : children(parent, Hidden::skip)) {
            if (m_scope.isCancelled()) return;
            const auto path = parent / child.name;
            const double days = daysSince(m_scope, newestMtime(path, m_scope.cancelled));
            if (days <= idleDays) continue;
            const std::uint64_t bytes = size(path);
            if (bytes <= smallBytes) continue;
            const std::string note = fmt::format("last session {:.0f} days ago · your history, not a cache", days);
            add({path.string(), "Claude Code transcripts", bytes, note});
        }
    }

    const Scope& m_scope;
    const DiskTables& m_tables;
    const Progress& m_progress;
    std::vector<std::filesystem::path> m_projects;
    std::vector<Reclaimable> m_rows;
    std::unordered_set<std::string> m_seen;
    int m_done = 0;
    int m_total = 0;
};

}  // namespace

std::optional<std::vector<Reclaimable>> scan(const Scope& scope, const ProjectRoots& projectRoots,
                                             const Progress& progress) {
    auto rows = Scan(scope, projectRoots, progress).run();
    if (scope.isCancelled()) return {};
    return rows;
}

bool isRunning(const DiskTables::Owner& owner, std::span<const RunningApp> apps) {
    return std::ranges::any_of(apps, [&](const RunningApp& app) {
        if (app.localizedName == owner.app) return true;
        return std::ranges::any_of(owner.alsoCalled, [&](std::string_view name) {
            return name == app.localizedName || name == app.bundleName;
        });
    });
}

}  // namespace ravik::DiskScanner
