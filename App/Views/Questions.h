#pragma once

#include <QObject>
#include <QQuickWindow>

#include "App/Views/Program.h"
#include "App/Views/QmlFrame.h"
#include "Core/Ending/Asker.h"

namespace ravik::app {

/// Puts questions to the user, one at a time, each in a window of its own above all others. Main thread.
class Questions : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    Questions(QmlFrame& frame, const Program& program);
    /// Answers no.
    ~Questions() override;

    /// While one stands, another is refused, and the one that stands is brought to the front: whoever is about to
    /// answer must not find a different question under the pointer. Whoever asks is resumed from the loop.
    Task<bool> ask(const Confirmation& question);

    bool isStanding() const { return m_window != nullptr; }
    void raise();
    /// Answers no, at once, and to whatever is asked from now on.
    void end();

Q_SIGNALS:
    void asked();
    /// The window has gone; who asked has not heard it yet.
    void answered();

private:
    void put(const Confirmation& question, std::function<void(bool)> resume);
    void answer(bool yes);
    void resume(bool yes);

    QmlFrame& m_frame;
    const Program& m_program;
    QQuickWindow* m_window = nullptr;
    std::function<void(bool)> m_resume;
    bool m_hasEnded = false;
};

}  // namespace ravik::app
