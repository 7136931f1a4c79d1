#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace ravik {

template <typename... Args>
class Observers;

/// Keeps an observer being told. Ends with its holder, or by end(), from within a notification as well; whom it
/// observes may go first. An empty one observes nothing. Confined to the thread of what it observes.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&&) noexcept = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() = default;

    void end() { m_observer.reset(); }
    explicit operator bool() const { return m_observer != nullptr; }

private:
    template <typename... Args>
    friend class Observers;
    explicit Subscription(std::shared_ptr<void> observer) : m_observer(std::move(observer)) {}

    std::shared_ptr<void> m_observer;
};

/// Those who want to be told of something, in the order in which they came. One thread.
template <typename... Args>
class Observers {
public:
    using Observer = std::function<void(Args...)>;

    Subscription add(Observer observer) {
        prune();
        auto shared = std::make_shared<Observer>(std::move(observer));
        m_observers.push_back(shared);
        return Subscription(std::move(shared));
    }

    /// Tells all that are there now. Who is removed meanwhile is told nothing more, who is added waits for the next
    /// time. An observer may destroy this object.
    void notify(Args... args) {
        prune();
        const auto observers = m_observers;
        for (const auto& weak : observers) {
            if (const auto observer = weak.lock()) (*observer)(args...);
        }
    }

private:
    void prune() {
        std::erase_if(m_observers, [](const auto& observer) { return observer.expired(); });
    }

    std::vector<std::weak_ptr<Observer>> m_observers;
};

}  // namespace ravik
