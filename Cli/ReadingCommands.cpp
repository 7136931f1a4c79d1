#include "Cli/ReadingCommands.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Reader.h"
#include "Cli/Table.h"
#include "Core/Reading/Capture.h"
#include "Core/Reading/Json.h"
#include "Core/Reading/Replay.h"
#include "Core/Screens/ProcessRows.h"
#include "Core/Wording/CardFace.h"
#include "Core/Wording/Fmt.h"
#include "Core/Wording/Plain.h"
#include "Core/Wording/Words.h"

namespace ravik::cli {

namespace {

using Align = Table::Align;

ProcessRows::Running runningNames(Context& context) {
    ProcessRows::Running names;
    for (const RunningApp& app : context.platform().workspace.running()) {
        for (const std::string& name : {app.bundleName, app.localizedName}) {
            if (!name.empty()) names.insert(name);
        }
    }
    return names;
}

std::string_view toneColour(Tone tone) {
    switch (tone) {
        case Tone::safe: return "\x1b[32m";
        case Tone::caution: return "\x1b[33m";
        case Tone::never: return "\x1b[31m";
        case Tone::advice: return "\x1b[36m";
    }
    return "";
}

std::string painted(std::string_view text, std::string_view code, bool colour) {
    return colour ? fmt::format("{}{}\x1b[0m", code, text) : std::string(text);
}

void printFinding(Context& context, const Finding& finding, const Monitor& monitor, const ProcessIndex& index,
                  bool evidence) {
    const Snapshot& snapshot = monitor.snapshot();
    const Host& host = monitor.host();
    const CardFace face(finding, snapshot, index, host, snapshot.takenAt);
    const std::string amount = finding.gainBytes > 0 ? Fmt::mb(finding.gainBytes) + " back" : "";
    context.out << painted(printable(Plain::name(finding, face, host)), "\x1b[1m", context.colour) << "  "
                << painted("[" + std::string(word(finding.tone())) + "]", toneColour(finding.tone()), context.colour)
                << (amount.empty() ? "" : "  " + amount) << "\n";
    if (const std::string sentence = Plain::sentence(finding, face, snapshot, host); !sentence.empty()) {
        context.out << "  " << printable(sentence) << "\n";
    }
    const bool runs = finding.kills() || finding.quits();
    context.out << "  " << printable(face.does) << (runs ? printable("  (ravik fix " + finding.id + ")") : "") << "\n";
    if (evidence) {
        context.out << "  " << printable(Plain::sentenceCase(finding.title)) << "\n";
        Table table({Align::left, Align::left});
        for (const auto& [label, value] : Words::evidence(finding)) table.add({"    " + label, value});
        context.out << table.render(0);
    }
    context.out << "\n";
}

bool writeCapture(Context& context, const Monitor& monitor, const std::string& path) {
    Capture capture;
    capture.reading = *monitor.reading();
    const auto names = runningNames(context);
    capture.running.assign(names.begin(), names.end());
    std::ranges::sort(capture.running);
    capture.foreground = context.platform().workspace.frontmost();
    capture.engineHistory.observedSince = capture.reading.now;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << Json::text(captureJson(capture)) << "\n";
    file.close();
    if (file) return true;
    context.err << fmt::format("ravik diagnose: {} could not be written\n", printable(path));
    return false;
}

std::string cpuText(double percent) { return fmt::format("{:.1f} %", percent); }

int printRows(Context& context, const Arguments& arguments, ProcessRows::Scope scope, std::string_view query) {
    const auto monitor = readTwice(context);
    const Snapshot& snapshot = monitor->snapshot();
    const ProcessIndex index(snapshot.processes);
    auto rows =
        ProcessRows::rows(snapshot, index, scope, query, runningNames(context), monitor->host(), snapshot.takenAt);
    if (arguments.has("--json")) {
        context.out << printableJson(Json::text(Json::rows(rows))) << "\n";
        return done;
    }
    std::ranges::stable_sort(rows, std::ranges::greater{}, &ProcRow::mb);
    const bool apps = scope == ProcessRows::Scope::apps;
    Table table(apps ? std::vector{Align::right, Align::right, Align::right, Align::left, Align::left}
                     : std::vector{Align::right, Align::right, Align::right, Align::right, Align::left, Align::left});
    const auto add = [&](std::string pid, std::string memory, std::string cpu, std::string age, std::string verdict,
                         std::string name) {
        std::vector<std::string> row{std::move(memory), std::move(cpu), std::move(age), std::move(verdict),
                                     std::move(name)};
        if (!apps) row.insert(row.begin(), std::move(pid));
        table.add(std::move(row));
    };
    add("PID", "MEMORY", "CPU", "RUNNING", "SAFE TO END?", "NAME");
    for (const ProcRow& row : rows) {
        std::string verdict(word(row.tone));
        if (row.word) verdict += ": " + *row.word;
        add(row.pid ? fmt::format("{}", *row.pid) : "", Fmt::mb(static_cast<std::uint64_t>(row.mb) << 20),
            cpuText(row.cpu), Diagnoser::hours(row.age), std::move(verdict), row.command);
    }
    if (rows.empty()) {
        context.out << (scope == ProcessRows::Scope::leftovers ? "Nothing left running.\n" : "No programs.\n");
        return done;
    }
    context.out << table.render(
        context.computer.terminal().isOutput() ? static_cast<std::size_t>(context.computer.terminal().columns()) : 0);
    return done;
}

}  // namespace

int runDiagnose(Context& context, const Arguments& arguments) {
    const auto monitor = readTwice(context);
    if (const auto path = arguments.value("--capture"); path && !writeCapture(context, *monitor, *path))
        return couldNot;
    const Snapshot& snapshot = monitor->snapshot();
    const ProcessIndex index(snapshot.processes);
    if (arguments.has("--json")) {
        context.out << printableJson(Json::text(Json::diagnosis(snapshot, index, monitor->host(), snapshot.takenAt)))
                    << "\n";
        return done;
    }
    for (const Finding& finding : snapshot.findings) {
        printFinding(context, finding, *monitor, index, arguments.has("--evidence"));
    }
    if (snapshot.findings.empty()) context.out << "Nothing is slowing " << monitor->host().nouns().yourMachine << ".\n";
    context.out << printable(Words::gapLine(snapshot)) << "\n";
    return done;
}

int runApps(Context& context, const Arguments& arguments) {
    return printRows(context, arguments, ProcessRows::Scope::apps, "");
}

int runPs(Context& context, const Arguments& arguments) {
    const auto scope = arguments.has("--leftovers") ? ProcessRows::Scope::leftovers : ProcessRows::Scope::all;
    return printRows(context, arguments, scope, arguments.value("QUERY").value_or(""));
}

int runSessions(Context& context, const Arguments& arguments) {
    const auto monitor = readTwice(context);
    const auto& sessions = monitor->snapshot().sessions;
    if (arguments.has("--json")) {
        context.out << printableJson(Json::text(Json::sessions(sessions))) << "\n";
        return done;
    }
    if (sessions.empty()) context.out << "No AI coding sessions, and nothing left of any.\n";
    Table table({Align::left, Align::right, Align::right, Align::left});
    for (const AgentSession& session : sessions) {
        table.add({session.tool, session.alive ? fmt::format("pid {}", session.id) : "",
                   Fmt::mb(session.footprintBytes()), Fmt::plural(session.members.size(), "process")});
    }
    context.out << table.render(0);
    return done;
}

int runReplay(Context& context, const Arguments& arguments) {
    const std::string path = *arguments.value("FILE");
    const CaptureResult read = path == "-" ? readCaptureStream(context.in, "standard input", context.host.kind)
                                           : readCaptureFile(path, context.host.kind);
    if (!read.capture) {
        context.err << printable(read.error) << "\n";
        return couldNot;
    }
    context.out << printableJson(Json::text(replay(*read.capture))) << "\n";
    return done;
}

}  // namespace ravik::cli
