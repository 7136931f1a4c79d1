#pragma once

#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Platform/Appearance.h"
#include "Platform/DesktopApp.h"
#include "Platform/LoginItem.h"
#include "Tests/Fakes/FakeProcesses.h"

namespace ravik::fakes {

class FakeReadings : public MachineReadings {
public:
    std::optional<MemoryReading> memory() override { return memoryReading; }
    std::uint64_t installedBytes() override { return installed; }
    std::optional<std::uint64_t> swapUsedBytes() override { return swapUsed; }
    std::optional<std::uint64_t> diskFreeBytes() override { return diskFree; }
    std::optional<double> loadAverage() override { return load; }
    std::optional<int> cpuCount() override { return cores; }
    std::optional<int> gpuPercent() override { return gpu; }

    std::optional<MemoryReading> memoryReading = MemoryReading{8ull << 30, 0, 4096};
    std::uint64_t installed = 16ull << 30;
    std::optional<std::uint64_t> swapUsed = 0;
    std::optional<std::uint64_t> diskFree = 100ull << 30;
    std::optional<double> load = 0.5;
    std::optional<int> cores = 8;
    std::optional<int> gpu;
};

class FakeServices : public Services {
public:
    Reading read(const std::vector<Proc>&, Time) override {
        ++reads;
        return reading;
    }
    PidSet engaged(const Pids& candidates, const std::vector<Proc>&) override {
        PidSet found;
        for (const Pid pid : candidates) {
            if (engagedPids.contains(pid)) found.insert(pid);
        }
        return found;
    }

    Reading reading;
    PidSet engagedPids;
    int reads = 0;
};

/// Applications end when they are asked to, after a while, or never.
class FakeWorkspace : public Workspace {
public:
    struct App {
        RunningApp app;
        double quitsAfter = 0;  // seconds; below 0: never
        Time askedAt = -1;
    };

    explicit FakeWorkspace(FakeClock& clock) : m_clock(clock) {}

    std::vector<RunningApp> running() override;
    std::optional<std::string> frontmost() override { return front; }
    bool knowsFocus() override { return focusKnown; }
    void onActivation(std::function<void(const std::string&)> observer) override { m_observer = std::move(observer); }
    bool terminate(const RunningApp& app) override;
    bool isTerminated(const RunningApp& app) override;
    std::optional<std::string> iconPath(const std::string&) override { return {}; }

    /// Brings an application to the front, as a user would.
    void focus(const std::string& group);

    std::vector<App> apps;
    std::optional<std::string> front;
    bool focusKnown = true;

private:
    bool gone(const App& app) const;

    FakeClock& m_clock;
    std::function<void(const std::string&)> m_observer;
};

class FakeAppearance : public Appearance {
public:
    Look look() override { return current; }
    void onChange(std::function<void(const Look&)> observer) override { m_observer = std::move(observer); }

    /// As a user would.
    void change(const Look& wanted) {
        current = wanted;
        if (m_observer) m_observer(wanted);
    }

    Look current;

private:
    std::function<void(const Look&)> m_observer;
};

class FakeLoginItem : public LoginItem {
public:
    bool isEnabled() override { return enabled; }
    std::optional<std::string> setEnabled(bool wanted) override {
        if (!refusal) enabled = wanted;
        return refusal;
    }

    bool enabled = false;
    std::optional<std::string> refusal;
};

class FakeNotifier : public Notifier {
public:
    void post(const Notification& notification) override { posted.push_back(notification); }
    void queryDenied(std::function<void(bool)> answer) override { answer(denied); }
    void onAction(std::function<void(const std::string&)> observer) override { press = std::move(observer); }

    std::vector<Notification> posted;
    std::string activationToken() const override { return token; }

    std::function<void(const std::string&)> press;
    std::string token;
    bool denied = false;
};

class FakeDefaults : public Defaults {
public:
    std::optional<nlohmann::json> get(std::string_view key) override;
    bool set(std::string_view key, const nlohmann::json& value) override;
    bool remove(std::string_view key) override;
    bool changed() override { return std::exchange(changedBehind, false); }

    std::map<std::string, nlohmann::json, std::less<>> values;
    int writes = 0;
    bool changedBehind = false;
    /// Nothing can be stored.
    bool isReadOnly = false;
};

class FakeTrash : public Trash {
public:
    std::optional<std::string> move(const std::filesystem::path& path) override {
        if (refusal) return refusal;
        moved.push_back(path);
        return {};
    }

    std::vector<std::filesystem::path> moved;
    std::optional<std::string> refusal;
};

/// Packs nothing: remembers what lay in the folder that it was given.
class FakeArchive : public Archive {
public:
    std::optional<std::string> zip(const std::filesystem::path& from, const std::filesystem::path& to,
                                   const std::function<bool()>& cancelled) override;

    /// Path below the folder's parent, to the bytes of the file; a folder's ends with "/".
    std::map<std::string, std::string> packed;
    std::filesystem::path file;
    std::filesystem::path folder;
    /// The mode of the folder while it was packed.
    std::filesystem::perms permissions{};
    std::optional<std::string> refusal;
};

class FakeCrashReports : public CrashReports {
public:
    std::vector<DiagnosticPayload> takeNew() override { return std::exchange(payloads, {}); }
    void watch(const std::string& version) override { watched = version; }

    std::vector<DiagnosticPayload> payloads;
    std::optional<std::string> watched;
};

class FakeFileViewer : public FileViewer {
public:
    void reveal(const std::filesystem::path& file) override { revealed.push_back(file); }

    std::vector<std::filesystem::path> revealed;
};

/// Nobody else is the app, unless `other` says so.
class FakeDesktopApp : public DesktopApp {
public:
    std::optional<Other> claim(const Activation& asked) override {
        if (other) opened.push_back(asked);
        claimed = !other;
        return other;
    }
    void onActivation(std::function<void(const Activation&)> observer) override { ask = std::move(observer); }
    void release() override { claimed = false; }
    std::optional<std::string> open(const Activation& asked) override {
        if (!refusal) opened.push_back(asked);
        return refusal;
    }

    std::optional<Other> other;
    /// Why the app cannot be opened.
    std::optional<std::string> refusal;
    /// What the other app was asked.
    std::vector<Activation> opened;
    /// Asks this app, as another start of it would.
    std::function<void(const Activation&)> ask;
    bool claimed = false;
};

class FakeWatchLock : public WatchLock {
public:
    std::optional<Refusal> acquire() override {
        if (refusal) return refusal;
        held = true;
        return {};
    }
    void release() override { held = false; }

    std::optional<Refusal> refusal;
    bool held = false;
};

}  // namespace ravik::fakes
