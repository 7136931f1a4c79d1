#include "Cli/DiskCommands.h"

#include <algorithm>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Cli/Table.h"
#include "Cli/TerminalAsker.h"
#include "Core/Disk/ReclaimFence.h"
#include "Core/Reading/Json.h"
#include "Core/Screens/DiskModel.h"
#include "Core/Screens/DiskScreen.h"
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
    if (interrupted) context.err << "\nThe scan was interrupted; nothing was changed.\n";
    return !interrupted;
}

void useRoots(const Arguments& arguments, DiskModel& model) {
    const auto given = arguments.values("--root");
    if (!given.empty()) model.projectRoots.clear();
    for (const std::string& root : given) model.projectRoots.emplace_back(std::filesystem::absolute(root));
}

}  // namespace

int runDisk(Context& context, const Arguments& arguments) {
    TerminalAsker asker(context, false);
    DiskModel model(context.platform(), context.log, context.host.kind, asker);
    useRoots(arguments, model);
    if (!scan(context, model)) return couldNot;
    if (arguments.has("--json")) {
        nlohmann::json rows = nlohmann::json::array();
        for (const Reclaimable& item : model.items()) {
            rows.push_back({{"id", item.id}, {"kind", item.kind}, {"bytes", item.bytes}, {"note", item.note}});
        }
        context.out << Json::text(rows) << "\n";
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
    useRoots(arguments, model);
    if (!scan(context, model)) return couldNot;

    bool all = true;
    for (const std::string& path : arguments.values("PATH")) {
        const auto wanted = DiskScanner::resolved(std::filesystem::absolute(path));
        const auto row = std::ranges::find_if(model.items(), [&](const Reclaimable& item) {
            return item.id == path || (wanted && DiskScanner::resolved(item.id) == wanted);
        });
        if (row != model.items().end()) {
            model.setChecked(row->id, true);
            continue;
        }
        all = false;
        context.err << printable(DiskScanner::description(DiskScanner::OutsideKnownRoots{path})) << "\n";
    }
    if (model.checked().empty()) return couldNot;

    const std::size_t ticked = model.checked().size();
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
    return all && model.checked().empty() && ticked > 0 ? done : couldNot;
}

}  // namespace ravik::cli
