#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "Core/Base/Task.h"
#include "Core/Disk/DiskScanner.h"
#include "Core/Ending/Asker.h"
#include "Core/Host/Host.h"
#include "Core/Record/Log.h"
#include "Platform/Platform.h"

namespace ravik {

/// The outcome of one disk scan and what the user chose of it. Lives as long as the program, so a result outlasts the
/// screen. Main loop; only the scan itself runs beside it.
class DiskModel {
public:
    struct Idle {
        friend bool operator==(const Idle&, const Idle&) = default;
    };
    /// Steps of the scan; `total` is 0 before the first.
    struct Scanning {
        int done = 0;
        int total = 0;
        friend bool operator==(const Scanning&, const Scanning&) = default;
    };
    struct Done {
        friend bool operator==(const Done&, const Done&) = default;
    };
    /// A move failed; the sentence for the user. The rows still stand.
    struct Failed {
        std::string sentence;
        friend bool operator==(const Failed&, const Failed&) = default;
    };
    using Phase = std::variant<Idle, Scanning, Done, Failed>;

    /// All must outlive the main loop's background work.
    DiskModel(Platform& platform, Log& log, HostKind kind, Asker& asker);
    /// Ends a scan under way.
    ~DiskModel();
    DiskModel(const DiskModel&) = delete;
    DiskModel& operator=(const DiskModel&) = delete;

    /// Starts a scan in the background; nothing if one is under way.
    void scan();
    /// Ends a scan under way and goes back to `Idle`; the rows of the scan before stay.
    void cancelScan();
    /// Asks once, then moves the ticked rows to the Trash, one after the other; a refused one stays and stays ticked.
    Task<> trashChecked();

    const Phase& phase() const { return m_phase; }
    bool isScanning() const { return std::holds_alternative<Scanning>(m_phase); }
    /// Largest first.
    const std::vector<Reclaimable>& items() const { return m_items; }
    const std::set<std::string>& checked() const { return m_checked; }
    void setChecked(const std::string& id, bool on);
    /// The sentence of the last successful move.
    const std::optional<std::string>& trashed() const { return m_trashed; }
    /// The failures of the last trashChecked(), one sentence each; the last of them is the phase's.
    const std::vector<std::string>& failures() const { return m_failures; }
    /// The sentence for a path that was asked for and is not among the items.
    std::string whyNotListed(const std::string& path) const;

    /// Called after each change of what the functions above answer. One observer.
    void onChange(std::function<void()> observer) { m_observer = std::move(observer); }

    DiskScanner::ProjectRoots projectRoots;
    /// What runs besides the applications that the desktop lists; none if it is empty. Main loop.
    std::function<std::vector<RunningApp>()> alsoRunning;

private:
    void finish(std::vector<Reclaimable> rows, double seconds);
    /// True if it went.
    bool trash(const Reclaimable& row);
    Confirmation question(const std::vector<Reclaimable>& rows) const;
    void setPhase(Phase phase);
    std::vector<RunningApp> running() const;
    DiskScanner::IsRunning isRunning() const;

    Platform& m_platform;
    Log& m_log;
    const HostKind m_kind;
    Asker& m_asker;
    Phase m_phase;
    std::vector<Reclaimable> m_items;
    std::set<std::string> m_checked;
    std::optional<std::string> m_trashed;
    std::vector<std::string> m_failures;
    std::function<void()> m_observer;
    /// Shared with the scan under way; its being gone tells a late answer that nobody waits for it.
    std::shared_ptr<std::atomic<bool>> m_cancelled;
};

}  // namespace ravik
