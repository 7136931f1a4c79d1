#pragma once

#include <string>

#include "Core/Host/Host.h"
#include "Core/Watch/Snapshot.h"

namespace ravik {

/// What the status item shows. It is quiet unless there is something to get back.
struct Glyph {
    std::string symbol;
    std::string title;
    /// For those who hear the screen.
    std::string label;

    Glyph() = default;
    Glyph(const Snapshot& snapshot, const Host& host);

    /// Changes exactly when something that is seen changes.
    std::string key() const { return symbol + "|" + title; }

    friend bool operator==(const Glyph&, const Glyph&) = default;
};

}  // namespace ravik
