#include "Cli/Parser.h"

#include <algorithm>
#include <deque>
#include <sstream>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "Cli/Table.h"

namespace ravik::cli {

namespace {

constexpr std::string_view defaultCommand = "diagnose";

/// Where the parser keeps what it reads; the places must not move.
struct Parsed {
    std::deque<std::string> words;
    std::deque<std::vector<std::string>> lists;
};

CLI::App* below(CLI::App& app, const std::string& word) {
    for (CLI::App* candidate : app.get_subcommands({})) {
        if (candidate->get_name() == word) return candidate;
    }
    return app.add_subcommand(word);
}

CLI::App* subcommand(CLI::App& root, std::string_view path) {
    CLI::App* app = &root;
    while (!path.empty()) {
        const std::size_t blank = path.find(' ');
        const std::string word(path.substr(0, blank));
        // Behind one word of a family, another of its words is a value.
        app->require_subcommand(0, 1);
        app = below(*app, word);
        path = blank == std::string_view::npos ? std::string_view{} : path.substr(blank + 1);
    }
    return app;
}

void declare(CLI::App& app, const Command& command, Parsed& parsed) {
    for (const Option& option : command.options) {
        const std::string name(option.name);
        if (option.value.empty() && !option.isPositional()) {
            // "--yes=false" must not pass for a yes.
            app.add_flag(name)->disable_flag_override();
            continue;
        }
        CLI::Option* declared = nullptr;
        if (option.repeated) {
            declared = app.add_option(name, parsed.lists.emplace_back());
            // An option takes one value each time it is given; a positional all that is left.
            if (!option.isPositional()) declared->allow_extra_args(false);
        } else {
            declared = app.add_option(name, parsed.words.emplace_back());
            declared->take_last();
        }
        declared->required(option.required);
    }
}

Arguments collect(const CLI::App& app, const Command& command) {
    Arguments arguments;
    for (const Option& option : command.options) {
        // One that stands before the last word of the command's name counts as well.
        for (const CLI::App* at = &app; at && !arguments.has(option.name); at = at->get_parent()) {
            const CLI::Option* given = at->get_option_no_throw(std::string(option.name));
            if (given && given->count() > 0) arguments.set(std::string(option.name), given->results());
        }
    }
    return arguments;
}

/// The command that the words begin with, the longest name first; null behind "--", where all words are values.
const Command* commandAtFront(const std::vector<std::string>& words) {
    if (std::ranges::find(words, "--") != words.end()) return nullptr;
    const Command* second = words.size() > 1 ? findCommand(words[0] + " " + words[1]) : nullptr;
    return second ? second : findCommand(words[0]);
}

/// The command that the words reached, the longest name first.
const Command* reached(const CLI::App& root, const CLI::App*& leaf) {
    std::string path;
    leaf = &root;
    for (;;) {
        const auto given = leaf->get_subcommands();
        if (given.empty()) break;
        leaf = given.front();
        path += (path.empty() ? "" : " ") + leaf->get_name();
    }
    return findCommand(path);
}

/// The parser's sentence; where that speaks of types and overrides, one of our own.
std::string told(const CLI::ParseError& error, const Command& command) {
    std::string text = error.what();
    const std::string word = text.substr(0, text.find_first_of(": "));
    if (!dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return text;
    for (const Option& option : command.options) {
        if (option.name == word) return fmt::format("{} needs a value", option.name);
        if (option.name == "--" + word || option.name == "-" + word)
            return fmt::format("{} takes no value", option.name);
    }
    return text;
}

int refuse(Context& context, const Command* command, std::string_view why) {
    const std::string line = printable(why.substr(0, why.find('\n')));
    if (command) {
        context.err << fmt::format("ravik {}: {} (expected: {}; see ravik help {})\n", command->name, line,
                                   usage(*command), command->name);
    } else {
        context.err << fmt::format("ravik: {} (see ravik help)\n", line);
    }
    return wrongWords;
}

/// What was printed has arrived. A reader that has seen enough needs no word about it.
bool isDelivered(Context& context) {
    if (context.out.flush()) return true;
    if (!context.computer.terminal().hasLostReader()) context.err << "ravik: the output could not be written\n";
    return false;
}

}  // namespace

int dispatch(Context& context, const std::vector<std::string>& words) {
    std::vector<std::string> given = words;
    if (!given.empty() && (given.front() == "--help" || given.front() == "-h")) given.front() = "help";
    if (!given.empty() && given.front() == "--version") given.front() = "version";
    if (given.empty() || given.front().starts_with('-')) given.emplace(given.begin(), defaultCommand);
    if (given.size() > 1 && (given.back() == "--help" || given.back() == "-h")) {
        if (const Command* asked = commandAtFront(given)) {
            given = {"help"};
            for (std::istringstream parts{std::string(asked->name)}; !parts.eof();) parts >> given.emplace_back();
        }
    }

    CLI::App root;
    root.set_help_flag();
    root.require_subcommand(1);
    Parsed parsed;
    for (const Command& command : commands()) {
        CLI::App* app = subcommand(root, command.name);
        app->set_help_flag();
        app->positionals_at_end(false);
        declare(*app, command, parsed);
    }

    const CLI::App* leaf = &root;
    try {
        root.parse(std::vector<std::string>(given.rbegin(), given.rend()));
    } catch (const CLI::ParseError& error) {
        const Command* command = reached(root, leaf);
        if (!command) command = findCommand(given.front());
        if (!command)
            return refuse(context, nullptr, fmt::format("there is no command \"{}\"", printable(given.front())));
        return refuse(context, command, told(error, *command));
    }
    const Command* command = reached(root, leaf);
    if (!command) return refuse(context, nullptr, fmt::format("\"{}\" needs one of its commands", given.front()));
    const int status = command->run(context, collect(*leaf, *command));
    return isDelivered(context) || status != done ? status : couldNot;
}

}  // namespace ravik::cli
