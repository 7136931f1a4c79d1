#pragma once

#include "Core/Host/Host.h"
#include "Core/Record/Log.h"
#include "Platform/Computer.h"

namespace ravik {

// What every face puts together at its start, from the computer that it runs on.

/// What a platform asks the core about a process. Keeps a reference to `host`, which may be filled in later.
CoreRules coreRules(const Host& host);

/// Whose tables and words apply, and whose process this is.
Host hostOf(const Computer& computer);

/// A log of this run, in this computer's folders and by its clock; none is written under a test host. `createdAt`: the
/// platform's creationDate().
Log::Options logOptions(Computer& computer, std::optional<Time> (*createdAt)(const std::filesystem::path&));

}  // namespace ravik
