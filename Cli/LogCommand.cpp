#include "Cli/LogCommand.h"

#include "Cli/Table.h"
#include "Core/Record/LogTail.h"

namespace ravik::cli {

namespace {

constexpr double followSeconds = 0.25;

}  // namespace

int runLog(Context& context, const Arguments& arguments) {
    LogTail tail(context.platform().folders.log, arguments.values("--kind"));
    const bool isSeen = context.computer.terminal().isOutput();
    const auto print = [&] {
        tail.read([&](std::string_view line) {
            if (isSeen) {
                context.out << printableJson(line) << '\n';
            } else {
                context.out << line << '\n';
            }
        });
        return !context.out.flush().fail() && !context.computer.terminal().hasLostReader();
    };
    if (!print() || !arguments.has("-f")) return done;
    MainLoop& loop = context.platform().loop;
    context.computer.onTermination([&loop] { loop.quit(); });
    const auto timer = loop.every(followSeconds, [&] {
        if (!print()) loop.quit();
    });
    loop.run();
    loop.cancel(timer);
    return done;
}

}  // namespace ravik::cli
