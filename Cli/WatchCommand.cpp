#include "Cli/WatchCommand.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Cli/Values.h"
#include "Core/Base/Iso8601.h"
#include "Core/Reading/Json.h"
#include "Core/Watch/Interval.h"
#include "Core/Watch/Monitor.h"
#include "Core/Watch/TickLines.h"
#include "Core/Wording/Fmt.h"

namespace ravik::cli {

namespace {

constexpr double shortest = 1.0;  // seconds, as in the settings
constexpr double longest = 60.0;

std::string tickObject(const Snapshot& snapshot) {
    nlohmann::json line = TickLines::tick(snapshot);
    nlohmann::json ids = nlohmann::json::array();
    for (const Finding& finding : snapshot.findings) ids.push_back(finding.id);
    line["findings"] = std::move(ids);
    line["freeableBytes"] = snapshot.freeableBytes();
    line["reclaimableBytes"] = snapshot.reclaimableBytes();
    line["takenAt"] = snapshot.takenAt;
    return printableJson(Json::text(line, -1));
}

}  // namespace

std::string statusLine(const Snapshot& snapshot, bool colour) {
    const SystemStats& stats = snapshot.stats;
    std::string line = fmt::format("{}  memory free {} % · swap {} GB · disk {:.0f} GB free · load {:.1f}",
                                   Iso8601::localClock(snapshot.takenAt), stats.memoryFreePercent,
                                   Fmt::gib(static_cast<double>(stats.swapUsedBytes)),
                                   static_cast<double>(stats.diskFreeBytes) * 0x1p-30, stats.loadAverage);
    if (stats.gpuPercent >= 0) line += fmt::format(" · GPU {} %", stats.gpuPercent);
    line += fmt::format(" · {} · {}", Fmt::plural(snapshot.processes.size(), "process"),
                        snapshot.findings.empty() ? "no findings" : Fmt::plural(snapshot.findings.size(), "finding"));
    if (snapshot.freeableBytes() > 0)
        line += fmt::format(" · {} can be freed", Fmt::amountText(snapshot.freeableBytes()));
    if (!snapshot.breaches.empty()) {
        const std::string over = fmt::format("{}", fmt::join(snapshot.breaches, ", "));
        line += colour ? fmt::format(" · \x1b[33mover the limit: {}\x1b[0m", over) : " · over the limit: " + over;
    }
    return line;
}

int runWatch(Context& context, const Arguments& arguments) {
    std::optional<double> interval;
    if (const auto text = arguments.value("--interval")) {
        interval = parseNumber(*text);
        if (!interval || *interval < shortest || *interval > longest) {
            return refuseWords(context, "watch",
                               fmt::format("--interval: expected seconds, {} to {}", shortest, longest));
        }
    } else if (const auto variable = context.computer.environment("TOLVANE_INTERVAL")) {
        interval = parseInterval(*variable);
    }
    if (const auto refusal = context.platform().watchLock.acquire()) {
        context.err << refusal->sentence << "\n";
        return couldNot;
    }

    MainLoop& loop = context.platform().loop;
    context.computer.onTermination([&loop] { loop.quit(); });
    context.log.event("launch", {{"version", RAVIK_VERSION}});
    Monitor monitor(context.platform(), context.log, context.host, Monitor::Role::watcher);
    if (interval) monitor.setInterval(*interval);
    const bool json = arguments.has("--json");
    const Subscription printing = monitor.observe([&](Monitor::Change change) {
        if (change != Monitor::Change::snapshot) return;
        context.out << (json ? tickObject(monitor.snapshot()) : statusLine(monitor.snapshot(), context.colour)) << "\n";
        if (!context.out.flush()) loop.quit();
    });
    context.platform().notifier.onAction([&context](const std::string& action) {
        context.log.event("notificationAction", {{"action", action}});
        context.err << (action == "free" ? "ravik free ends what is safe to end, after a question.\n"
                                         : "ravik diagnose tells what was found.\n");
    });
    monitor.start();
    monitor.watchFocus();
    for (const std::string& target : monitor.releasedAtStart()) {
        context.err << fmt::format("{} was still held back by an earlier run, and has been let go.\n",
                                   printable(target));
    }
    loop.run();
    monitor.retire();
    context.platform().notifier.onAction({});
    context.platform().watchLock.release();
    return done;
}

}  // namespace ravik::cli
