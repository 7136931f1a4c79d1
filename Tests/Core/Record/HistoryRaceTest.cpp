#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Core/Record/HistoryStore.h"
#include "Tests/Core/Record/LogFolder.h"

namespace ravik {

namespace {

/// Lines of one length, numbered, so that the aggregate tells which of them were folded.
std::string numbered(int n) {
    char text[128];
    const int size = std::snprintf(
        text, sizeof text, "{\"group\":\"%07d\",\"kind\":\"kill\",\"mb\":1,\"t\":\"2026-03-01T09:30:15Z\"}\n", n);
    return {text, static_cast<std::size_t>(size)};
}

/// Every line up to the offset once, in order, and the offset between two lines.
void expectWhole(const DayAggregate& day) {
    const std::size_t length = numbered(0).size();
    ASSERT_EQ(day.offset % length, 0u);
    ASSERT_EQ(day.events.size(), day.offset / length);
    for (std::size_t n = 0; n < day.events.size(); ++n) {
        ASSERT_EQ(day.events[n].what, "Ended " + numbered(static_cast<int>(n)).substr(10, 7));
    }
}

/// Appends 2,000 lines a second as the log does, one write a line; each tenth comes in two halves. Waits where it is far
/// ahead of its reader, which on a busy computer would never catch up.
class Writer {
public:
    explicit Writer(const std::filesystem::path& file)
        : m_fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644)), m_thread([this] { run(); }) {}
    ~Writer() {
        m_stop = true;
        m_thread.join();
        ::close(m_fd);
    }
    int written() const { return m_written; }
    void allow(int lines) { m_allowed += lines; }

private:
    void put(std::string_view bytes) const {
        ASSERT_EQ(::write(m_fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    void run() {
        auto due = std::chrono::steady_clock::now();
        for (int n = 0; !m_stop; ++n) {
            const std::string line = numbered(n);
            if (n % 10 == 0) {
                put(line.substr(0, 20));
                std::this_thread::yield();
                put(line.substr(20));
            } else {
                put(line);
            }
            ++m_written;
            while (m_written >= m_allowed && !m_stop) std::this_thread::sleep_for(std::chrono::milliseconds(1));
            std::this_thread::sleep_until(due += std::chrono::microseconds(500));
        }
    }

    int m_fd;
    std::atomic<bool> m_stop = false;
    std::atomic<int> m_written = 0;
    std::atomic<int> m_allowed = 200;
    std::thread m_thread;
};

}  // namespace

TEST(HistoryRace, TwoHundredLoadsNeverLoseRepeatOrSplitALineThatIsBeingWritten) {
    const LogFolder folder;
    DayAggregate last;
    {
        Writer writer(folder.logFile());
        HistoryMemo memo;
        for (int round = 0; round < 200; ++round) {
            writer.allow(50);
            const int before = writer.written();
            // A long-running program, one that has just started, and one whose cache was thrown away.
            if (round % 3 == 1) memo.clear();
            if (round % 20 == 2) std::filesystem::remove_all(folder.cache);
            const auto days = HistoryStore::load(folder.logs, folder.cache, memo);
            if (days.empty()) continue;
            ASSERT_EQ(days.size(), 1u);
            last = days[0];
            ASSERT_NO_FATAL_FAILURE(expectWhole(last)) << "round " << round;
            ASSERT_GE(last.events.size(), static_cast<std::size_t>(before));
            memo = {{last.day, last}};
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    const auto days = HistoryStore::load(folder.logs, folder.cache);
    ASSERT_EQ(days.size(), 1u);
    EXPECT_EQ(days[0].offset, std::filesystem::file_size(folder.logFile()));
    EXPECT_GT(days[0].events.size(), last.events.size() / 2);
    expectWhole(days[0]);
}

TEST(HistoryRace, AReaderKilledWhileItWritesItsCacheNeverLeavesAWrongOne) {
    const LogFolder folder;
    std::mt19937 random{3};
    int written = 0;
    for (int round = 0; round < 60; ++round) {
        std::string bytes;
        for (int n = 0; n < 50; ++n) bytes += numbered(written++);
        folder.append(bytes);
        const pid_t reader = ::fork();
        ASSERT_GE(reader, 0);
        if (reader == 0) {
            for (;;) {
                HistoryStore::load(folder.logs, folder.cache);
                std::error_code ignored;
                if (::getpid() % 2) std::filesystem::remove(folder.cacheFile(), ignored);
            }
        }
        ::usleep(std::uniform_int_distribution<useconds_t>(0, 4000)(random));
        ASSERT_EQ(::kill(reader, SIGKILL), 0);
        ASSERT_EQ(::waitpid(reader, nullptr, 0), reader);
        const auto days = HistoryStore::load(folder.logs, folder.cache);
        ASSERT_EQ(days.size(), 1u);
        ASSERT_EQ(days[0].events.size(), static_cast<std::size_t>(written)) << "round " << round;
        ASSERT_NO_FATAL_FAILURE(expectWhole(days[0]));
    }
}

TEST(HistoryRace, ManyReadersAtOnceAgree) {
    const LogFolder folder;
    const int lines = 3000;
    for (const char* day : {"2026-03-01", "2026-03-02", "2026-03-03"}) {
        std::string bytes;
        for (int n = 0; n < lines; ++n) bytes += numbered(n);
        folder.append(bytes, day);
    }
    std::vector<std::vector<DayAggregate>> results(4);
    std::vector<std::thread> readers;
    for (auto& result : results) {
        readers.emplace_back([&] { result = HistoryStore::load(folder.logs, folder.cache); });
    }
    for (auto& reader : readers) reader.join();
    for (const auto& result : results) EXPECT_EQ(result, results[0]);
    ASSERT_EQ(results[0].size(), 3u);
    for (const auto& day : HistoryStore::load(folder.logs, folder.cache)) {
        EXPECT_EQ(day.events.size(), static_cast<std::size_t>(lines));
        expectWhole(day);
    }
}

TEST(HistoryRace, WeeksOfLogReadSideBySideAreTheSameAsReadOneByOne) {
    const LogFolder folder;
    for (int day = 1; day <= 6; ++day) {
        std::string bytes;
        for (int n = 0; n < 24000; ++n) bytes += numbered(n + day);
        folder.append(bytes, "2026-03-0" + std::to_string(day));
    }
    ASSERT_GT(std::filesystem::file_size(folder.logFile()) * 6, 8u << 20) << "enough for more than one thread";
    const auto together = HistoryStore::load(folder.logs, folder.cache);
    ASSERT_EQ(together.size(), 6u);
    for (const auto& day : together) {
        DayAggregate alone;
        alone.day = day.day;
        HistoryStore::ingest(alone, folder.logFile(day.day));
        EXPECT_EQ(alone, day);
    }
}

}  // namespace ravik
