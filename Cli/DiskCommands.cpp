#include "Cli/DiskCommands.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Cli/TerminalAsker.h"
#include "Core/Disk/ReclaimFence.h"
#include "Core/Disk/RunningPrograms.h"
#include "Core/Reading/Json.h"
#include "Core/Screens/DiskModel.h"
#include "Core/Screens/DiskScreen.h"
#include "Core/Watch/ProcessScanner.h"
#include "Core/Wording/Fmt.h"

namespace ravik::cli {

namespace {

/// Scans to the end, with a line of progress on a terminal. False if it was interrupted.
bool scan(Context& context, DiskModel& model) {
    MainLoop& loop = context.platform().loop;
    const bool shows = context.computer.terminal().isOutput();
    bool interrupted = false;
    context.computer.onTermination([&] {
        interrupted = true;
        model.cancelScan();
        loop.quit();
    });
    model.onChange([&] {
        if (shows) context.err << "\r\x1b[K" << (model.isScanning() ? DiskScreen::body(model).text : "") << std::flush;
        if (!model.isScanning()) loop.quit();
    });
    model.scan();
    while (model.isScanning() && !interrupted) loop.run();
    model.onChange({});
    // From here on, what has begun is brought to its end.
    context.computer.onTermination([&loop] { loop.quit(); });
    if (interrupted) context.err << "\nThe scan was interrupted; nothing was changed.\n";
    return !interrupted;
}

std::filesystem::path absolute(const std::string& word) {
    std::error_code error;
    const auto path = std::filesystem::absolute(word, error);
    const bool goesUp = std::ranges::find(path, "..") != path.end();
    return goesUp ? DiskScanner::resolved(path).value_or(path) : path.lexically_normal();
}

/// False, and a line of what is expected, if the words are wrong.
bool prepare(Context& context, const Arguments& arguments, DiskModel& model) {
    const auto given = arguments.values("--root");
    if (!given.empty()) model.projectRoots.clear();
    for (const std::string& root : given) {
        const auto path = absolute(root);
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            if (root.empty()) {
                refuseWords(context, "disk", "--root: expected a folder, not \"\"");
                return false;
            }
            context.err << "ravik disk: " << printable(root) << " is no folder that can be read\n";
        }
        model.projectRoots.push_back(path);
    }
    model.alsoRunning = [&context] {
        ProcessScanner scanner(context.platform().processes, context.platform().clock);
        return DiskScanner::runningPrograms(scanner.scan(), context.host);
    };
    return true;
}

}  // namespace

int runDisk(Context& context, const Arguments& arguments) {
    TerminalAsker asker(context, false);
    DiskModel model(context.platform(), context.log, context.host.kind, asker);
    if (!prepare(context, arguments, model)) return wrongWords;
    if (!scan(context, model)) return couldNot;
    if (arguments.has("--json")) {
        nlohmann::json rows = nlohmann::json::array();
        for (const Reclaimable& item : model.items()) {
            rows.push_back({{"id", item.id}, {"kind", item.kind}, {"bytes", item.bytes}, {"note", item.note}});
        }
        context.out << printableJson(Json::text(rows)) << "\n";
        return done;
    }
    if (model.items().empty()) {
        context.out << DiskScreen::body(model).text << "\n";
        return done;
    }
    Table table({Table::Align::right, Table::Align::left, Table::Align::left, Table::Align::left});
    for (const DiskScreen::Row& row : DiskScreen::rows(model))
        table.add({row.size + " GB", row.what, row.note, row.where});
    context.out << table.render(0);
    std::uint64_t bytes = 0;
    for (const Reclaimable& item : model.items()) bytes += item.bytes;
    context.out << fmt::format(
        "\n{} GB you can free on disk: ravik disk trash PATH... moves it to the Trash, and space "
        "returns when the Trash is emptied.\n",
        Fmt::gbByThousands(bytes));
    return done;
}

int runDiskTrash(Context& context, const Arguments& arguments) {
    TerminalAsker asker(context, arguments.has("--yes"));
    DiskModel model(context.platform(), context.log, context.host.kind, asker);
    if (!prepare(context, arguments, model)) return wrongWords;
    if (!scan(context, model)) return couldNot;

    bool all = true;
    for (const std::string& path : arguments.values("PATH")) {
        const auto wanted = DiskScanner::resolved(absolute(path));
        const auto row = std::ranges::find_if(model.items(), [&](const Reclaimable& item) {
            return item.id == path || (wanted && DiskScanner::resolved(item.id) == wanted);
        });
        if (row != model.items().end()) {
            model.setChecked(row->id, true);
            continue;
        }
        all = false;
        context.err << printable(model.whyNotListed(path)) << "\n";
    }
    if (model.checked().empty()) return couldNot;

    bool over = false;
    MainLoop& loop = context.platform().loop;
    spawn([](DiskModel& disk) -> Task<> { co_await disk.trashChecked(); }(model),
          [&] {
              over = true;
              loop.post([&loop] { loop.quit(); });
          });
    while (!over) loop.run();
    for (const std::string& failure : model.failures()) context.err << printable(failure) << "\n";
    if (asker.foundNobody()) {
        context.err << "Nothing was moved: there is nobody to ask here; --yes answers for a script.\n";
    }
    if (model.trashed()) context.out << *model.trashed() << "\n";
    return all && model.checked().empty() ? done : couldNot;
}

}  // namespace ravik::cli
