#pragma once

#include <filesystem>
#include <string>

namespace ravik::platform {

/// From now on a fatal signal, and an exception that nobody catches, writes `file` as ReportText reads it before the
/// process ends as it would have ended without: same signal, same core dump, same message. The folder is made if it
/// is missing, its parent is too. Signals that are ignored stay so; a forked child writes nothing. Main thread, once;
/// only this thread's stack may overflow and still be told of.
void installCrashHandler(const std::filesystem::path& file, const std::string& version);

}  // namespace ravik::platform
