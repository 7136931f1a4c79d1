#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "Core/Base/Pids.h"
#include "Core/Base/Text.h"
#include "Core/Base/Time.h"
#include "Core/Watch/Proc.h"

/// What the program asks of a computer. Small interfaces, values only; each platform answers them in a folder of
/// its own, and Tests/Fakes answers them for a whole machine in memory.
namespace ravik {

class Appearance;
class DesktopApp;
class LoginItem;

/// One process as the platform reads it, before any arithmetic.
struct ProcessReading {
    Pid id = 0;
    Pid ppid = 0;
    std::uint32_t uid = 0;
    std::string name;
    /// Arguments joined by one blank; absent where they cannot be read or there are none.
    std::optional<Text> arguments;
    /// Path of the executable; absent where it cannot be read.
    std::optional<Text> path;
    Time started = 0;              // whole seconds
    std::uint64_t startTicks = 0;  // the kernel's own stamp, 0: none
    /// Absent where the kernel refuses.
    std::optional<std::uint64_t> footprintBytes;
    /// CPU time used so far, in ticks of ProcessTable::nanosPerTick; absent where the kernel refuses.
    std::optional<std::uint64_t> cpuTicks;
    std::optional<Text> app;
};

/// The process table. Called from one background task at a time.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    virtual double nanosPerTick() const = 0;
    /// All pids, in the kernel's order, into `pids`; empty if they cannot be listed.
    virtual void list(Pids& pids) = 0;
    /// Fills `reading`; false if the process has gone or cannot be read.
    virtual bool read(Pid pid, ProcessReading& reading) = 0;
    /// All pids and one process as the kernel tells them now, beside and without what the calls above remember.
    /// For verdicts that can lead to a signal. Any thread.
    virtual Pids listFresh() const = 0;
    virtual bool readFresh(Pid pid, ProcessReading& reading) const = 0;
    /// Start of a live process in whole seconds since 1970. Any thread.
    virtual std::optional<Time> startTime(Pid pid) const = 0;
    /// The argument area of a live process, joined by blanks. Any thread.
    virtual std::optional<std::string> commandLine(Pid pid) const = 0;
};

struct MemoryReading {
    /// What could be handed out without paging.
    std::uint64_t availableBytes = 0;
    /// Pages written to swap since boot; may wrap.
    std::uint64_t swapOutPages = 0;
    std::uint64_t pageBytes = 0;

    friend bool operator==(const MemoryReading&, const MemoryReading&) = default;
};

/// Machine-wide figures. Each fails by itself. Same thread as ProcessTable.
class MachineReadings {
public:
    virtual ~MachineReadings() = default;
    virtual std::optional<MemoryReading> memory() = 0;
    /// Installed memory, or the smallest limit that a container sets; 0 if unknown.
    virtual std::uint64_t installedBytes() = 0;
    virtual std::optional<std::uint64_t> swapUsedBytes() = 0;
    virtual std::optional<std::uint64_t> diskFreeBytes() = 0;
    virtual std::optional<double> loadAverage() = 0;
    virtual std::optional<int> cpuCount() = 0;
    virtual std::optional<int> gpuPercent() = 0;
};

enum class Signal { terminate, kill, stop, resume };

/// A process whose identity has just been proven, held so that a signal reaches it and no other. Only
/// Signals::verify makes one.
class VerifiedProcess {
public:
    /// What a platform keeps to reach the process again, such as a descriptor.
    struct Handle {
        virtual ~Handle() = default;
    };

    Pid pid() const { return m_pid; }
    const Handle* handle() const { return m_handle.get(); }

private:
    friend class Signals;
    VerifiedProcess(Pid pid, std::shared_ptr<const Handle> handle) : m_pid(pid), m_handle(std::move(handle)) {}

    Pid m_pid;
    std::shared_ptr<const Handle> m_handle;
};

/// Signals by pid and start time. Any thread.
class Signals {
public:
    virtual ~Signals() = default;

    /// The live process in the record's pid, if it is still the one recorded; absent if it has gone, is a zombie
    /// or is another.
    virtual std::optional<VerifiedProcess> verify(const Proc& proc) const = 0;
    /// True while that very process lives; a zombie does not.
    virtual bool alive(const VerifiedProcess& process) const = 0;
    /// True while it is stopped (job control): it hears TERM only once it is continued.
    virtual bool stopped(const VerifiedProcess&) const { return false; }
    /// True if the call was accepted, which does not say that the process obeyed.
    virtual bool send(const VerifiedProcess& process, Signal signal) const = 0;
    /// Waits until none of them lives, at most this long; returns at once when the last has gone.
    virtual void waitForExit(std::span<const VerifiedProcess> processes, double seconds) const = 0;
    virtual void sleep(double seconds) const = 0;

protected:
    static VerifiedProcess vouch(Pid pid, std::shared_ptr<const VerifiedProcess::Handle> handle) {
        return {pid, std::move(handle)};
    }
};

/// The two reversible levers. What is changed is written down before it is done and struck out after it is
/// undone, where a crash could leave it behind. Main loop.
class Levers {
public:
    virtual ~Levers() = default;
    /// The pids that were stopped, of those that are still the same process. `group` names them in the record.
    virtual Pids pause(const std::string& group, const std::vector<Proc>& targets) = 0;
    virtual void resume(const Pids& pids) = 0;
    /// Lowers CPU and disk priority together; the pids lowered. Empty where this user could not undo it.
    virtual Pids demote(const std::string& group, const std::vector<Proc>& targets) = 0;
    virtual void restore(const Pids& pids) = 0;

    /// What an earlier run that ended without a word had left in force and this start has undone.
    struct Leftover {
        std::string action;  // "pause" or "demote"
        std::string target;
        Pids pids;
        Time at = 0;
    };
    virtual std::vector<Leftover> releaseLeftovers() = 0;
};

/// Which processes an adopter has for a good reason. Background task; may be cached for a minute.
class Services {
public:
    struct Reading {
        PidSet managed;
        PidSet adopters{1};
    };
    virtual ~Services() = default;
    virtual Reading read(const std::vector<Proc>& procs, Time now) = 0;
    /// Those of `candidates` that own a window or serve another process over a live connection, themselves or
    /// through a descendant.
    virtual PidSet engaged(const Pids& candidates, const std::vector<Proc>& procs) = 0;
};

/// An application as the desktop lists it.
struct RunningApp {
    /// Name of its bundle or desktop entry; empty if unknown.
    std::string bundleName;
    /// Display name; empty if unknown.
    std::string localizedName;
    Pid pid = 0;
};

/// The desktop's running applications. Main loop.
class Workspace {
public:
    virtual ~Workspace() = default;
    virtual std::vector<RunningApp> running() = 0;
    /// Group name of the application in front; absent if none or unknown.
    virtual std::optional<std::string> frontmost() = 0;
    /// False where the desktop does not tell which application has the focus.
    virtual bool knowsFocus() = 0;
    /// Calls back with the group name of each application that comes to the front. One observer.
    virtual void onActivation(std::function<void(const std::string&)> observer) = 0;
    /// Asks it to quit, politely; false if there is no way to ask.
    virtual bool terminate(const RunningApp& app) = 0;
    virtual bool isTerminated(const RunningApp& app) = 0;
    /// Path of the application's bundle or icon, by group name.
    virtual std::optional<std::string> iconPath(const std::string& group) = 0;
};

struct Notification {
    std::string title;
    std::string body;
    /// Identifier and title of each button, in order.
    std::vector<std::pair<std::string, std::string>> actions;
};

/// The desktop's notifications. Main loop.
class Notifier {
public:
    virtual ~Notifier() = default;
    /// Replaces the previous one.
    virtual void post(const Notification& notification) = 0;
    /// Answers later, on the main loop: whether the user or the desktop has switched them off.
    virtual void queryDenied(std::function<void(bool)> answer) = 0;
    /// Calls back with the identifier of the button pressed, "default" for the body.
    virtual void onAction(std::function<void(const std::string&)> observer) = 0;
    /// Within that call: the desktop's leave for the program to come to the front; empty if it gave none.
    virtual std::string activationToken() const { return {}; }
};

/// Per-user settings that survive restarts: a flat map from key to JSON value. Main loop.
class Defaults {
public:
    virtual ~Defaults() = default;
    /// Absent if there is none, or the store cannot be read.
    virtual std::optional<nlohmann::json> get(std::string_view key) = 0;
    /// Other keys that another process has written in between stay as they are. False if it could not be stored.
    virtual bool set(std::string_view key, const nlohmann::json& value) = 0;
    virtual bool remove(std::string_view key) = 0;
    /// True once after another process has changed the store.
    virtual bool changed() { return false; }
};

/// Where things lie. Absolute paths; none is made by being asked for.
struct Folders {
    std::filesystem::path home;
    std::filesystem::path log;
    std::filesystem::path formerLog;
    std::filesystem::path historyCache;
    std::filesystem::path settings;  // the file
    std::filesystem::path runtime;
    std::filesystem::path desktop;
    /// For what is thrown away again at once.
    std::filesystem::path temporary;
    /// Where the system, or the program itself, leaves reports of its crashes; their names begin with "Ravik".
    std::filesystem::path crashReports;
};

/// Moves things where the user can get them back from.
class Trash {
public:
    virtual ~Trash() = default;
    /// Absent if it went; else one sentence that says why it did not. Nothing is ever removed in place.
    virtual std::optional<std::string> move(const std::filesystem::path& path) = 0;
};

/// Packs a folder into one file. Any thread.
class Archive {
public:
    virtual ~Archive() = default;
    /// Writes a zip of `folder`, itself included under its own name, to `file`. Links are packed as links, never
    /// followed. Absent once `file` is there whole; else why it is not, as a sentence, and an earlier `file` is
    /// untouched. Gives up soon after `cancelled` says true; it may be empty.
    virtual std::optional<std::string> zip(const std::filesystem::path& folder, const std::filesystem::path& file,
                                           const std::function<bool()>& cancelled) = 0;
};

/// A run of the program that ended by a crash. 0 and the empty text: unknown.
struct CrashDiagnostic {
    int signal = 0;
    int exception = 0;
    std::string version;  // of the program that crashed
    std::string reason;

    friend bool operator==(const CrashDiagnostic&, const CrashDiagnostic&) = default;
};

/// A main loop that stood still.
struct HangDiagnostic {
    double seconds = 0;

    friend bool operator==(const HangDiagnostic&, const HangDiagnostic&) = default;
};

struct DiagnosticPayload {
    std::vector<CrashDiagnostic> crashes;
    std::vector<HangDiagnostic> hangs;

    friend bool operator==(const DiagnosticPayload&, const DiagnosticPayload&) = default;
};

/// The program's own crashes and hangs. Main loop.
class CrashReports {
public:
    virtual ~CrashReports() = default;
    /// What earlier runs left and no run has taken, oldest first. Each is given out once; the files that tell of them
    /// stay in Folders::crashReports, a bounded number.
    virtual std::vector<DiagnosticPayload> takeNew() = 0;
    /// From now on a crash of this process, and a main loop that does not turn for 2 seconds, leave a report. How the
    /// process ends stays as it is. Once.
    virtual void watch(const std::string& version) = 0;
};

/// The desktop's file manager. Main loop.
class FileViewer {
public:
    virtual ~FileViewer() = default;
    /// Shows the folder of the file with the file selected; nothing where there is no file manager to ask.
    virtual void reveal(const std::filesystem::path& file) = 0;
};

/// The main loop. post() and background() from any thread, the rest on the loop.
class MainLoop {
public:
    using Timer = std::uint64_t;  // 0 is none
    virtual ~MainLoop() = default;

    virtual void post(std::function<void()> work) = 0;
    virtual Timer after(double seconds, std::function<void()> work) = 0;
    /// Repeats until it is cancelled. A period below 1 ms counts as 1 ms.
    virtual Timer every(double seconds, std::function<void()> work) = 0;
    virtual void cancel(Timer timer) = 0;
    /// Runs `work` beside the loop; it hands its result back with post().
    virtual void background(std::function<void()> work) = 0;
    /// Until quit().
    virtual void run() = 0;
    virtual void quit() = 0;
};

class Clock {
public:
    virtual ~Clock() = default;
    virtual Time now() const = 0;
    /// Seconds that never go back, from any start.
    virtual double monotonic() const = 0;
};

/// The one process of a user that watches.
class WatchLock {
public:
    virtual ~WatchLock() = default;
    struct Refusal {
        /// Pid of the watcher; 0 if it cannot be told.
        Pid holder = 0;
        std::string sentence;
    };
    /// Absent once this process is the watcher. A lock whose owner has died is free.
    virtual std::optional<Refusal> acquire() = 0;
    /// The same without a wait for the watcher's name. True once this process is the watcher.
    virtual bool tryAcquire() { return !acquire(); }
    virtual void release() = 0;
};

/// A whole computer.
struct Platform {
    ProcessTable& processes;
    MachineReadings& machine;
    Signals& signals;
    Levers& levers;
    Services& services;
    Workspace& workspace;
    Notifier& notifier;
    Defaults& defaults;
    Trash& trash;
    MainLoop& loop;
    Clock& clock;
    WatchLock& watchLock;
    Archive& archive;
    CrashReports& crashReports;
    FileViewer& fileViewer;
    DesktopApp& desktopApp;
    Appearance& appearance;
    LoginItem& loginItem;
    Folders folders;
};

}  // namespace ravik
