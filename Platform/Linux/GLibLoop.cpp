#include "Platform/Linux/GLibLoop.h"

#include <atomic>
#include <cmath>
#include <csignal>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include <glib-unix.h>

#include "Platform/Linux/WorkerPool.h"

namespace ravik::platform {

namespace {

using Work = std::function<void()>;

template <typename Data>
void destroy(gpointer data) {
    delete static_cast<Data*>(data);
}

guint milliseconds(double seconds) {
    // Not a number counts as none.
    return seconds > 0 ? static_cast<guint>(std::fmin(std::ceil(seconds * 1000), 4e9)) : 0;
}

void end(GSource* source) {
    g_source_destroy(source);
    g_source_unref(source);
}

}  // namespace

struct GLibLoop::State {
    struct TimerCall {
        State* state;
        Timer id;
        Work work;
        bool repeats;
    };
    struct SignalCall {
        State* state;
        int number;
    };

    void post(Work work);
    Timer start(double seconds, Work work, bool repeats);
    void cancel(Timer timer);
    void watch(int number);

    static gboolean drain(gpointer data);
    static gboolean fire(gpointer data);
    static gboolean hear(gpointer data);

    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    std::atomic<bool> quitting = false;

    std::mutex mutex;  // guards what is posted and the source that will run it
    std::vector<Work> posted;
    GSource* draining = nullptr;

    std::unordered_map<Timer, GSource*> timers;
    Timer lastTimer = 0;
    std::vector<GSource*> signals;
    std::function<void(int)> onSignal;

    std::unique_ptr<WorkerPool> workers = std::make_unique<WorkerPool>();
};

void GLibLoop::State::post(Work work) {
    const std::lock_guard lock(mutex);
    posted.push_back(std::move(work));
    if (draining) return;
    draining = g_idle_source_new();
    g_source_set_priority(draining, G_PRIORITY_DEFAULT);
    g_source_set_callback(draining, &State::drain, this, nullptr);
    g_source_attach(draining, nullptr);
}

gboolean GLibLoop::State::drain(gpointer data) {
    auto& state = *static_cast<State*>(data);
    std::vector<Work> works;
    {
        const std::lock_guard lock(state.mutex);
        works.swap(state.posted);
        g_source_unref(state.draining);
        state.draining = nullptr;
    }
    for (auto& work : works) std::exchange(work, nullptr)();
    return G_SOURCE_REMOVE;
}

MainLoop::Timer GLibLoop::State::start(double seconds, Work work, bool repeats) {
    const Timer id = ++lastTimer;
    const guint period = milliseconds(seconds);
    GSource* source = g_timeout_source_new(repeats && period == 0 ? 1 : period);
    g_source_set_callback(source, &State::fire, new TimerCall{this, id, std::move(work), repeats}, destroy<TimerCall>);
    g_source_attach(source, nullptr);
    timers.emplace(id, source);
    return id;
}

gboolean GLibLoop::State::fire(gpointer data) {
    // The source keeps the call until this returns, also when the work cancels its own timer.
    auto& call = *static_cast<TimerCall*>(data);
    if (!call.repeats) {
        const auto timer = call.state->timers.find(call.id);
        g_source_unref(timer->second);
        call.state->timers.erase(timer);
    }
    call.work();
    return call.repeats ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
}

void GLibLoop::State::cancel(Timer timer) {
    const auto found = timers.find(timer);
    if (found == timers.end()) return;
    GSource* source = found->second;
    timers.erase(found);
    end(source);
}

void GLibLoop::State::watch(int number) {
    struct sigaction present {};
    if (sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_IGN) return;
    GSource* source = g_unix_signal_source_new(number);
    g_source_set_callback(source, &State::hear, new SignalCall{this, number}, destroy<SignalCall>);
    g_source_attach(source, nullptr);
    signals.push_back(source);
}

gboolean GLibLoop::State::hear(gpointer data) {
    const auto& call = *static_cast<SignalCall*>(data);
    call.state->onSignal(call.number);
    return G_SOURCE_CONTINUE;
}

GLibLoop::GLibLoop() : m_state(std::make_unique<State>()) {}

GLibLoop::~GLibLoop() {
    m_state->workers.reset();
    for (const auto& [id, source] : m_state->timers) end(source);
    for (GSource* source : m_state->signals) end(source);
    if (m_state->draining) end(m_state->draining);
    g_main_loop_unref(m_state->loop);
}

void GLibLoop::post(std::function<void()> work) { m_state->post(std::move(work)); }

MainLoop::Timer GLibLoop::after(double seconds, std::function<void()> work) {
    return m_state->start(seconds, std::move(work), false);
}

MainLoop::Timer GLibLoop::every(double seconds, std::function<void()> work) {
    return m_state->start(seconds, std::move(work), true);
}

void GLibLoop::cancel(Timer timer) { m_state->cancel(timer); }

void GLibLoop::background(std::function<void()> work) { m_state->workers->run(std::move(work)); }

void GLibLoop::run() {
    // A quit() that comes between the test and the loop's start is seen by the work that runs first.
    post([state = m_state.get()] {
        if (state->quitting) g_main_loop_quit(state->loop);
    });
    g_main_loop_run(m_state->loop);
    m_state->quitting = false;
}

void GLibLoop::quit() {
    m_state->quitting = true;
    g_main_loop_quit(m_state->loop);
}

void GLibLoop::onEndingSignal(std::function<void(int)> observer) {
    const bool first = !m_state->onSignal;
    m_state->onSignal = std::move(observer);
    if (!first) return;
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) m_state->watch(number);
}

}  // namespace ravik::platform
