#pragma once

#include <functional>
#include <memory>

#include "Platform/Platform.h"

namespace ravik::platform {

/// GLib's default main context, on which Qt runs as well. Made and destroyed on the loop's own thread; nothing that
/// was handed to it runs after its end. Where another loop turns that context (Qt's), run() is not called.
class GLibLoop : public MainLoop {
public:
    GLibLoop();
    ~GLibLoop() override;

    void post(std::function<void()> work) override;
    Timer after(double seconds, std::function<void()> work) override;
    Timer every(double seconds, std::function<void()> work) override;
    /// A timer that has fired, or 0, is no error.
    void cancel(Timer timer) override;
    void background(std::function<void()> work) override;
    void run() override;
    /// Any thread. Before run(): the next run() returns at once.
    void quit() override;

    /// Calls back on the loop with SIGINT, SIGTERM or SIGHUP in place of their default action, each time one comes.
    /// A signal that was ignored at the start (nohup) stays so. One observer.
    void onEndingSignal(std::function<void(int)> observer);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace ravik::platform
