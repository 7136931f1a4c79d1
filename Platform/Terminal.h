#pragma once

#include <functional>
#include <optional>
#include <string>

namespace ravik {

/// The terminal that a command was called from, if there is one.
class Terminal {
public:
    virtual ~Terminal() = default;
    /// True if a person can be asked: standard input and standard error are terminals.
    virtual bool canAsk() const = 0;
    /// True if standard output is a terminal.
    virtual bool isOutput() const = 0;
    /// True if standard output is a pipe whose reader has ended.
    virtual bool hasLostReader() const = 0;
    /// Columns of standard output; 80 where there are none.
    virtual int columns() const = 0;
    /// One line of standard input without its line feed; absent at its end and when the wait is interrupted
    /// (Ctrl-C), which then does not end the program. `prompt` shows what is asked: nobody who has seen it can
    /// interrupt more than the wait, and what was typed before it is dropped.
    virtual std::optional<std::string> readLine(const std::function<void()>& prompt) = 0;
};

}  // namespace ravik
