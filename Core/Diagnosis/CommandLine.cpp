#include "Core/Diagnosis/CommandLine.h"

#include <algorithm>

#include "Core/Diagnosis/Classifier.h"

namespace ravik {

namespace {

bool takesInlineText(std::string_view option) {
    return option == "-c" || option == "-e" || option == "-p" || option == "--eval" || option == "--print";
}

bool takesValue(std::string_view option) {
    static const HostTables::Names options{"-r",
                                           "--require",
                                           "--import",
                                           "--loader",
                                           "--experimental-loader",
                                           "-C",
                                           "--conditions",
                                           "--env-file",
                                           "--title",
                                           "--max-old-space-size",
                                           "-W",
                                           "-X"};
    return options.contains(option);
}

}  // namespace

std::string_view CommandWords::next() {
    const std::size_t begin = m_rest.find_first_not_of(' ');
    if (begin == m_rest.npos) return m_rest = {};
    const std::size_t end = std::min(m_rest.find(' ', begin), m_rest.size());
    const std::string_view word = m_rest.substr(begin, end - begin);
    m_rest.remove_prefix(std::min(end + 1, m_rest.size()));
    return word;
}

bool startsWithAny(std::string_view text, const std::vector<std::string_view>& prefixes) {
    return std::ranges::any_of(prefixes, [&](std::string_view prefix) { return text.starts_with(prefix); });
}

std::string_view programName(const Proc& proc) {
    const std::string_view first = CommandWords(proc.command).next();
    return first.empty() ? std::string_view(proc.name) : Classifier::lastPathComponent(first);
}

std::string_view interpretedScript(const Proc& proc, const HostTables& tables) {
    CommandWords words(proc.command);
    words.next();
    for (std::string_view word = words.next(); !word.empty(); word = words.next()) {
        if (takesInlineText(word)) return {};
        if (takesValue(word)) {
            words.next();
        } else if (!word.starts_with('-') && !tables.launcherWords.contains(word)) {
            return word;
        }
    }
    return {};
}

}  // namespace ravik
