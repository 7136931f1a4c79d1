#pragma once

#include <filesystem>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Core/Host/Host.h"

namespace ravik {

/// Where tools leave what they can make again. Paths are relative to the home folder.
struct DiskTables {
    struct Cache {
        std::string_view path;
        std::string_view kind;
    };
    /// The application that uses a cache while it runs.
    struct Owner {
        std::string_view path;
        std::string_view app;
        /// Other names under which desktops list it.
        std::vector<std::string_view> alsoCalled;
    };
    using Owners = std::vector<Owner>;

    std::vector<Cache> caches;
    Owners owners;
    /// The two folders whose direct children may go.
    std::string_view browsers;
    std::string_view transcripts;
    /// Names of folders that a build makes.
    std::unordered_set<std::string_view> buildDirs;
    std::vector<std::string_view> projectRoots;
    /// Only those of projectRoots that exist count.
    bool rootsMustExist = false;

    /// Null if none uses it.
    const Owner* owner(std::string_view path) const;
};

const DiskTables& diskTables(HostKind kind);

namespace DiskScanner {

/// Where projects lie unless the caller says otherwise. One folder under two names counts once.
std::vector<std::filesystem::path> defaultProjectRoots(const DiskTables& tables, const std::filesystem::path& home);

}  // namespace DiskScanner

}  // namespace ravik
