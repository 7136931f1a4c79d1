#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Core/Base/Task.h"
#include "Core/Ending/Asker.h"
#include "Core/Watch/Monitor.h"

namespace ravik {

/// The road from a button to a signal: builds the question, asks it, runs the fix and says in one line what came
/// of it. No line means that nothing happened that is worth one. Main loop.
class Actions {
public:
    Actions(Monitor& monitor, Asker& asker) : m_monitor(monitor), m_asker(asker) {}

    Task<std::optional<std::string>> run(Finding finding);
    /// All that is safe, after one question. `onConfirmed` is called once, after the yes.
    Task<std::optional<std::string>> freeAll(std::function<void()> onConfirmed);
    Task<std::optional<std::string>> end(Pid pid, std::string label);
    Task<std::optional<std::string>> quit(std::string app, std::uint64_t bytes);

    /// "3 ended · 0 survivors · 1.2 GB"
    static std::string resultLine(std::int64_t ended, const Pids& survivors, const Snapshot& snapshot,
                                  std::uint64_t bytes, const std::vector<std::string>& refused, const Host& host);

    /// What came of the last operation, beside its line.
    struct Outcome {
        enum class Kind { nothing, cancelled, refused, needsConfirmation, ended };
        Kind kind = Kind::nothing;
        Pids survivors;
    };
    const Outcome& outcome() const { return m_outcome; }

private:
    Task<bool> ask(Confirmation question);
    Task<std::optional<std::string>> endTrees(Finding finding, KillTrees remedy);
    Task<std::optional<std::string>> quitApp(Finding finding, QuitApp remedy);
    void note(const EndResult& result);

    Monitor& m_monitor;
    Asker& m_asker;
    Outcome m_outcome;
};

}  // namespace ravik
