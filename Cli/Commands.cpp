#include "Cli/AutopilotCommand.h"
#include "Cli/Command.h"
#include "Cli/DiskCommands.h"
#include "Cli/EndCommand.h"
#include "Cli/FeedbackCommand.h"
#include "Cli/Help.h"
#include "Cli/HistoryCommands.h"
#include "Cli/KeepCommand.h"
#include "Cli/LogCommand.h"
#include "Cli/OpenCommand.h"
#include "Cli/ReadingCommands.h"
#include "Cli/SettingsCommand.h"
#include "Cli/WatchCommand.h"

namespace ravik::cli {

namespace {

constexpr Option json{"--json", "print one JSON value"};
constexpr Option logs{"--logs", "a log folder in place of the program's own", "DIR"};
constexpr Option rule{"RULE", "pause or demote", {}, true};
constexpr Option root{"--root", "look for projects here in place of the usual folders", "DIR", false, true};
constexpr Option yes{"--yes", "answer the question with yes, for scripts"};

}  // namespace

const std::vector<Command>& commands() {
    static const std::vector<Command> table{
        {"diagnose",
         "What is slowing the machine: each cause with its amount, and what its remedy does",
         {json,
          {"--evidence", "show the evidence of each cause"},
          {"--capture", "write the reading to a file, for a bug report", "FILE"}},
         runDiagnose},
        {"watch",
         "Watch until interrupted: one line a tick, log lines and alerts as the desktop app",
         {{"--json", "print one JSON object a tick"}, {"--interval", "seconds between two ticks, 1 to 60", "S"}},
         runWatch},
        {"apps", "Every app with its memory, and whether it may be ended", {json}, runApps},
        {"ps",
         "Every process, and whether it may be ended",
         {json,
          {"--leftovers", "only what was left running after its window closed"},
          {"QUERY", "only rows whose name or command holds this"}},
         runPs},
        {"sessions", "AI coding sessions, and what ended ones left", {json}, runSessions},
        {"end",
         "End one process with everything it started, after a question",
         {{"PID", "the process", {}, true}, yes, json},
         runEnd},
        {"free", "End all that is safe to end, after one question", {yes, json}, runFree},
        {"quit",
         "Ask an application to quit, after a question",
         {{"APP", "its name, as ravik apps shows it", {}, true}, yes, json},
         runQuit},
        {"fix",
         "Run the remedy of one finding, after a question",
         {{"ID", "the finding, as ravik diagnose names it", {}, true}, yes, json},
         runFix},
        {"keep", "The programs that are left running whatever is found", {json}, runKeepList},
        {"keep list", "The same list", {json}, runKeepList},
        {"keep add", "Leave a program running", {{"CMD", "its whole command line", {}, true}}, runKeepAdd},
        {"keep remove",
         "Let a kept program be ended again",
         {{"CMD", "its whole command line", {}, true}},
         runKeepRemove},
        {"settings", "The limits, with their ranges", {json}, runSettings},
        {"settings set",
         "Change one limit",
         {{"KEY", "its name, as ravik settings shows it", {}, true}, {"VALUE", "the new value", {}, true}},
         runSettingsSet},
        {"settings reset", "Back to the defaults, but for the rule that ends leftovers", {}, runSettingsReset},
        {"disk", "Caches and stale build folders that can go to the Trash", {json, root}, runDisk},
        {"disk trash",
         "Move what ravik disk lists to the Trash, after a question",
         {{"PATH", "a folder that is listed", {}, true, true}, yes, root},
         runDiskTrash},
        {"history",
         "Did memory pressure fall after something was done: headline, lanes, events, the week",
         {{"--span", "day or week", "SPAN"},
          json,
          logs,
          {"--cache", "the folder of folded days, in place of the program's own", "DIR"},
          {"--now", "seconds since 1970 that stand for now", "T"}},
         runHistory},
        {"autopilot",
         "What the Autopilot would have done, how often it was right, and which rules are on",
         {json, logs},
         runAutopilot},
        {"autopilot approve", "Turn a rule on that has shown to be right", {rule, logs}, runAutopilotApprove},
        {"autopilot withdraw", "Turn a rule off", {rule, logs}, runAutopilotWithdraw},
        {"report",
         "Exactly what the usage report of a day would hold; nothing is sent",
         {json, logs, {"--day", "a day as 2026-03-01, today if not told", "D"}},
         runReport},
        {"feedback",
         "Pack the logs and crash reports into one zip that you can send; prints its path",
         {{"--into", "the folder to put it in, in place of your desktop folder", "DIR"}},
         runFeedback},
        {"log",
         "The lines of the event log",
         {{"-f", "go on with each new line"}, {"--kind", "only lines of this kind", "K", false, true}},
         runLog},
        {"replay",
         "A captured reading through the whole diagnosis again, as JSON",
         {{"FILE", "the capture; - is standard input", {}, true}},
         runReplay},
        {"open",
         "Bring up the desktop app, on a screen of its window",
         {{"DESTINATION", "diagnosis, sessions, processes, disk, history or autopilot"}},
         runOpen},
        {"version", "The version", {}, runVersion},
        {"help",
         "What the commands do",
         {{"--man", "the manual page, as roff"},
          {"--completions", "completions for a shell: bash, zsh or fish", "SHELL"},
          {"COMMAND", "only this one", {}, false, true}},
         runHelp},
    };
    return table;
}

}  // namespace ravik::cli
