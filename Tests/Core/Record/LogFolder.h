#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik {

/// A real folder for logs and one for their cache, gone at the end of the test.
class LogFolder {
public:
    LogFolder() : root(m_folder.path()), logs(root / "logs"), cache(root / "cache") {
        std::filesystem::create_directories(logs);
    }

    std::filesystem::path logFile(const std::string& day = "2026-03-01") const { return logs / (day + ".jsonl"); }
    std::filesystem::path cacheFile(const std::string& day = "2026-03-01") const { return cache / (day + ".json"); }

    void append(std::string_view bytes, const std::string& day = "2026-03-01") const {
        std::ofstream(logFile(day), std::ios::binary | std::ios::app) << bytes;
    }
    static void put(const std::filesystem::path& file, std::string_view bytes) {
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    }
    static std::string get(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

private:
    fakes::TemporaryFolder m_folder;

public:
    const std::filesystem::path root, logs, cache;
};

}  // namespace ravik
