#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Core/Base/Task.h"
#include "Core/Ending/Asker.h"
#include "Core/Screens/PanelScreen.h"
#include "Core/Watch/Monitor.h"

namespace ravik {

/// One opening of the menu bar panel: follows the Monitor, remembers what was done while it is open, and is thrown
/// away when the panel closes. It may go at any time, also from within a question or a notification of its own: what
/// was asked for goes on to its end and into the log, and nobody is told. Main loop.
class PanelModel {
public:
    /// Builds the bundle that a user can send, and says in one line what came of it.
    using SendFeedback = std::function<Task<std::string>()>;

    /// Begins to read the week's sentence in the background. `monitor`, `asker` and what `sendFeedback` needs must
    /// outlive what the panel has set going, not only the panel.
    PanelModel(Monitor& monitor, Asker& asker, SendFeedback sendFeedback);
    ~PanelModel();
    PanelModel(const PanelModel&) = delete;
    PanelModel& operator=(const PanelModel&) = delete;

    const PanelScreen& screen() const;
    /// Called after the screen has become another, at most once a turn of the loop. One observer.
    void onChange(std::function<void()> observer);

    // What a button does. Each names what it is about by the id on the screen and acts on what the Monitor says of it
    // now; what is no longer there, or is already under way, is left alone. While a question stands, no other is asked.

    /// The button of the row of the finding with this id.
    void run(const std::string& id);
    void free();
    /// The button "Keep This One Running" of the same.
    void keep(const std::string& id);
    void undo(std::uint64_t live);
    /// The suggestion with this id.
    void accept(const std::string& id);
    void dismiss(const std::string& id);
    void sendFeedback();

    /// While the user points at the rows, those there keep their places.
    void holdRows(bool hold);
    /// The pointer comes on the row of the finding with this id, or leaves it. Holds from the next reading on.
    void pointAt(const std::string& id, bool isOver);

private:
    struct State;
    /// Shared with what is under way, which may outlive the model.
    std::shared_ptr<State> m_state;
};

}  // namespace ravik
