#include "Core/Record/Log.h"

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <random>
#include <thread>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "Core/Base/Iso8601.h"
#include "Core/Record/DayFile.h"

namespace ravik {

namespace {

using nlohmann::json;

/// The serialiser writes an infinite number as null; such an event is dropped instead.
bool isSafe(const json& value) {
    if (value.is_structured()) return std::all_of(value.begin(), value.end(), isSafe);
    if (value.is_number_float()) return std::isfinite(value.get<double>());
    return !value.is_binary() && !value.is_discarded();
}

}  // namespace

struct Log::Writer {
    explicit Writer(Options given)
        : options(std::move(given)), file(options.folder, options.formerFolder, options.createdAt) {
        if (options.enabled) thread = std::thread([this] { run(); });
    }

    ~Writer() {
        {
            const std::lock_guard lock(mutex);
            ending = true;
        }
        wake.notify_all();
        if (thread.joinable()) thread.join();
    }

    void add(std::string line) {
        {
            const std::lock_guard lock(mutex);
            waiting.push_back(std::move(line));
            ++added;
        }
        wake.notify_all();
    }

    void flush() {
        std::unique_lock lock(mutex);
        idle.wait(lock, [this, upTo = added] { return written >= upTo; });
    }

    void run() {
        std::vector<std::string> lines;
        std::unique_lock lock(mutex);
        while (true) {
            wake.wait(lock, [this] { return ending || !waiting.empty(); });
            if (waiting.empty()) return;
            lines.swap(waiting);
            lock.unlock();
            for (const auto& line : lines) file.append(line, options.now());
            lock.lock();
            written += lines.size();
            lines.clear();
            idle.notify_all();
        }
    }

    const Options options;
    DayFile file;  // the thread's

    std::mutex mutex;  // guards what follows
    std::condition_variable wake;
    std::condition_variable idle;
    std::vector<std::string> waiting;
    std::uint64_t added = 0;
    std::uint64_t written = 0;
    bool ending = false;

    std::thread thread;
};

Log::Log(Options options) : m_writer(std::make_unique<Writer>(std::move(options))) {}

Log::~Log() = default;

void Log::event(std::string_view kind, const json& fields) {
    if (!m_writer->options.enabled) return;
    if (!fields.is_null() && (!fields.is_object() || !isSafe(fields))) return;

    json line = fields.is_null() ? json::object() : fields;
    line.emplace("t", Iso8601::format(m_writer->options.now()));
    line.emplace("kind", kind);
    line.emplace("session", m_writer->options.session);
    m_writer->add(line.dump(-1, ' ', false, json::error_handler_t::replace) + '\n');
}

void Log::event(std::string_view kind) { event(kind, json()); }

void Log::flush() { m_writer->flush(); }

const std::filesystem::path& Log::folder() const { return m_writer->options.folder; }

const std::string& Log::session() const { return m_writer->options.session; }

std::string Log::newSession() { return fmt::format("{:08X}", std::random_device{}()); }

}  // namespace ravik
