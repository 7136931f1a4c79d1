#include "Platform/Linux/Interpreters.h"

#include <algorithm>

#include "Platform/Linux/CommandLine.h"

namespace ravik::platform {

namespace {

using Words = std::vector<std::string_view>;

struct Family {
    /// With a version behind them or not.
    Words names;
    /// Options whose value is the next argument.
    Words takeValue;
    /// Options that name or hold the program, so that no script follows.
    Words takeProgram;
};

const std::vector<Family>& families() {
    static const std::vector<Family> all{
        {{"python", "pypy"}, {"-W", "-X"}, {"-c", "-m"}},
        {{"node", "nodejs", "bun", "deno", "electron"},
         {"-r", "--require", "--import", "--loader", "--experimental-loader", "-C"},
         {"-e", "--eval", "-p", "--print"}},
        {{"java"}, {"-cp", "-classpath", "--class-path", "-p", "--module-path", "--add-modules"}, {"-m", "--module"}},
        {{"sh", "bash", "dash", "zsh", "ksh", "fish"}, {"-o", "-O", "+o", "+O"}, {"-c"}},
        {{"ruby", "jruby", "perl"}, {"-I", "-r"}, {"-e", "-E"}},
        {{"php", "lua", "luajit", "mono", "gjs", "gjs-console", "cjs", "dotnet", "R", "Rscript", "guile", "tclsh",
          "wish"},
         {},
         {"-e", "-r", "-c"}},
    };
    return all;
}

bool isVersion(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || c == '.' || c == '-'; });
}

const Family* familyOf(std::string_view name) {
    for (const Family& family : families()) {
        for (const std::string_view known : family.names) {
            if (name.starts_with(known) && isVersion(name.substr(known.size()))) return &family;
        }
    }
    return nullptr;
}

bool holds(const Words& words, std::string_view word) { return std::ranges::find(words, word) != words.end(); }

}  // namespace

bool isInterpreter(std::string_view name) { return familyOf(name) != nullptr; }

std::string_view scriptOf(const std::vector<std::string_view>& arguments) {
    if (arguments.empty()) return {};
    const std::string_view program = baseName(arguments.front());
    const Family* family = familyOf(program.starts_with('-') ? program.substr(1) : program);
    if (!family) return {};
    for (std::size_t at = 1; at < arguments.size(); ++at) {
        const std::string_view argument = arguments[at];
        if (argument.empty() || argument == "-") return {};
        if (argument == "--") return at + 1 < arguments.size() ? arguments[at + 1] : std::string_view{};
        if (argument.front() != '-' && argument.front() != '+') return argument;
        if (holds(family->takeProgram, argument)) return {};
        if (holds(family->takeValue, argument)) ++at;
    }
    return {};
}

}  // namespace ravik::platform
