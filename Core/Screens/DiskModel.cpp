#include "Core/Screens/DiskModel.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Wording/Fmt.h"

namespace ravik {

namespace {

std::uint64_t sum(const std::vector<Reclaimable>& rows) {
    std::uint64_t bytes = 0;
    for (const Reclaimable& row : rows) bytes += row.bytes;
    return bytes;
}

/// Where the Trash lies on the disk that is to become free, moving to it frees nothing yet.
std::string_view spaceNote(HostKind kind) {
    return kind == HostKind::mac ? "" : " The space returns when the Trash is emptied.";
}

}  // namespace

DiskModel::DiskModel(Platform& platform, Log& log, HostKind kind, Asker& asker)
    : projectRoots(DiskScanner::defaultProjectRoots(diskTables(kind), platform.folders.home)),
      m_platform(platform),
      m_log(log),
      m_kind(kind),
      m_asker(asker) {}

DiskModel::~DiskModel() {
    if (m_cancelled) *m_cancelled = true;
}

void DiskModel::setPhase(Phase phase) {
    m_phase = std::move(phase);
    if (m_observer) m_observer();
}

std::vector<RunningApp> DiskModel::running() const {
    std::vector<RunningApp> apps = m_platform.workspace.running();
    if (alsoRunning) std::ranges::move(alsoRunning(), std::back_inserter(apps));
    return apps;
}

DiskScanner::IsRunning DiskModel::isRunning() const {
    return [this](const DiskTables::Owner& owner) { return DiskScanner::isRunning(owner, running()); };
}

std::string DiskModel::whyNotListed(const std::string& path) const {
    std::error_code error;
    const auto folder = DiskScanner::resolved(std::filesystem::absolute(path, error));
    const auto* owner =
        folder ? DiskScanner::runningOwner(*folder, m_platform.folders.home, diskTables(m_kind).owners, isRunning())
               : nullptr;
    if (owner) return DiskScanner::description(DiskScanner::OwnerRunning{std::string(owner->app)});
    return DiskScanner::description(DiskScanner::OutsideKnownRoots{path});
}

void DiskModel::scan() {
    if (isScanning()) return;
    m_trashed.reset();
    setPhase(Scanning{});
    m_cancelled = std::make_shared<std::atomic<bool>>(false);

    // The model may go while the scan runs: the scan takes copies, and its answers ask first whether they are awaited.
    const auto deliver = [this, &loop = m_platform.loop, cancelled = m_cancelled](auto work) {
        loop.post([this, cancelled, work = std::move(work)]() mutable {
            if (!*cancelled) work(*this);
        });
    };
    m_platform.loop.background([deliver, cancelled = m_cancelled, roots = projectRoots, &clock = m_platform.clock,
                                &tables = diskTables(m_kind), home = m_platform.folders.home, apps = running()] {
        const double started = clock.monotonic();
        const DiskScanner::Scope scope{
            .tables = tables,
            .home = home,
            .now = clock.now(),
            .isRunning = [&](const auto& owner) { return DiskScanner::isRunning(owner, apps); },
            .cancelled = cancelled.get(),
        };
        auto rows = DiskScanner::scan(scope, roots, [&](int done, int total) {
            deliver([done, total](DiskModel& model) { model.setPhase(Scanning{done, total}); });
        });
        if (!rows) return;
        deliver([rows = std::move(*rows), seconds = clock.monotonic() - started](DiskModel& model) mutable {
            model.finish(std::move(rows), seconds);
        });
    });
}

void DiskModel::cancelScan() {
    if (!isScanning()) return;
    *m_cancelled = true;
    setPhase(Idle{});
}

void DiskModel::finish(std::vector<Reclaimable> rows, double seconds) {
    m_log.event("diskScan", {{"items", rows.size()}, {"mb", Fmt::wholeMB(sum(rows))}, {"seconds", seconds}});
    m_items = std::move(rows);
    m_checked.clear();
    setPhase(Done{});
}

void DiskModel::setChecked(const std::string& id, bool on) {
    if (on) {
        m_checked.insert(id);
    } else {
        m_checked.erase(id);
    }
    if (m_observer) m_observer();
}

Confirmation DiskModel::question(const std::vector<Reclaimable>& rows) const {
    Confirmation question;
    question.title = fmt::format("Move {} to the Trash?", Fmt::plural(rows.size(), "folder"));
    question.message = fmt::format(
        "{} GB. Each is recreated by its tool on next use, and you can put any of it back "
        "from the Trash.{}",
        Fmt::gbByThousands(sum(rows)), spaceNote(m_kind));
    question.verb = "Move to Trash";
    for (const Reclaimable& row : rows) {
        question.ends.push_back({.tone = Tone::safe,
                                 .name = row.kind,
                                 .line = row.id,
                                 .amount = Fmt::gbByThousands(row.bytes) + " GB",
                                 .icon = {.app = "", .symbol = "folder"}});
    }
    return question;
}

Task<> DiskModel::trashChecked() {
    std::vector<Reclaimable> rows;
    std::ranges::copy_if(m_items, std::back_inserter(rows),
                         [&](const Reclaimable& row) { return m_checked.contains(row.id); });
    if (rows.empty()) co_return;
    const bool confirmed = co_await askAndLog(m_asker, question(rows), m_log, m_platform.clock);
    if (!confirmed) co_return;

    m_failures.clear();
    std::uint64_t moved = 0;
    for (const Reclaimable& row : rows) {
        if (trash(row)) moved += row.bytes;
    }
    if (moved > 0) {
        m_trashed = fmt::format("Moved {} GB to the Trash", Fmt::gbByThousands(moved));
        if (const auto note = spaceNote(m_kind); !note.empty()) *m_trashed += fmt::format(".{}", note);
    }
    if (m_observer) m_observer();
}

bool DiskModel::trash(const Reclaimable& row) {
    const DiskTables& tables = diskTables(m_kind);
    const DiskScanner::ReclaimScope scope{
        .tables = tables,
        .home = m_platform.folders.home,
        .isRunning = isRunning(),
        .trash = m_platform.trash,
    };
    if (const auto error = DiskScanner::reclaim(scope, row, projectRoots, tables.owners)) {
        const std::string why = DiskScanner::description(*error);
        m_failures.push_back(
            fmt::format("Could not move {} to the Trash: {} Nothing else was changed.", row.kind, why));
        m_log.event("reclaim", {{"kind", row.kind}, {"ok", false}, {"error", why}});
        setPhase(Failed{m_failures.back()});
        return false;
    }
    m_log.event("reclaim", {{"kind", row.kind}, {"ok", true}, {"mb", Fmt::wholeMB(row.bytes)}});
    std::erase_if(m_items, [&](const Reclaimable& item) { return item.id == row.id; });
    m_checked.erase(row.id);
    return true;
}

}  // namespace ravik
