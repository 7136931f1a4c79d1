#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Core/Record/Log.h"
#include "Tests/Fakes/FakeClock.h"
#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik::fakes {

/// A real log in a folder of its own, on a fake clock.
class LogFolder {
public:
    explicit LogFolder(const FakeClock& clock)
        : log({.folder = m_folder.path() / "log",
               .formerFolder = m_folder.path() / "former",
               .now = [&clock] { return clock.now(); },
               .session = "0123ABCD"}) {}

    /// All lines so far, of one kind or of all.
    std::vector<nlohmann::json> lines(const std::string& kind = {}) {
        log.flush();
        std::vector<nlohmann::json> found;
        std::error_code error;
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path() / "log", error)) {
            files.push_back(entry.path());
        }
        std::sort(files.begin(), files.end());
        for (const auto& path : files) {
            std::ifstream file(path);
            for (std::string line; std::getline(file, line);) {
                auto value = nlohmann::json::parse(line);
                if (kind.empty() || value["kind"] == kind) found.push_back(std::move(value));
            }
        }
        return found;
    }

private:
    TemporaryFolder m_folder;

public:
    Log log;
};

}  // namespace ravik::fakes
