#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "Core/Autopilot/Engine.h"
#include "Core/Autopilot/LiveLedger.h"
#include "Core/Autopilot/ShadowScorer.h"
#include "Core/Base/Subscription.h"
#include "Core/Base/Task.h"
#include "Core/Diagnosis/Diagnoser.h"
#include "Core/Diagnosis/Trend.h"
#include "Core/Ending/EndResult.h"
#include "Core/Host/Host.h"
#include "Core/Record/Log.h"
#include "Core/Watch/AlertPolicy.h"
#include "Core/Watch/ProcessScanner.h"
#include "Core/Watch/Reading.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Watch/SystemStatsSampler.h"
#include "Core/Watch/Thresholds.h"
#include "Platform/Platform.h"

namespace ravik {

/// The last fix that the user asked for.
struct LastFix {
    Time at = 0;
    std::string line;
    friend bool operator==(const LastFix&, const LastFix&) = default;
};

/// The one long-lived object at the centre: reads the machine on a timer, publishes one Snapshot a tick, keeps the
/// settings and runs the fixes. Confined to the main loop; only stage B of a tick and the ending of trees run
/// beside it, on copies.
class Monitor {
public:
    /// A watcher writes the tick's lines, alerts, and runs the Autopilot. A reader shows and acts on readings of its
    /// own and logs only its own deeds.
    enum class Role { watcher, reader };
    enum class Change {
        snapshot,
        history,
        thresholds,
        interval,
        shadow,
        live,
        suggestions,
        lastFix,
        notifications,
        role,
        fixes
    };

    /// A fix that the user has said yes to, from then until all of it is done and written down.
    class Fix {
    public:
        explicit Fix(Monitor& monitor) : m_monitor(monitor) { ++monitor.m_fixes; }
        ~Fix() {
            --m_monitor.m_fixes;
            m_monitor.publish(Change::fixes);
        }
        Fix(const Fix&) = delete;
        Fix& operator=(const Fix&) = delete;

    private:
        Monitor& m_monitor;
    };

    Monitor(Platform& platform, Log& log, Host host, Role role);
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /// One tick at once, then one every interval().
    void start();
    /// A reader's: from now on each tick begins with a try to become the watcher, which succeeds once the lock is free.
    void takeOverWhenFree();
    Role role() const { return m_role; }
    /// Stops the timer; a tick under way still ends.
    void stop();
    /// For the end of the program: no tick begins or comes back any more, and nothing stays paused or demoted. A fix
    /// that is under way goes on.
    void retire();
    /// A Fix stands.
    bool isFixing() const { return m_fixes > 0; }
    /// One tick, or a counted skip if one is still running.
    void refresh();
    /// A whole reading on the calling thread, published when it returns. For commands, which have no loop to keep
    /// free. The first has no CPU figures.
    void readNow();

    const Snapshot& snapshot() const { return *m_snapshot; }
    /// The latest picture, shared: it does not change behind its holder.
    std::shared_ptr<const Snapshot> shared() const { return m_snapshot; }
    /// What the latest picture was made of, for a capture. Kept by a reader only; absent before its first reading.
    const std::optional<Reading>& reading() const { return m_reading; }
    /// One hour of samples, oldest first.
    const std::vector<SystemStats>& history() const { return m_history; }
    const Thresholds& thresholds() const { return m_thresholds; }
    /// Stores them as well.
    void setThresholds(const Thresholds& thresholds);
    double interval() const { return m_interval; }
    /// Seconds; never stored. A running timer starts anew, with a tick at once. Below 1 ms, or no number, counts as 1 ms.
    void setInterval(double seconds);
    std::uint64_t ramBytes() const { return m_ramBytes; }
    const Host& host() const { return m_host; }
    const Trend& trend() const { return *m_trend; }
    const std::optional<LastFix>& lastFix() const { return m_lastFix; }
    /// Absent until it is known.
    std::optional<bool> notificationsDenied() const { return m_notificationsDenied; }
    Platform& platform() { return m_platform; }
    Log& log() { return m_log; }
    KeepSet keep() const;

    /// Calls back on the main loop after each assignment, for as long as the subscription is held.
    Subscription observe(std::function<void(Change)> observer);

    /// Runs a finding's remedy, logs it and reads the machine again. `asked` is the picture that the user was asked
    /// about: a pid that has become another process's since is left alone, as one whose process has gone.
    Task<EndResult> apply(Finding finding, bool cautionConfirmed, std::shared_ptr<const Snapshot> asked = {});
    /// Ends one process picked by hand with its tree, and logs it. Blocks for the grace period.
    EndResult kill(Pid pid, bool cautionConfirmed, const std::shared_ptr<const Snapshot>& asked = {});
    /// The gate and the signals, nothing else. All trees are judged as one before the first signal. Any thread.
    static EndResult end(const Pids& pids, const std::vector<Proc>& procs, bool cautionConfirmed, const Host& host,
                         const ProcessTable& table, const Signals& signals);
    /// Sets and stores the last fix.
    void recordFix(const std::string& line);

    /// The Autopilot's part of a tick. Without `foreground` the desktop is asked.
    void runEngine(const Snapshot& snapshot, std::optional<std::string> foreground, Time now);
    /// What it would have done and did not, in the order of the engine.
    const std::vector<Decision>& shadow() const { return m_shadow; }
    /// What it has done and the user can still undo.
    const std::vector<LiveAction>& live() const { return m_live; }
    /// At most two, for one click each.
    const std::vector<Decision>& suggestions() const { return m_suggestions; }
    /// Groups that an earlier run, which ended without a word, had left paused or demoted.
    const std::vector<std::string>& releasedAtStart() const { return m_releasedAtStart; }
    void undoLive(std::uint64_t id);
    /// At the end of the program: nothing stays paused or demoted.
    void releaseAllLive();
    /// Lets go of a program the moment it comes to the front, and of what an earlier run left in force now.
    void watchFocus();
    void acceptSuggestion(const Decision& suggestion, Time now);
    void dismissSuggestion(const Decision& suggestion, Time now);

    /// Asks the desktop whether notifications are switched off.
    void checkNotifications();

private:
    /// What stage B reads the machine with. It may still be at work when the Monitor has gone.
    struct Readers {
        Readers(Platform& computer)
            : platform(computer),
              scanner(platform.processes, platform.clock),
              sampler(platform.machine, platform.clock) {}
        Platform& platform;
        ProcessScanner scanner;
        SystemStatsSampler sampler;
    };
    struct Tick {
        std::shared_ptr<const Snapshot> snapshot;
        Reading reading;
    };

    /// What stage B starts from: a reading still without its processes and figures.
    Reading prepare() const;
    /// Stage B.
    static Tick take(Readers& readers, Reading reading);
    /// Stage C.
    void apply(Tick tick);
    void logTick(const Snapshot& snapshot);
    void remember(const SystemStats& stats);
    void endLeftovers(const Snapshot& snapshot);
    void alert(const Snapshot& snapshot);
    void release(const LiveAction& action, std::string_view why, Time now);
    void releaseWhatIsOver(const Snapshot& snapshot, const std::optional<std::string>& foreground, Time now);
    void suggest(const std::vector<Decision>& shadow, Time now);
    void publishLive(Time now);
    void withdraw(const std::string& target);
    void loadThresholds();
    void loadLastFix();
    void publish(Change change);
    void becomeWatcher();
    /// A command that took one reading for itself does not.
    bool ticks() const { return m_role == Role::watcher || m_timer != 0; }

    Platform& m_platform;
    Log& m_log;
    Host m_host;
    Role m_role;
    std::shared_ptr<Readers> m_readers;
    std::uint64_t m_ramBytes;

    std::shared_ptr<const Snapshot> m_snapshot;
    std::optional<Reading> m_reading;
    std::vector<SystemStats> m_history;
    Thresholds m_thresholds;
    double m_interval = 5.0;
    /// Changed in place while no tick looks at it, else copied first.
    std::shared_ptr<Trend> m_trend;
    AlertPolicy m_alerts;
    Time m_lastNotified = distantPast;
    std::unordered_set<std::string> m_seenFindings;
    bool m_inFlight = false;
    bool m_takesOver = false;
    bool m_hasRetired = false;
    int m_fixes = 0;
    std::uint64_t m_skipped = 0;
    Engine m_engine;
    Engine::History m_engineHistory;
    ShadowScorer m_scorer;
    LiveLedger m_ledger;
    std::vector<Proc> m_decidedOn;
    std::vector<Decision> m_shadow;
    std::vector<LiveAction> m_live;
    std::vector<Decision> m_suggestions;
    /// Targets announced in this run.
    std::unordered_set<std::string> m_suggested;
    std::vector<std::string> m_releasedAtStart;
    std::optional<LastFix> m_lastFix;
    std::optional<bool> m_notificationsDenied;

    MainLoop::Timer m_timer = 0;
    Observers<Change> m_observers;
    /// Work that comes back to a Monitor that has gone does nothing.
    std::shared_ptr<Monitor*> m_self;
};

}  // namespace ravik
