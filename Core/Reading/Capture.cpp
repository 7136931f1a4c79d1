#include "Core/Reading/Capture.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <fstream>
#include <system_error>

#include "Core/Reading/Node.h"

namespace ravik {

using nlohmann::json;

namespace {

constexpr auto knownKeys = std::to_array<std::string_view>(
    {"format", "host", "now", "uid", "pid", "ramBytes", "stats", "processes", "managed", "engaged", "adopters",
     "thresholds", "keep", "trend", "running", "foreground", "engineHistory", "query"});

constexpr std::size_t largestFile = 1ull << 30;

bool readFormat(const Node& node) {
    std::int32_t format = 0;
    return node.read(format) && (format == Capture::format || node.fail("expected 1"));
}

bool readHost(const Node& node, HostKind& kind) {
    const json& value = node.value();
    if (value == "mac") {
        kind = HostKind::mac;
    } else if (value == "linux") {
        kind = HostKind::linux;
    } else {
        return node.fail("expected \"mac\" or \"linux\"");
    }
    return true;
}

bool readStats(const Node& node, SystemStats& stats) {
    return node.isObject() && node.required("swapUsedBytes", stats.swapUsedBytes) &&
           node.required("swapOutBytesPerSec", stats.swapOutBytesPerSec) &&
           node.required("memoryFreePercent", stats.memoryFreePercent) &&
           node.required("diskFreeBytes", stats.diskFreeBytes) && node.required("loadAverage", stats.loadAverage) &&
           node.required("cpuCount", stats.cpuCount) && node.required("gpuPercent", stats.gpuPercent);
}

bool readProcess(const Node& node, Proc& proc) {
    const auto readApp = [&](const Node& app) {
        return app.isNull() ||
               (app.value().is_string() ? app.read(proc.app.emplace()) : app.fail("expected a string or null"));
    };
    return node.isObject() && node.required("id", proc.id) && node.required("ppid", proc.ppid) &&
           node.required("uid", proc.uid) && node.required("name", proc.name) &&
           node.required("command", proc.command) && node.required("started", proc.started) &&
           node.required("footprintBytes", proc.footprintBytes) && node.required("cpuPercent", proc.cpuPercent) &&
           node.optionalMember("app", readApp);
}

bool readProcesses(const Node& node, std::vector<Proc>& procs) {
    PidSet seen;
    return node.elements([&](const Node& element) {
        Proc proc;
        if (!readProcess(element, proc)) return false;
        if (!seen.insert(proc.id).second) {
            return element.member("id",
                                  [&](const Node& id) { return id.fail(fmt::format("pid {} occurs twice", proc.id)); });
        }
        procs.push_back(std::move(proc));
        return true;
    });
}

bool readPids(const Node& node, PidSet& pids) {
    pids.clear();
    return node.elements([&](const Node& element) {
        Pid pid = 0;
        if (!element.read(pid)) return false;
        pids.insert(pid);
        return true;
    });
}

template <typename Insert>
bool readStrings(const Node& node, Insert insert) {
    return node.elements([&](const Node& element) {
        std::string text;
        if (!element.read(text)) return false;
        insert(std::move(text));
        return true;
    });
}

bool readThresholds(const Node& node, Thresholds& limits) {
    return node.isObject() && node.required("swapGB", limits.swapGB) &&
           node.required("swapOutMBps", limits.swapOutMBps) && node.required("memoryFreePct", limits.memoryFreePct) &&
           node.required("diskFreeGB", limits.diskFreeGB) && node.required("loadPerCore", limits.loadPerCore) &&
           node.required("orphanMinHours", limits.orphanMinHours) &&
           node.required("hogCPUPercent", limits.hogCPUPercent) && node.required("hogMinHours", limits.hogMinHours) &&
           node.required("autoEndLeftovers", limits.autoEndLeftovers) &&
           node.required("autoLeftoverMinHours", limits.autoLeftoverMinHours);
}

bool readBusySince(const Node& node, Trend& trend) {
    return node.members([&](const std::string& key, const Node& member) {
        Pid pid = 0;
        const auto [end, fault] = std::from_chars(key.data(), key.data() + key.size(), pid);
        if (fault != std::errc{} || std::to_string(pid) != key) {
            return member.fail("expected a pid within signed 32 bits for a key");
        }
        return member.read(trend.busySince[pid]);
    });
}

bool readSample(const Node& node, Trend::Sample& sample) {
    const auto readBytes = [&](const Node& bytes) {
        return bytes.members(
            [&](const std::string& group, const Node& held) { return held.read(sample.bytes[group]); });
    };
    return node.isObject() && node.required("at", sample.at) && node.member("bytes", readBytes);
}

bool readTrend(const Node& node, Trend& trend) {
    const auto readHeld = [&](const Node& held) {
        return held.elements([&](const Node& sample) { return readSample(sample, trend.held.emplace_back()); });
    };
    return node.isObject() &&
           node.optionalMember("busySince", [&](const Node& member) { return readBusySince(member, trend); }) &&
           node.optionalMember("held", readHeld);
}

bool readHistory(const Node& node, Engine::History& history) {
    const auto times = [](std::unordered_map<std::string, Time>& out) {
        return [&out](const Node& member) {
            return member.members([&](const std::string& group, const Node& time) { return time.read(out[group]); });
        };
    };
    return node.isObject() && node.optionalMember("lastBusy", times(history.lastBusy)) &&
           node.optionalMember("lastFocused", times(history.lastFocused)) &&
           node.optional("observedSince", history.observedSince);
}

bool readForeground(const Node& node, std::optional<std::string>& foreground) {
    if (node.isNull()) return true;
    if (!node.value().is_string()) return node.fail("expected a string or null");
    return node.read(foreground.emplace());
}

bool readAll(const Node& root, Capture& capture) {
    Reading& reading = capture.reading;
    Host& host = reading.host;
    auto trend = std::make_shared<Trend>();
    const bool whole =
        root.isObject() && root.optionalMember("format", readFormat) &&
        root.optionalMember("host", [&](const Node& node) { return readHost(node, host.kind); }) &&
        root.required("now", reading.now) && root.required("uid", host.uid) && root.optional("pid", host.pid) &&
        root.required("ramBytes", reading.ramBytes) &&
        root.member("stats", [&](const Node& node) { return readStats(node, reading.stats); }) &&
        root.member("processes", [&](const Node& node) { return readProcesses(node, reading.processes); }) &&
        root.optionalMember("managed", [&](const Node& node) { return readPids(node, reading.managed); }) &&
        root.optionalMember("engaged", [&](const Node& node) { return readPids(node, host.engaged); }) &&
        root.optionalMember("adopters", [&](const Node& node) { return readPids(node, host.adopters); }) &&
        root.optionalMember("thresholds", [&](const Node& node) { return readThresholds(node, reading.limits); }) &&
        root.optionalMember("keep",
                            [&](const Node& node) {
                                return readStrings(node,
                                                   [&](std::string text) { reading.keep.insert(std::move(text)); });
                            }) &&
        root.optionalMember("trend", [&](const Node& node) { return readTrend(node, *trend); }) &&
        root.optionalMember("running",
                            [&](const Node& node) {
                                return readStrings(
                                    node, [&](std::string text) { capture.running.push_back(std::move(text)); });
                            }) &&
        root.optionalMember("foreground", [&](const Node& node) { return readForeground(node, capture.foreground); }) &&
        root.optionalMember("engineHistory",
                            [&](const Node& node) { return readHistory(node, capture.engineHistory); }) &&
        root.optional("query", capture.query);
    reading.trend = std::move(trend);
    return whole;
}

}  // namespace

CaptureResult readCapture(std::string_view text, HostKind machine) {
    CaptureResult result;
    json root;
    result.error = BoundedJson::parse(text, knownKeys, root);
    if (!result.error.empty()) return result;
    Capture capture;
    capture.reading.host.kind = machine;
    if (readAll(Node(root, result.error), capture)) result.capture = std::move(capture);
    return result;
}

CaptureResult readCaptureStream(std::istream& stream, const std::string& name, HostKind machine) {
    std::string text;
    std::array<char, 1 << 16> block{};
    while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
        text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
        if (text.size() > largestFile) return {{}, name + ": larger than 1 GiB"};
    }
    if (stream.bad()) return {{}, name + ": cannot be read"};
    return readCapture(text, machine);
}

CaptureResult readCaptureFile(const std::filesystem::path& path, HostKind machine) {
    std::string name = path.string();
    std::ranges::replace_if(
        name, [](unsigned char byte) { return byte < ' ' || byte == 0x7F; }, '?');
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    if (!file) return {{}, fmt::format("{}: {}", name, std::generic_category().message(errno))};
    return readCaptureStream(file, name, machine);
}

}  // namespace ravik
