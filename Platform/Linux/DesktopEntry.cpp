#include "Platform/Linux/DesktopEntry.h"

#include <algorithm>
#include <array>

#include "Platform/Linux/CommandLine.h"
#include "Platform/Linux/Interpreters.h"
#include "Platform/Linux/Utf8.h"

namespace ravik::platform {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t\r";
    const std::size_t begin = text.find_first_not_of(blank);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(blank) - begin + 1);
}

std::string unescaped(std::string_view value) {
    std::string plain;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] != '\\' || at + 1 == value.size()) {
            plain += value[at];
            continue;
        }
        switch (value[++at]) {
            case 's': plain += ' '; break;
            case 'n': plain += '\n'; break;
            case 't': plain += '\t'; break;
            case 'r': plain += '\r'; break;
            case '\\': plain += '\\'; break;
            default: (plain += '\\') += value[at];
        }
    }
    return plain;
}

std::vector<std::string> splitList(std::string_view value) {
    std::vector<std::string> items;
    while (!value.empty()) {
        const std::size_t end = std::min(value.find(';'), value.size());
        if (end > 0) items.emplace_back(value.substr(0, end));
        value.remove_prefix(std::min(end + 1, value.size()));
    }
    return items;
}

// "NAME=value" before a program.
bool isAssignment(std::string_view word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string_view::npos || equals == 0) return false;
    return std::ranges::all_of(word.substr(0, equals), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    });
}

std::size_t skipWrapping(const std::vector<std::string>& words) {
    std::size_t at = 0;
    while (at < words.size()) {
        if (isAssignment(words[at])) {
            ++at;
        } else if (baseName(words[at]) == "env") {
            for (++at; at < words.size() && (words[at].starts_with('-') || isAssignment(words[at])); ++at) {
                if (words[at] == "-u" || words[at] == "-C" || words[at] == "--chdir") ++at;
            }
        } else {
            break;
        }
    }
    return std::min(at, words.size());
}

void takeFlatpak(LaunchTarget& target) {
    constexpr std::string_view command = "--command=";
    bool runs = false;
    for (const std::string& word : target.arguments) {
        if (word.starts_with(command)) {
            target.flatpakCommand = word.substr(command.size());
        } else if (word == "run" && !runs) {
            runs = true;
        } else if (runs && !word.starts_with('-') && target.flatpak.empty()) {
            target.flatpak = word;
        }
    }
}

}  // namespace

bool DesktopEntry::hasCategory(std::string_view category) const {
    return std::ranges::find(categories, category) != categories.end();
}

bool DesktopEntry::isTypedIn() const { return isTerminal() || hasCategory("TextEditor") || hasCategory("IDE"); }

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, std::string id) {
    DesktopEntry entry;
    entry.id = std::move(id);
    bool isEntryGroup = false;
    bool isApplication = false;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[') {
            isEntryGroup = line == "[Desktop Entry]";
            continue;
        }
        const std::size_t equals = line.find('=');
        if (!isEntryGroup || equals == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string value = unescaped(trimmed(line.substr(equals + 1)));
        if (key == "Type") {
            isApplication = value == "Application";
        } else if (key == "Name") {
            entry.name = repairedUtf8(value);
        } else if (key == "Exec") {
            entry.exec = value;
        } else if (key == "TryExec") {
            entry.tryExec = value;
        } else if (key == "Categories") {
            entry.categories = splitList(value);
        } else if (key == "Hidden") {
            entry.isHidden = value == "true";
        } else if (key == "NoDisplay") {
            entry.isDisplayed = value != "true";
        } else if (key == "X-Flatpak") {
            entry.flatpak = value;
        } else if (key == "X-SnapInstanceName") {
            entry.snap = value;
        }
    }
    if (!entry.isHidden && (!isApplication || entry.name.empty())) return {};
    return entry;
}

std::vector<std::string> splitExec(std::string_view exec) {
    std::vector<std::string> words;
    std::string word;
    bool isOpen = false;
    bool isQuoted = false;
    for (std::size_t at = 0; at < exec.size(); ++at) {
        const char c = exec[at];
        const bool hasNext = at + 1 < exec.size();
        if (c == '"') {
            isQuoted = !isQuoted;
            isOpen = true;
        } else if (c == '\\' && hasNext) {
            word += exec[++at];
            isOpen = true;
        } else if ((c == ' ' || c == '\t') && !isQuoted) {
            if (isOpen) words.push_back(std::move(word));
            word.clear();
            isOpen = false;
        } else if (c == '%' && hasNext) {
            // "%%" is a per cent sign; every other code stands for what the desktop puts there.
            if (exec[++at] == '%') {
                word += '%';
                isOpen = true;
            }
        } else {
            word += c;
            isOpen = true;
        }
    }
    if (isOpen) words.push_back(std::move(word));
    return words;
}

LaunchTarget launchTarget(std::string_view exec) {
    const std::vector<std::string> words = splitExec(exec);
    const std::size_t begin = skipWrapping(words);
    LaunchTarget target;
    if (begin == words.size()) return target;
    target.program = words[begin];
    target.arguments.assign(words.begin() + static_cast<std::ptrdiff_t>(begin) + 1, words.end());
    const std::string_view name = baseName(target.program);
    if (name == "flatpak") {
        takeFlatpak(target);
        target.program.clear();
    } else if (isInterpreter(name)) {
        target.script = scriptOf({words.begin() + static_cast<std::ptrdiff_t>(begin), words.end()});
    }
    return target;
}

}  // namespace ravik::platform
