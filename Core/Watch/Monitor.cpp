#include "Core/Watch/Monitor.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "Core/Diagnosis/Classifier.h"
#include "Core/Diagnosis/KeepList.h"
#include "Core/Watch/TickLines.h"
#include "Core/Wording/AlertText.h"

namespace ravik {

namespace {

constexpr double historySeconds = 3600.0;
constexpr double alertSpacing = 600.0;
constexpr double shortestInterval = 0.001;
constexpr std::string_view thresholdsKey = "thresholds";

}  // namespace

Monitor::Monitor(Platform& platform, Log& log, Host host, Role role)
    : m_platform(platform),
      m_log(log),
      m_host(std::move(host)),
      m_role(role),
      m_readers(std::make_shared<Readers>(platform)),
      m_ramBytes(platform.machine.installedBytes()),
      m_trend(std::make_shared<Trend>()),
      m_ledger(platform.levers),
      m_self(std::make_shared<Monitor*>(this)) {
    m_engineHistory.observedSince = platform.clock.now();
    auto placeholder = std::make_shared<Snapshot>();
    placeholder->takenAt = platform.clock.now();
    m_snapshot = std::move(placeholder);
    loadLastFix();
    loadThresholds();
}

Monitor::~Monitor() {
    *m_self = nullptr;
    stop();
}

void Monitor::start() {
    refresh();
    stop();
    m_timer = m_platform.loop.every(m_interval, [this] { refresh(); });
}

void Monitor::takeOverWhenFree() { m_takesOver = m_role == Role::reader; }

void Monitor::becomeWatcher() {
    m_takesOver = false;
    m_role = Role::watcher;
    m_reading.reset();
    m_skipped = 0;
    // What was used while somebody else watched has not been seen.
    m_engineHistory.observedSince = m_platform.clock.now();
    watchFocus();
    publish(Change::role);
}

void Monitor::stop() {
    if (m_timer) m_platform.loop.cancel(m_timer);
    m_timer = 0;
}

void Monitor::retire() {
    m_hasRetired = true;
    stop();
    releaseAllLive();
}

void Monitor::refresh() {
    if (m_hasRetired) return;
    if (m_inFlight) {
        ++m_skipped;
        return;
    }
    m_inFlight = true;
    if (m_takesOver && m_platform.watchLock.tryAcquire()) becomeWatcher();
    if (m_platform.defaults.changed()) {
        loadThresholds();
        loadLastFix();
    }
    m_platform.loop.background(
        [readers = m_readers, self = m_self, loop = &m_platform.loop, reading = prepare()]() mutable {
            loop->post([self, tick = std::make_shared<Tick>(take(*readers, std::move(reading)))] {
                if (*self) (*self)->apply(std::move(*tick));
            });
        });
}

void Monitor::readNow() { apply(take(*m_readers, prepare())); }

Reading Monitor::prepare() const {
    Reading reading;
    reading.host = m_host;
    reading.limits = m_thresholds;
    reading.keep = keep();
    reading.trend = m_trend;
    reading.ramBytes = m_ramBytes;
    return reading;
}

Monitor::Tick Monitor::take(Readers& readers, Reading reading) {
    Platform& platform = readers.platform;
    reading.processes = readers.scanner.scan();
    reading.stats = readers.sampler.sample();
    reading.now = platform.clock.now();
    auto services = platform.services.read(reading.processes, reading.now);
    reading.managed = std::move(services.managed);
    reading.host.adopters = std::move(services.adopters);
    // Windows and connections are looked up only for what would otherwise be a leftover.
    reading.host.engaged.clear();
    Pids candidates;
    for (const Proc& proc :
         Classifier::orphans(reading.processes, reading.managed, reading.limits, reading.host, reading.now)) {
        candidates.push_back(proc.id);
    }
    if (!candidates.empty()) reading.host.engaged = platform.services.engaged(candidates, reading.processes);
    auto snapshot = std::make_shared<const Snapshot>(diagnosed(reading));
    return {std::move(snapshot), std::move(reading)};
}

void Monitor::apply(Tick tick) {
    m_inFlight = false;
    if (m_hasRetired) return;
    const bool watches = m_role == Role::watcher;
    if (m_skipped > 0 && watches) m_log.event("skippedTicks", {{"n", m_skipped}});
    m_skipped = 0;
    m_host = tick.reading.host;
    m_snapshot = tick.snapshot;
    if (watches) {
        tick.reading = {};
    } else {
        m_reading = std::move(tick.reading);
    }
    const Snapshot& snapshot = *m_snapshot;
    publish(Change::snapshot);
    if (m_trend.use_count() > 1) m_trend = std::make_shared<Trend>(*m_trend);
    m_trend->record(snapshot, m_thresholds);
    if (watches) m_log.event("tick", TickLines::tick(snapshot));
    remember(snapshot.stats);
    if (!watches) return;
    logTick(snapshot);
    endLeftovers(snapshot);
    runEngine(snapshot, {}, m_platform.clock.now());
    alert(snapshot);
}

void Monitor::remember(const SystemStats& stats) {
    m_history.push_back(stats);
    const auto cap = static_cast<std::size_t>(historySeconds / m_interval);
    if (m_history.size() > cap) m_history.erase(m_history.begin(), m_history.end() - static_cast<std::ptrdiff_t>(cap));
    publish(Change::history);
}

void Monitor::logTick(const Snapshot& snapshot) {
    if (!snapshot.findings.empty()) {
        m_log.event("diagnosis", TickLines::diagnosis(snapshot));
        for (const Finding& finding : snapshot.findings) {
            if (m_seenFindings.insert(finding.id).second) m_log.event("finding", TickLines::finding(finding));
        }
    }
    if (const auto line = TickLines::self(snapshot, m_host.pid)) m_log.event("self", *line);
}

void Monitor::alert(const Snapshot& snapshot) {
    const Time now = m_platform.clock.now();
    const auto causes = AlertPolicy::causes(snapshot.findings);
    const auto due = m_alerts.due(causes, !snapshot.breaches.empty(), now);
    // What is held back here stays due.
    if (due.empty() || now - m_lastNotified <= alertSpacing) return;
    m_lastNotified = now;
    m_alerts.record(due, now);
    m_platform.notifier.post(alertText(snapshot));
    m_log.event("notify", {{"breaches", snapshot.breaches},
                           {"causes", due},
                           {"title", snapshot.findings.empty() ? "" : snapshot.findings.front().title}});
}

void Monitor::checkNotifications() {
    m_platform.notifier.queryDenied([self = m_self](bool denied) {
        if (!*self || (*self)->m_notificationsDenied == denied) return;
        (*self)->m_notificationsDenied = denied;
        (*self)->m_log.event("notifications", {{"denied", denied}});
        (*self)->publish(Change::notifications);
    });
}

KeepSet Monitor::keep() const { return KeepList(m_platform.defaults).commands(); }

void Monitor::setThresholds(const Thresholds& thresholds) {
    m_thresholds = thresholds;
    m_platform.defaults.set(thresholdsKey, m_thresholds.encode());
    publish(Change::thresholds);
}

void Monitor::loadThresholds() {
    const auto stored = m_platform.defaults.get(thresholdsKey);
    const auto thresholds = stored ? Thresholds::decode(*stored) : std::nullopt;
    // What was taken away or made unreadable while the program runs counts as absent, as at the next start.
    m_thresholds = thresholds.value_or(Thresholds{});
    if (thresholds && m_role == Role::watcher) m_platform.defaults.set(thresholdsKey, m_thresholds.encode());
    publish(Change::thresholds);
}

void Monitor::setInterval(double seconds) {
    m_interval = seconds > shortestInterval ? seconds : shortestInterval;
    if (m_timer) start();
    publish(Change::interval);
}

Subscription Monitor::observe(std::function<void(Change)> observer) { return m_observers.add(std::move(observer)); }

void Monitor::publish(Change change) { m_observers.notify(change); }

}  // namespace ravik
