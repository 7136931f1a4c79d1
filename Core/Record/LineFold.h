#pragma once

#include <memory>
#include <string_view>

#include "Core/Record/DayAggregate.h"

namespace ravik {

/// Folds log lines into an aggregate, one after the other. Keeps its parser and what the lines before it found, so one
/// object serves many files; confined to one thread.
class LineFold {
public:
    LineFold();
    ~LineFold();
    LineFold(const LineFold&) = delete;
    LineFold& operator=(const LineFold&) = delete;

    /// The following lines go into `day`, which stays where it is meanwhile and is changed by nobody else.
    void begin(DayAggregate& day);
    /// One line without its line feed, behind it a control character and LogBytes::padding readable bytes. A line that
    /// does not fit is dropped.
    void apply(std::string_view line);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace ravik
