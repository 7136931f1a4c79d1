#include "Cli/Help.h"

#include <algorithm>

#include <fmt/format.h>

#include "Cli/Table.h"

namespace ravik::cli {

namespace {

std::string optionWord(const Option& option) {
    std::string word(option.name);
    if (!option.isPositional() && !option.value.empty()) word += " " + std::string(option.value);
    return word;
}

/// Words that stand in a roff text as they are.
std::string roff(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '-') {
            out += "\\-";
        } else if (c == '\\') {
            out += "\\\\";
        } else {
            out += c;
        }
    }
    return out;
}

std::string firstWord(std::string_view name) { return std::string(name.substr(0, name.find(' '))); }

/// The first words of all commands, each once.
std::vector<std::string> firstWords() {
    std::vector<std::string> words;
    for (const Command& command : commands()) {
        if (std::ranges::find(words, firstWord(command.name)) == words.end()) words.push_back(firstWord(command.name));
    }
    return words;
}

/// What may follow a first word: its second words and the options of all commands that begin with it.
std::vector<std::string> followers(const std::string& first) {
    std::vector<std::string> words;
    const auto add = [&](std::string word) {
        if (std::ranges::find(words, word) == words.end()) words.push_back(std::move(word));
    };
    for (const Command& command : commands()) {
        if (firstWord(command.name) != first) continue;
        if (first == "help") std::ranges::for_each(firstWords(), add);
        if (command.name.size() > first.size()) add(std::string(command.name.substr(first.size() + 1)));
        for (const Option& option : command.options) {
            if (!option.isPositional()) add(std::string(option.name));
        }
    }
    return words;
}

std::string bashCompletion() {
    std::string cases;
    for (const std::string& first : firstWords()) {
        cases += fmt::format("    {}) words=\"{}\" ;;\n", first, fmt::join(followers(first), " "));
    }
    return fmt::format(
        "_ravik() {{\n"
        "  local words=\"{}\"\n"
        "  if [ \"$COMP_CWORD\" -gt 1 ]; then\n"
        "    case \"${{COMP_WORDS[1]}}\" in\n{}    *) words=\"\" ;;\n    esac\n"
        "  fi\n"
        "  COMPREPLY=($(compgen -W \"$words\" -- \"${{COMP_WORDS[COMP_CWORD]}}\"))\n"
        "}}\n"
        "complete -o default -F _ravik ravik\n",
        fmt::join(firstWords(), " "), cases);
}

std::string zshCompletion() {
    std::string names;
    std::string cases;
    for (const std::string& first : firstWords()) {
        const Command* command = findCommand(first);
        std::string summary(command ? command->summary : "");
        std::ranges::replace(summary, '\'', ' ');
        std::ranges::replace(summary, ':', ',');
        names += fmt::format("    '{}:{}'\n", first, summary);
        cases += fmt::format("    {}) compadd -- {} ;;\n", first, fmt::join(followers(first), " "));
    }
    return fmt::format(
        "#compdef ravik\n"
        "_ravik() {{\n"
        "  local -a names=(\n{}  )\n"
        "  if (( CURRENT == 2 )); then _describe command names; return; fi\n"
        "  case \"$words[2]\" in\n{}  esac\n"
        "  _files\n"
        "}}\n"
        "_ravik \"$@\"\n",
        names, cases);
}

std::string fishCompletion() {
    std::string lines;
    for (const std::string& first : firstWords()) {
        const Command* command = findCommand(first);
        std::string summary(command ? command->summary : "");
        std::ranges::replace(summary, '\'', ' ');
        lines += fmt::format("complete -c ravik -n __fish_use_subcommand -a {} -d '{}'\n", first, summary);
        for (const std::string& word : followers(first)) {
            if (word.starts_with("--")) {
                lines +=
                    fmt::format("complete -c ravik -n '__fish_seen_subcommand_from {}' -l {}\n", first, word.substr(2));
            } else if (!word.starts_with('-')) {
                lines += fmt::format("complete -c ravik -n '__fish_seen_subcommand_from {}' -a {}\n", first, word);
            }
        }
    }
    return lines;
}

}  // namespace

std::string overview() {
    Table table({Table::Align::left, Table::Align::left});
    for (const Command& command : commands())
        table.add({"  " + std::string(command.name), std::string(command.summary)});
    return "ravik: what is slowing this machine, and what can safely be done about it?\n\n"
           "Without a command it is ravik diagnose.\n\n" +
           table.render(0) + "\nravik help COMMAND tells more of one.\n";
}

std::string helpText(const Command& command) {
    std::string text = fmt::format("{}\n\n{}\n", usage(command), command.summary);
    if (command.options.empty()) return text;
    Table table({Table::Align::left, Table::Align::left});
    for (const Option& option : command.options) table.add({"  " + optionWord(option), std::string(option.help)});
    return text + "\n" + table.render(0);
}

std::string manPage() {
    std::string page = fmt::format(
        ".TH RAVIK 1 \"\" \"ravik {}\"\n.SH NAME\nravik \\- what is slowing this machine, and what can safely be done "
        "about it\n.SH SYNOPSIS\n.B ravik\n[\\fICOMMAND\\fR] [\\fIOPTION\\fR]...\n.SH COMMANDS\n",
        RAVIK_VERSION);
    for (const Command& command : commands()) {
        page += fmt::format(".TP\n.B {}\n{}\n", roff(usage(command)), roff(command.summary));
        if (command.options.empty()) continue;
        page += ".RS\n";
        for (const Option& option : command.options) {
            page += fmt::format(".TP\n.I {}\n{}\n", roff(optionWord(option)), roff(option.help));
        }
        page += ".RE\n";
    }
    page +=
        ".SH EXIT STATUS\n.TP\n.B 0\ndone\n.TP\n.B 1\nit could not or would not\n.TP\n.B 2\nthe call's words are "
        "wrong\n";
    return page;
}

std::optional<std::string> completions(std::string_view shell) {
    if (shell == "bash") return bashCompletion();
    if (shell == "zsh") return zshCompletion();
    if (shell == "fish") return fishCompletion();
    return {};
}

int runHelp(Context& context, const Arguments& arguments) {
    if (arguments.has("--man")) {
        context.out << manPage();
        return done;
    }
    if (const auto shell = arguments.value("--completions")) {
        const auto script = completions(*shell);
        if (!script) {
            return refuseWords(
                context, "help",
                fmt::format("there are completions for bash, zsh and fish, not for \"{}\"", printable(*shell)));
        }
        context.out << *script;
        return done;
    }
    const auto words = arguments.values("COMMAND");
    if (words.empty()) {
        context.out << overview();
        return done;
    }
    const std::string name = fmt::format("{}", fmt::join(words, " "));
    const Command* command = findCommand(name);
    if (!command) {
        context.err << fmt::format("ravik help: there is no command \"{}\" (see ravik help)\n", printable(name));
        return wrongWords;
    }
    context.out << helpText(*command);
    for (const Command& other : commands()) {
        if (other.name.starts_with(name + " ")) context.out << "\n" << helpText(other);
    }
    return done;
}

int runVersion(Context& context, const Arguments&) {
    context.out << "ravik " << RAVIK_VERSION << "\n";
    return done;
}

}  // namespace ravik::cli
