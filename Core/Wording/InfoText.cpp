#include "Core/Wording/InfoText.h"

#include <algorithm>

#include <fmt/format.h>

#include "Core/Wording/AppInfo.h"
#include "Core/Wording/Fmt.h"

namespace ravik::InfoText {

namespace {

using Sections = std::vector<std::pair<std::string, std::string>>;

std::string about(const Snapshot& snapshot, const Host& host) {
    std::string logs = fmt::format("Logs stay on this {}.", host.nouns().machine);
    const auto own = std::ranges::find(snapshot.processes, host.pid, &Proc::id);
    if (own == snapshot.processes.end()) return logs;
    return fmt::format("{} of memory, {:.1f}% CPU. Read at {}. {}", Fmt::mb(own->footprintBytes), own->cpuPercent,
                       AppInfo::clock(snapshot.takenAt), logs);
}

Sections diagnosis(const Snapshot& snapshot, std::uint64_t ram, const Host& host) {
    const Nouns& nouns = host.nouns();
    const std::string memory = Fmt::amountText(ram);
    return {
        {"You can free (reclaimable)",
         "What Free ends now, plus what comes back when you quit an app yourself. A quit is an estimate: a browser "
         "gives back about half of what it holds."},
        {"Free",
         "Ends only what passed the safety check, after one confirmation. Quit is per app and never part of Free."},
        {"Safety check (the Safety gate)",
         "Nothing that is a database, a build, an install, an editor or an AI coding tool is ended, and nothing "
         "working harder than 5% CPU is ended without its own confirmation. A process that is not yours is never "
         "ended."},
        {"The bars", fmt::format("Each block is an app; its icon says which. Grey stays, amber is what Free ends, "
                                 "stripes come back when you quit. The line is your {} of memory.",
                                 memory)},
        {"Memory spilled to disk (swap)",
         fmt::format("When apps need more than your {}, {} writes the rest to disk. Disk is much slower than memory, "
                     "so {} slows. Right now: {} GB.",
                     memory, nouns.system, nouns.yourMachine,
                     Fmt::gib(static_cast<double>(snapshot.stats.swapUsedBytes)))},
        {"Map",
         "The same memory as a ring: inner = the apps holding it, outer = what each can give back. Click a part to "
         "see its causes."},
        {"Keys", fmt::format("Space opens a selected card's details · {} runs its button · {} reads {} again.",
                             nouns.confirmChord, nouns.refreshChord, nouns.theMachine)},
        {"Ravik itself", about(snapshot, host)},
    };
}

Sections sessions() {
    return {
        {"AI coding sessions (agent sessions)",
         "Claude Code, Cursor, Codex, Aider and Gemini. Each session starts helpers — servers, browsers, tools — that "
         "hold memory while it runs."},
        {"The rings",
         "One ring per session, all the same size; the number in the middle is the memory it holds. Each segment is "
         "one program it started. ⓘ under a ring lists them."},
        {"Left running after its window closed (orphan, no terminal)",
         "A program whose terminal or session has ended but kept running. These are usually safe to end."},
        {"The table",
         "Each row is one left-running program: how long it has run, the memory it holds, and what happens to it. "
         "Amber: Free ends it. Square: a database, left alone on purpose. Ring: busy, asks first. Grey: on your Keep "
         "list."},
    };
}

Sections processes(const Host& host) {
    return {
        {"Apps · Left running · Everything",
         "Apps groups every helper under its app. Left running shows programs whose window closed. Everything is "
         "every process."},
        {"Safe to end?",
         "safe: passes the safety check. asks first: it is busy (over 5% CPU). left alone: a database, a build, a "
         "system process or not yours — never ended from a button."},
        {"Quit and End",
         fmt::format("Quit asks an app to close, like {}, so it can save your work. End stops a program and what it "
                     "started: a polite stop, then a forced one after 3 seconds.",
                     host.nouns().quitChord)},
        {"Keep",
         "Keep leaves a program running for good: never in Free or Autopilot. Undo it in Settings › Kept running."},
    };
}

Sections disk(const Host& host) {
    return {
        {"What the scan looks at",
         "Known caches over 50 MB, old Playwright browsers, Claude Code transcripts of projects quiet for 30 days, "
         "and build folders (node_modules, target, .build, DerivedData) in projects you have not touched for 30 "
         "days."},
        {"Moving to the Trash",
         "Each folder is recreated by its tool the next time you build, and you can put any of it back from the "
         "Trash."},
        {"Why disk space matters",
         fmt::format("{} slows sharply with under about 15 GB free, because memory that spills to disk has nowhere "
                     "to go.",
                     host.nouns().system)},
    };
}

Sections history(const Host& host) {
    const Nouns& nouns = host.nouns();
    return {
        {"Memory spilled to disk (swap)",
         fmt::format("The line is the hourly average of memory {} had to write to disk. Lower is faster. The scale "
                     "stops above the busiest 2% of hours so one spike does not flatten the week; a spike off the "
                     "scale is named.",
                     nouns.system)},
        {"The marks",
         "A dashed line is a moment Ravik freed memory or you quit an app. The headline is the biggest drop in the "
         "hour after one."},
        {"What was running",
         "Each band is an app's memory through time, scaled to that app, so its shape reads. Hover the chart for the "
         "exact numbers at any hour."},
        {"Left running", "Bars show how long each left-running program lived, and end where Ravik ended it."},
        {"Where this comes from", fmt::format("Ravik's own log on this {}, averaged per hour. Nothing leaves {}.",
                                              nouns.machine, nouns.yourMachine)},
    };
}

Sections autopilot() {
    return {
        {"Learning, not acting yet (shadow mode)",
         "Autopilot decides what it would do — slow, pause or end background work — and writes it down, but acts on "
         "nothing."},
        {"Would have been wrong (regret)",
         "An hour later it checks each choice: if you used the app it would have paused, or the work woke up, that "
         "choice counts as wrong."},
        {"Turning a rule on",
         "A rule can act only after a week of choices with fewer than 5% wrong, and only once you approve it. "
         "Everything it does can be undone for 10 minutes."},
    };
}

}  // namespace

std::string title(Destination destination, const Host& host) {
    switch (destination) {
        case Destination::diagnosis: return fmt::format("How Ravik reads {}", host.nouns().yourMachine);
        case Destination::sessions: return "About AI coding sessions";
        case Destination::processes: return "About programs";
        case Destination::disk: return "About the disk scan";
        case Destination::history: return "About History";
        case Destination::autopilot: return "How Autopilot learns";
    }
    return {};
}

Sections sections(Destination destination, const Snapshot& snapshot, std::uint64_t ram, const Host& host) {
    switch (destination) {
        case Destination::diagnosis: return diagnosis(snapshot, ram, host);
        case Destination::sessions: return sessions();
        case Destination::processes: return processes(host);
        case Destination::disk: return disk(host);
        case Destination::history: return history(host);
        case Destination::autopilot: return autopilot();
    }
    return {};
}

}  // namespace ravik::InfoText
