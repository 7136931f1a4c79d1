#pragma once

#include <optional>
#include <string_view>

namespace ravik {

/// A regular expression, compiled once for the life of the program. Any thread. A pattern that does not compile is
/// a programming fault and ends the program.
class Regex {
public:
    /// `required`, where given, are bytes that every match contains, looked for first; they must live forever.
    explicit Regex(const char* pattern, std::string_view required = {});
    ~Regex();
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;

    /// The first match anywhere in the text, searched from its start. Bytes that are no valid UTF-8 match nothing.
    std::optional<std::string_view> find(std::string_view text) const;
    bool matches(std::string_view text) const { return find(text).has_value(); }

private:
    struct Code;
    Code* m_code;
};

/// The expressions that recognise programs by their command lines.
namespace Rx {

/// The app in a command line: "/([^/]+)\.app(/|$)".
const Regex& appBundle();
/// A program file named like a version number: "^\d+\.\d+".
const Regex& version();
/// What runs from inside an app bundle: "/[^/]+\.app/".
const Regex& insideApp();
/// What AI coding sessions leave behind: "mcp|_npx/|playwright|chrome-devtools|\.claude/".
const Regex& agentLeftover();
/// A browser that a script started with a throw-away profile.
const Regex& automationProfile();

}  // namespace Rx

}  // namespace ravik
