#include <clocale>
#include <iostream>

#include "Cli/Parser.h"
#include "Core/Watch/Composition.h"

int main(int argc, char** argv) {
    using namespace ravik;
    std::ios::sync_with_stdio(false);

    Host host;
    const auto computer = makeComputer(coreRules(host), "ravik watch");
    host = hostOf(*computer);
    Log log(logOptions(*computer, creationDate));
    cli::Context context{*computer, log, host, std::cout, std::cerr};
    context.colour = computer->terminal().isOutput() && !computer->environment("NO_COLOR");
    return cli::dispatch(context, {argv + 1, argv + argc});
}
