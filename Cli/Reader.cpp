#include "Cli/Reader.h"

namespace ravik::cli {

std::unique_ptr<Monitor> readTwice(Context& context) {
    auto monitor = std::make_unique<Monitor>(context.platform(), context.log, context.host, Monitor::Role::reader);
    monitor->readNow();
    context.platform().signals.sleep(betweenReadings);
    monitor->readNow();
    return monitor;
}

}  // namespace ravik::cli
