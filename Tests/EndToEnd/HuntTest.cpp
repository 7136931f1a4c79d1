#include <gmock/gmock.h>

#include <csignal>
#include <iostream>
#include <random>
#include <unordered_set>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Core/Ending/Killer.h"
#include "Core/Watch/ProcessIndex.h"
#include "Core/Watch/ProcessScanner.h"
#include "Platform/Linux/Clock.h"
#include "Platform/Linux/LinuxProcessTable.h"
#include "Platform/Linux/PidfdSignals.h"
#include "Tests/EndToEnd/Support.h"
#include "Tests/EndToEnd/Victims.h"
#include "Tests/Platform/Support/ChildWork.h"
#include "Tests/Platform/Support/Sanitized.h"

namespace ravik::endtoend {
namespace {

using platform::PidfdSignals;
using platform::SystemClock;
using Random = std::mt19937;

/// Waits a moment of its own choice, up to `most` microseconds: what two processes do falls together in ever new ways.
void dawdle(Random& random, unsigned most) { usleep(random() % most); }

struct Sent {
    std::size_t terms = 0;
    std::size_t kills = 0;
};

/// The program's signals, counted, with time for pids to change hands in front of each, and a short settling.
template <typename Base>
class Counted : public Base {
public:
    Counted(Sent& sent, Random& random) : m_sent(sent), m_random(random) {}

    std::optional<VerifiedProcess> verify(const Proc& proc) const override {
        dawdle(m_random, 200);
        return Base::verify(proc);
    }
    bool send(const VerifiedProcess& process, Signal signal) const override {
        dawdle(m_random, 200);
        if (!Base::send(process, signal)) return false;
        if (signal == Signal::terminate) ++m_sent.terms;
        if (signal == Signal::kill) ++m_sent.kills;
        return true;
    }
    void sleep(double) const override { usleep(1000); }

private:
    Sent& m_sent;
    Random& m_random;
};

/// What most programs do: the pid is the process.
class ByPidAlone : public PidfdSignals {
public:
    std::optional<VerifiedProcess> verify(const Proc& proc) const override { return vouch(proc.id, nullptr); }
    bool alive(const VerifiedProcess& process) const override { return ::kill(process.pid(), 0) == 0; }
    bool stopped(const VerifiedProcess&) const override { return false; }
    bool send(const VerifiedProcess& process, Signal signal) const override {
        return ::kill(process.pid(), signal == Signal::kill ? SIGKILL : SIGTERM) == 0;
    }
    void waitForExit(std::span<const VerifiedProcess>, double seconds) const override {
        usleep(static_cast<useconds_t>(seconds * 1e6));
    }
};

enum Phase { building, built, hunting, over, cleared };

/// What the hunter and the turmoil tell each other.
struct Stage {
    std::atomic<int> phase{building};
    std::atomic<Pid> root{0};
    std::atomic<std::size_t> from{0};  // the first life of this round
    std::atomic<std::size_t> takeovers{0};

    void wait(Phase wanted) const {
        while (phase != wanted) usleep(100);
    }
};

/// The other side: builds a tree among strangers and, while it is hunted, ends some of either and puts strangers
/// into their pids.
class Turmoil {
public:
    Turmoil(Lives& lives, Stage& stage, unsigned seed) : m_lives(lives), m_stage(stage), m_random(seed) {}

    void run(int rounds) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // Whoever loses its parent in the turmoil comes here, and pids are free as soon as their process has ended.
        prctl(PR_SET_CHILD_SUBREAPER, 1);
        signal(SIGCHLD, SIG_IGN);
        for (int round = 0; round < rounds; ++round) {
            m_stage.from = m_lives.count();
            m_stage.root = build(3)->pid.load();
            m_living.clear();
            for (int stranger = 0; stranger < 4; ++stranger) m_lives.begin(Nature::polite);
            for (std::size_t at = m_stage.from; at < m_lives.count(); ++at) m_living.push_back(&m_lives.at(at));
            // The kernel stamps starts to the hundredth of a second. No computer goes round all its pids in that time.
            usleep(20'000);
            m_stage.phase = built;
            m_stage.wait(hunting);
            while (m_stage.phase == hunting) stir();
            clear();
            m_stage.phase = cleared;
            m_stage.wait(building);
        }
    }

private:
    Nature anyNature() {
        static constexpr Nature some[] = {Nature::polite, Nature::polite, Nature::stubborn, Nature::forks};
        return some[m_random() % std::size(some)];
    }
    Life* build(int depth) {
        return m_lives.begin(anyNature(), [&] {
            for (unsigned child = 0; depth > 0 && child < 2; ++child) {
                m_random.discard(child + 1);
                build(depth - 1);
            }
        });
    }
    /// One process goes, and if its pid can be had another takes it.
    void stir() {
        Life*& place = m_living[m_random() % m_living.size()];
        const Pid pid = place->pid;
        Lives::ask(*place);
        for (int attempt = 0; attempt < 4; ++attempt) {
            dawdle(m_random, 60);
            Life* taken = m_lives.begin(Nature::polite, {}, pid);
            if (!taken) continue;
            place = taken;
            ++m_stage.takeovers;
            return;
        }
    }
    void clear() {
        while (waitpid(-1, nullptr, WNOHANG) == 0) {
            for (std::size_t at = m_stage.from; at < m_lives.count(); ++at) {
                if (m_lives.at(at).end == Life::none) Lives::ask(m_lives.at(at));
            }
            usleep(300);
        }
    }

    Lives& m_lives;
    Stage& m_stage;
    Random m_random;
    std::vector<Life*> m_living;
};

class Hunt : public EndToEnd {
protected:
    struct Bag {
        Sent sent;
        std::size_t targets = 0;
        std::size_t strangers = 0;
        std::size_t takeovers = 0;
        /// Strangers that heard TERM or were killed.
        std::size_t hits = 0;
    };

    template <typename Signals>
    Bag hunt(int rounds) {
        Lives lives(400'000);
        void* memory = mmap(nullptr, sizeof(Stage), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        Stage& stage = *new (memory) Stage;
        reaper.add(platform::forkChild([&] { Turmoil(lives, stage, 7).run(rounds); }));

        Bag bag;
        Random random(11);
        const SystemClock clock;
        platform::LinuxProcessTable table(clock);
        const Counted<Signals> signals(bag.sent, random);
        Host host{HostKind::linux, geteuid(), getpid(), {1}, {}};
        for (int round = 0; round < rounds; ++round) {
            stage.wait(built);
            const std::vector<Proc> procs = ProcessScanner(table, clock).scan();
            const Pids below = Killer::descendants(stage.root, procs);
            std::unordered_set<Pid> tree(below.begin(), below.end());
            tree.insert(stage.root);
            // All that has begun so far is at rest: a pid is one life.
            const std::size_t first = stage.from;
            const std::size_t listed = lives.count();
            std::vector<bool> isTarget(listed - first);
            for (std::size_t at = first; at < listed; ++at) isTarget[at - first] = tree.contains(lives.at(at).pid);

            stage.phase = hunting;
            dawdle(random, 2000);
            Killer::killTree(stage.root, procs, 0.01, host, signals);
            stage.phase = over;
            stage.wait(cleared);

            const std::size_t all = lives.count();
            for (std::size_t at = first; at < all; ++at) {
                const Life& life = lives.at(at);
                if (life.pid == 0) continue;  // its pid could not be had
                if (at < listed && isTarget[at - first]) {
                    ++bag.targets;
                } else {
                    ++bag.strangers;
                    if (life.terms > 0 || life.end == Life::none) ++bag.hits;
                }
            }
            stage.phase = building;
        }
        bag.takeovers = stage.takeovers;
        munmap(memory, sizeof(Stage));
        std::cout << rounds << " rounds: " << bag.sent.terms << " TERM and " << bag.sent.kills << " KILL to "
                  << bag.targets << " processes of the trees, " << bag.takeovers << " pids taken over, "
                  << bag.strangers << " strangers, " << bag.hits << " hit\n";
        return bag;
    }
};

TEST_F(Hunt, NoStrangerHearsAnything) {
    // A sanitizer looks for faults of memory, and lets a pid be taken over a tenth as often.
    const Bag bag = hunt<PidfdSignals>(platform::isSanitized ? 40 : 200);
    EXPECT_EQ(bag.hits, 0u);
    EXPECT_GT(bag.sent.terms, 200u);
    EXPECT_GT(bag.sent.kills, 20u);
    EXPECT_GT(bag.takeovers, platform::isSanitized ? 10u : 400u);
}

TEST_F(Hunt, FindsWhoSignalsByPidAlone) {
    // Chance decides: on a slow machine a pid is rarely taken over between the look and the signal.
    std::size_t hits = 0;
    for (int attempt = 0; attempt < 20 && hits == 0; ++attempt) hits = hunt<ByPidAlone>(20).hits;
    EXPECT_GT(hits, 0u);
}

}  // namespace
}  // namespace ravik::endtoend
