#include <set>

#include <nlohmann/json.hpp>

#include "Core/Reading/Capture.h"

namespace ravik {

using nlohmann::json;

namespace {

template <typename Value>
json sorted(const std::unordered_set<Value>& set) {
    return std::set<Value>(set.begin(), set.end());
}

json statsJson(const SystemStats& stats) {
    return {
        {"swapUsedBytes", stats.swapUsedBytes},
        {"swapOutBytesPerSec", stats.swapOutBytesPerSec},
        {"memoryFreePercent", stats.memoryFreePercent},
        {"diskFreeBytes", stats.diskFreeBytes},
        {"loadAverage", stats.loadAverage},
        {"cpuCount", stats.cpuCount},
        {"gpuPercent", stats.gpuPercent},
    };
}

json processJson(const Proc& proc, bool withApp) {
    json record{
        {"id", proc.id},
        {"ppid", proc.ppid},
        {"uid", proc.uid},
        {"name", proc.name},
        {"command", proc.command.str()},
        {"started", proc.started},
        {"footprintBytes", proc.footprintBytes},
        {"cpuPercent", proc.cpuPercent},
    };
    if (withApp) record["app"] = proc.app ? json(proc.app->str()) : json();
    return record;
}

}  // namespace

json trendJson(const Trend& trend) {
    json busy = json::object();
    for (const auto& [pid, since] : trend.busySince) busy[std::to_string(pid)] = since;
    json held = json::array();
    for (const Trend::Sample& sample : trend.held) held.push_back({{"at", sample.at}, {"bytes", sample.bytes}});
    return {{"busySince", std::move(busy)}, {"held", std::move(held)}};
}

json captureJson(const Capture& capture) {
    const Reading& reading = capture.reading;
    const Host& host = reading.host;
    json processes = json::array();
    for (const Proc& proc : reading.processes) processes.push_back(processJson(proc, !host.isMac()));
    return {
        {"format", Capture::format},
        {"host", host.isMac() ? "mac" : "linux"},
        {"now", reading.now},
        {"uid", host.uid},
        {"pid", host.pid},
        {"ramBytes", reading.ramBytes},
        {"stats", statsJson(reading.stats)},
        {"processes", std::move(processes)},
        {"managed", sorted(reading.managed)},
        {"engaged", sorted(host.engaged)},
        {"adopters", sorted(host.adopters)},
        {"thresholds", reading.limits.encode()},
        {"keep", sorted(reading.keep)},
        {"trend", trendJson(reading.trend ? *reading.trend : Trend{})},
        {"running", capture.running},
        {"foreground", capture.foreground ? json(*capture.foreground) : json()},
        {"engineHistory",
         {{"lastBusy", capture.engineHistory.lastBusy},
          {"lastFocused", capture.engineHistory.lastFocused},
          {"observedSince", capture.engineHistory.observedSince}}},
        {"query", capture.query},
    };
}

}  // namespace ravik
