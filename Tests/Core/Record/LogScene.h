#pragma once

#include <algorithm>
#include <atomic>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <stdlib.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Core/Record/Log.h"
#include "Tests/Fakes/TemporaryFolder.h"

namespace ravik {

/// A folder of its own for each case, and a clock that stands at half past nine, UTC, on the first of March 2026.
class LogScene : public ::testing::Test {
protected:
    Log::Options plain() {
        Log::Options options;
        options.folder = folder;
        options.formerFolder = former;
        options.now = [this] { return now.load(); };
        options.session = "0123ABCD";
        return options;
    }

    static Time localTime(int year, int month, int dayOfMonth, int hour, int minute, int second) {
        std::tm parts{};
        parts.tm_year = year - 1900;
        parts.tm_mon = month - 1;
        parts.tm_mday = dayOfMonth;
        parts.tm_hour = hour;
        parts.tm_min = minute;
        parts.tm_sec = second;
        parts.tm_isdst = -1;
        return static_cast<Time>(std::mktime(&parts));
    }

    /// The file of the day that `now` lies in.
    std::string today() const {
        const auto at = static_cast<std::time_t>(now.load());
        std::tm parts{};
        localtime_r(&at, &parts);
        char name[32];
        std::strftime(name, sizeof name, "%Y-%m-%d.jsonl", &parts);
        return name;
    }

    std::vector<std::string> linesOf(const std::string& name) const {
        std::vector<std::string> lines;
        std::ifstream file(folder / name);
        for (std::string line; std::getline(file, line);) lines.push_back(line);
        return lines;
    }

    std::vector<std::string> kindsOf(const std::string& name) const {
        std::vector<std::string> kinds;
        for (const auto& line : linesOf(name)) kinds.push_back(nlohmann::json::parse(line).at("kind"));
        return kinds;
    }

    static std::vector<std::string> namesIn(const std::filesystem::path& folder) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    /// How many descriptors of this process lead to the file.
    static int openDescriptorsTo(const std::filesystem::path& file) {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            count += std::filesystem::read_symlink(entry.path(), gone) == file;
        }
        return count;
    }

    const fakes::TemporaryFolder own;
    const std::filesystem::path root = own.path();
    std::filesystem::path folder = root / "state" / "ravik";
    std::filesystem::path former = root / "state" / "tolvane";
    std::atomic<Time> now{1772357415};
};

}  // namespace ravik
