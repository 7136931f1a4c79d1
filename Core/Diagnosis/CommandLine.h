#pragma once

#include <string_view>
#include <vector>

#include "Core/Host/Host.h"
#include "Core/Watch/Proc.h"

/// What a command line, arguments joined by blanks, tells by itself. The views live as long as the process record.
namespace ravik {

/// The words of a text, parted by blanks; empty ones are passed over.
class CommandWords {
public:
    explicit CommandWords(std::string_view text) : m_rest(text) {}

    /// The next word; empty at the end.
    std::string_view next();
    /// Everything behind the last word and the one blank behind that.
    std::string_view rest() const { return m_rest; }

private:
    std::string_view m_rest;
};

bool startsWithAny(std::string_view text, const std::vector<std::string_view>& prefixes);

/// The base name of the first word, or the process's name if there is no word.
std::string_view programName(const Proc& proc);

/// What an interpreter runs: its first argument that is neither an option, nor the value of one, nor a launcher
/// word. Empty if there is none, or if the program's text stands in the arguments themselves.
std::string_view interpretedScript(const Proc& proc, const HostTables& tables);

}  // namespace ravik
