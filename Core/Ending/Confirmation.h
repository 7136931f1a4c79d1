#pragma once

#include <string>
#include <vector>

#include "Core/Base/Time.h"
#include "Core/Watch/Snapshot.h"
#include "Core/Wording/AppIcons.h"

namespace ravik {

/// One row of a question.
struct EvidenceLine {
    Tone tone = Tone::safe;
    /// Who it is, in plain words.
    std::string name;
    /// One sentence about it.
    std::string line;
    /// Formatted memory, or empty.
    std::string amount;
    IconRef icon;

    friend bool operator==(const EvidenceLine&, const EvidenceLine&) = default;
};

/// The question before anything ends. It names what will end and what stays, and however it is left other than by
/// its verb, the answer is no.
struct Confirmation {
    /// How many rows of a list stand in the question; the rest is counted.
    static constexpr std::size_t shownRows = 6;
    static constexpr const char* endsHeading = "Will end";
    static constexpr const char* leftAloneHeading = "Stays running";
    /// Stands under every question.
    static constexpr const char* note =
        "Ravik checks each one is still the same program, asks it to stop, and tells you if anything doesn't.";

    std::string title;
    std::string message;
    /// Label of the button that goes ahead.
    std::string verb;
    std::vector<EvidenceLine> ends;
    std::vector<EvidenceLine> leftAlone;

    friend bool operator==(const Confirmation&, const Confirmation&) = default;
};

/// "1 more" behind the rows that a question shows; empty where it shows them all.
std::string moreRows(const std::vector<EvidenceLine>& rows);

/// The question of one free-everything action: ends exactly what the batch will try, leaves alone every other
/// finding, each with the reason.
Confirmation freeConfirmation(const Snapshot& snapshot, const Host& host, Time now);

}  // namespace ravik
