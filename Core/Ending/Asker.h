#pragma once

#include "Core/Base/Task.h"
#include "Core/Ending/Confirmation.h"
#include "Core/Record/Log.h"
#include "Platform/Platform.h"

namespace ravik {

/// Puts a question to the user: the panel and the terminal each answer in their way. However it is left other than
/// by the verb, the answer is no.
class Asker {
public:
    virtual ~Asker() = default;
    virtual Task<bool> ask(const Confirmation& question) = 0;
    /// Whether the program is the one in front, for the log.
    virtual bool isActive() { return true; }
};

/// Asks, and writes the "confirm" line for a no as well as for a yes.
Task<bool> askAndLog(Asker& asker, Confirmation question, Log& log, Clock& clock);

}  // namespace ravik
