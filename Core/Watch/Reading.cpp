#include "Core/Watch/Reading.h"

#include "Core/Diagnosis/Classifier.h"

namespace ravik {

Snapshot diagnosed(const Reading& reading) {
    static const Trend nothing;
    const Trend& trend = reading.trend ? *reading.trend : nothing;
    Snapshot snapshot;
    snapshot.stats = reading.stats;
    snapshot.processes = reading.processes;
    snapshot.takenAt = reading.now;
    snapshot.sampled = true;
    const ProcessIndex index(snapshot.processes);
    snapshot.breaches = Classifier::breaches(reading.stats, reading.limits);
    snapshot.groups = Classifier::groups(snapshot.processes, reading.host);
    snapshot.orphans =
        Classifier::orphans(snapshot.processes, reading.managed, reading.limits, reading.host, reading.now);
    snapshot.hogs = Classifier::hogs(snapshot.processes, snapshot.orphans, reading.limits, trend.busySince,
                                     reading.host, reading.now);
    snapshot.sessions = Classifier::sessions(index, snapshot.orphans, reading.host);
    snapshot.findings = Diagnoser::diagnose(snapshot, index, reading.limits, reading.ramBytes, reading.keep, trend,
                                            reading.host, reading.now);
    return snapshot;
}

}  // namespace ravik
