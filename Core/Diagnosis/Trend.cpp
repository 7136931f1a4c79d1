#include "Core/Diagnosis/Trend.h"

namespace ravik {

void Trend::record(const Snapshot& snapshot, const Thresholds& limits) {
    std::unordered_map<Pid, Time> busy;
    for (const Proc& proc : snapshot.processes) {
        if (proc.cpuPercent < limits.hogCPUPercent) continue;
        const auto known = busySince.find(proc.id);
        busy.emplace(proc.id, known == busySince.end() ? snapshot.takenAt : known->second);
    }
    busySince = std::move(busy);

    const Time last = held.empty() ? distantPast : held.back().at;
    if (snapshot.takenAt - last >= samplePeriod) {
        Sample sample{snapshot.takenAt, {}};
        sample.bytes.reserve(snapshot.groups.size());
        for (const AppGroup& group : snapshot.groups) sample.bytes[group.id] = group.footprintBytes;
        held.push_back(std::move(sample));
    }
    std::erase_if(held, [&](const Sample& sample) { return snapshot.takenAt - sample.at > sampleLife; });
}

std::optional<Trend::Low> Trend::low(std::string_view group) const {
    const std::string name(group);
    std::optional<Low> least;
    for (const Sample& sample : held) {
        const auto entry = sample.bytes.find(name);
        const std::uint64_t bytes = entry == sample.bytes.end() ? 0 : entry->second;
        if (!least || bytes < least->bytes) least = Low{bytes, sample.at};
    }
    return least;
}

}  // namespace ravik
