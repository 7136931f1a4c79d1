#pragma once

#include <functional>

#include <QRect>

#include "Core/Ending/Asker.h"

namespace ravik::app {

/// The windows, behind one door: whoever opens them knows nothing of how they are drawn. Made when opened, destroyed
/// when closed. Main thread.
class Views : public Asker {
public:
    ~Views() override = default;

    /// Beneath the status item, whose place on the screen is `icon`; where that is unknown (empty), in the pointer's
    /// corner of the screen.
    virtual void openPanel(const QRect& icon) = 0;
    /// Nothing if there is none.
    virtual void closePanel() = 0;
    /// While its question stands it is open, though not on view.
    virtual bool isPanelOpen() const = 0;
    /// The panel closed a moment ago because it lost the focus, which is what a click on the status item does to it.
    virtual bool hasPanelJustLeft() const = 0;
    /// Brings the question that stands to the front; false if there is none.
    virtual bool raiseQuestion() = 0;

    /// Opens the main window, or brings it to the front. `token`: what the desktop gave for that; may be empty.
    virtual void openMain(const QByteArray& token) = 0;
    virtual void closeMain() = 0;
    virtual bool isMainOpen() const = 0;

    /// Says that the program goes on without a window and how to bring it back.
    virtual void tellUnseen() = 0;
    /// Calls back after the user has closed the main window. One observer.
    virtual void onMainClosed(std::function<void()> observer) = 0;

    /// Before the program ends: closes all, and answers the question that stands with no.
    virtual void end() = 0;
};

}  // namespace ravik::app
