#pragma once

#include <iostream>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Core/Base/Task.h"
#include "Core/Host/Host.h"
#include "Core/Record/Log.h"
#include "Platform/Computer.h"

namespace ravik::cli {

/// What the caller's words came to.
class Arguments {
public:
    bool has(std::string_view name) const { return m_values.contains(name); }
    /// The last value given.
    std::optional<std::string> value(std::string_view name) const;
    std::vector<std::string> values(std::string_view name) const;
    void set(std::string name, std::vector<std::string> values) { m_values[std::move(name)] = std::move(values); }

private:
    std::map<std::string, std::vector<std::string>, std::less<>> m_values;
};

/// What a command works with.
struct Context {
    Computer& computer;
    Log& log;
    Host host;
    std::ostream& out;
    std::ostream& err;
    /// Colour only on a terminal, and never with NO_COLOR.
    bool colour = false;
    std::istream& in = std::cin;

    Platform& platform() const { return computer.platform(); }
    Time now() const { return computer.platform().clock.now(); }
};

/// 0 done; 1 it could not or would not; 2 the call's words are wrong.
enum Status : int { done = 0, couldNot = 1, wrongWords = 2 };

/// Says in one line on standard error what is expected and where help is, and answers with wrongWords. What the line
/// quotes of the caller's words must be printable.
int refuseWords(Context& context, std::string_view command, std::string_view expected);

struct Option {
    /// "--json"; a positional has no dashes: "PID".
    std::string_view name;
    std::string_view help;
    /// What stands for its value, "FILE"; empty for a flag.
    std::string_view value = {};
    bool required = false;
    bool repeated = false;

    bool isPositional() const { return !name.starts_with('-'); }
};

/// One command. Parser, help, man page and completions all come from the table of these.
struct Command {
    /// "disk trash" is the command `trash` below `disk`.
    std::string_view name;
    std::string_view summary;
    std::vector<Option> options;
    int (*run)(Context&, const Arguments&);
};

/// All commands, in the order in which help lists them.
const std::vector<Command>& commands();
/// Null if there is none of that name.
const Command* findCommand(std::string_view name);

/// "ravik end PID [--yes] [--json]"
std::string usage(const Command& command);

/// Runs a task to its end on the main loop.
template <typename T>
T await(Context& context, Task<T> task) {
    std::optional<T> result;
    MainLoop& loop = context.platform().loop;
    spawn(std::move(task), [&](T value) {
        result.emplace(std::move(value));
        // The loop may not be running yet: the task can end at once.
        loop.post([&loop] { loop.quit(); });
    });
    while (!result) loop.run();
    return std::move(*result);
}

}  // namespace ravik::cli
