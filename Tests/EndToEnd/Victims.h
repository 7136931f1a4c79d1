#pragma once

#include <atomic>
#include <cstddef>
#include <functional>

#include "Core/Base/Pids.h"

namespace ravik::endtoend {

/// One process's life, in memory that it shares with the test. It tells what it heard; one that ended and has not
/// said how was killed.
struct Life {
    enum End { none, ended, asked };

    std::atomic<Pid> pid{0};
    std::atomic<bool> hears{false};
    std::atomic<int> terms{0};
    std::atomic<int> end{none};
};

/// What a process does when it hears TERM.
enum class Nature { polite, stubborn, slow, forks };

/// How long a slow one takes.
inline constexpr double slowSeconds = 0.4;

/// All lives of a test. Those that are begun from within another process count too.
class Lives {
public:
    explicit Lives(std::size_t most);
    ~Lives();
    Lives(const Lives&) = delete;
    Lives& operator=(const Lives&) = delete;

    /// Begins one: forks, and the child lives until a signal ends it. Before that it runs `first`, in which it can
    /// begin children. Returns when it hears signals or has ended already; null if it cannot be had. With `pid` it
    /// is given that very one.
    Life* begin(Nature its, const std::function<void()>& first = {}, Pid wanted = 0);
    /// Asks it to end by another signal than the program's.
    static void ask(const Life& life);

    std::size_t count() const;
    Life& at(std::size_t index) const { return m_lives[index]; }

private:
    Life* allot();

    std::size_t m_most;
    std::atomic<std::size_t>* m_count = nullptr;
    Life* m_lives = nullptr;
};

}  // namespace ravik::endtoend
