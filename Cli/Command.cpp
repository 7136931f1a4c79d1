#include "Cli/Command.h"

#include <algorithm>

#include <fmt/format.h>

namespace ravik::cli {

std::optional<std::string> Arguments::value(std::string_view name) const {
    const auto hit = m_values.find(name);
    if (hit == m_values.end() || hit->second.empty()) return {};
    return hit->second.back();
}

std::vector<std::string> Arguments::values(std::string_view name) const {
    const auto hit = m_values.find(name);
    return hit == m_values.end() ? std::vector<std::string>{} : hit->second;
}

const Command* findCommand(std::string_view name) {
    const auto hit = std::ranges::find(commands(), name, &Command::name);
    return hit == commands().end() ? nullptr : &*hit;
}

std::string usage(const Command& command) {
    std::string line = "ravik " + std::string(command.name);
    for (const Option& option : command.options) {
        std::string word(option.name);
        if (!option.isPositional() && !option.value.empty()) word.append(" ").append(option.value);
        if (!option.required) word = fmt::format("[{}]", word);
        if (option.repeated) word += "...";
        line.append(" ").append(word);
    }
    return line;
}

int refuseWords(Context& context, std::string_view command, std::string_view expected) {
    context.err << fmt::format("ravik {0}: {1} (see ravik help {0})\n", command, expected);
    return wrongWords;
}

}  // namespace ravik::cli
