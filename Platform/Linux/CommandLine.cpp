#include "Platform/Linux/CommandLine.h"

#include <algorithm>

#include "Platform/Linux/Interpreters.h"
#include "Platform/Linux/Utf8.h"

namespace ravik::platform {

namespace {

constexpr std::size_t commBytes = 15;
constexpr std::size_t namingArguments = 4;

std::string_view cutTitle(std::string_view text) { return text.substr(0, text.find_first_of(": ")); }

// "sshd: root@pts/0" has its "/" behind the cut, "/opt/my tools/daemon" before it: both orders are tried.
std::vector<std::string_view> namesIn(std::string_view first) {
    const auto bare = [](std::string_view text) { return text.starts_with('-') ? text.substr(1) : text; };
    return {bare(cutTitle(baseName(first))), baseName(bare(cutTitle(first)))};
}

std::string_view nameFromArguments(std::string_view comm, const std::vector<std::string_view>& arguments) {
    if (arguments.empty()) return {};
    for (const std::string_view name : namesIn(arguments.front())) {
        if (isNamed(name, comm)) return name;
    }
    for (std::size_t at = 1; at < arguments.size() && at < namingArguments; ++at) {
        const std::string_view name = baseName(arguments[at]);
        if (isNamed(name, comm)) return name;
    }
    return {};
}

// Written over the arguments: what remains is one text, which no path begins.
bool isTitle(const std::vector<std::string_view>& arguments) {
    const auto filled = std::ranges::count_if(arguments, [](std::string_view argument) { return !argument.empty(); });
    if (filled != 1 || arguments.front().empty() || arguments.front().front() == '/') return false;
    return arguments.size() > 1 || arguments.front().find_first_of(": ") != std::string_view::npos;
}

}  // namespace

std::vector<std::string_view> splitArguments(std::string_view area) {
    std::vector<std::string_view> arguments;
    for (std::size_t end = area.find('\0'); end != std::string_view::npos; end = area.find('\0')) {
        arguments.push_back(area.substr(0, end));
        area.remove_prefix(end + 1);
    }
    return arguments;
}

std::optional<std::string> joinArguments(const std::vector<std::string_view>& arguments) {
    std::string joined;
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        if (at > 0) joined += ' ';
        joined += arguments[at];
    }
    joined.erase(joined.find_last_not_of(' ') + 1);
    if (joined.empty()) return {};
    return repairedUtf8(joined);
}

std::string_view baseName(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string_view withoutDeleted(std::string_view path) {
    constexpr std::string_view mark = " (deleted)";
    if (path.ends_with(mark)) path.remove_suffix(mark.size());
    return path;
}

bool isNamed(std::string_view candidate, std::string_view comm) {
    return !candidate.empty() && candidate.substr(0, commBytes) == comm;
}

bool namedByArguments(std::string_view comm, const std::vector<std::string_view>& arguments) {
    return !nameFromArguments(comm, arguments).empty() || isTitle(arguments);
}

std::string processName(std::string_view comm, const std::vector<std::string_view>& arguments,
                        std::string_view executable) {
    std::string_view name = nameFromArguments(comm, arguments);
    const std::string_view program = baseName(withoutDeleted(executable));
    if (name.empty() && isNamed(program, comm)) name = program;
    if (name.empty() && isTitle(arguments)) name = comm;
    if (name.empty() && !arguments.empty()) {
        const std::string_view first = namesIn(arguments.front()).front();
        if (isInterpreter(first)) name = first;
    }
    if (name.empty()) name = program;
    return repairedUtf8(name.empty() ? comm : name);
}

}  // namespace ravik::platform
