#pragma once

#include <coroutine>
#include <exception>
#include <functional>
#include <optional>
#include <utility>

namespace ravik {

template <typename T>
class Task;

namespace detail {

struct TaskPromiseBase {
    std::coroutine_handle<> continuation;

    std::suspend_always initial_suspend() noexcept { return {}; }

    struct Final {
        bool await_ready() noexcept { return false; }
        template <typename P>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<P> done) noexcept {
            const auto next = done.promise().continuation;
            return next ? next : std::noop_coroutine();
        }
        void await_resume() noexcept {}
    };
    Final final_suspend() noexcept { return {}; }

    // No exception crosses a layer; one that gets here is a programming fault.
    [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
};

template <typename T>
struct TaskPromise : TaskPromiseBase {
    std::optional<T> value;
    Task<T> get_return_object();
    void return_value(T result) { value.emplace(std::move(result)); }
    T take() { return std::move(*value); }
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
    Task<void> get_return_object();
    void return_void() {}
    void take() {}
};

}  // namespace detail

/// A long operation of the main loop, written as a coroutine. It starts when it is awaited, or when
/// spawn() hands it to the loop, and is destroyed with its Task. Confined to the main loop.
template <typename T = void>
class [[nodiscard]] Task {
public:
    using promise_type = detail::TaskPromise<T>;
    using Handle = std::coroutine_handle<promise_type>;

    explicit Task(Handle handle) : m_handle(handle) {}
    Task(Task&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Task& operator=(Task&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() {
        if (m_handle) m_handle.destroy();
    }

    bool await_ready() const noexcept { return false; }
    std::coroutine_handle<> await_suspend(std::coroutine_handle<> caller) noexcept {
        m_handle.promise().continuation = caller;
        return m_handle;
    }
    T await_resume() { return m_handle.promise().take(); }

private:
    Handle m_handle;
};

namespace detail {

template <typename T>
Task<T> TaskPromise<T>::get_return_object() {
    return Task<T>(Task<T>::Handle::from_promise(*this));
}
inline Task<void> TaskPromise<void>::get_return_object() { return Task<void>(Task<void>::Handle::from_promise(*this)); }

/// A coroutine that starts at once and frees itself at its end.
struct Detached {
    struct promise_type {
        Detached get_return_object() { return {}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() {}
        [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
    };
};

}  // namespace detail

/// Starts a task now and calls `done` with its result when it has ended.
template <typename T, typename Done>
detail::Detached spawn(Task<T> task, Done done) {
    if constexpr (std::is_void_v<T>) {
        co_await task;
        done();
    } else {
        done(co_await task);
    }
}

/// Starts a task now and lets it run to its end by itself.
inline detail::Detached spawn(Task<void> task) { co_await task; }

/// Awaits a callback: `start` is given the function to call, once, with the value.
template <typename T>
class Callback {
public:
    using Resume = std::function<void(T)>;
    explicit Callback(std::function<void(Resume)> start) : m_start(std::move(start)) {}

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> caller) {
        // The frame of the caller, and this awaiter in it, may be gone once resume has run.
        auto start = std::move(m_start);
        start([this, caller](T value) {
            m_value.emplace(std::move(value));
            caller.resume();
        });
    }
    T await_resume() { return std::move(*m_value); }

private:
    std::function<void(Resume)> m_start;
    std::optional<T> m_value;
};

}  // namespace ravik
