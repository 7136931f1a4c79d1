#include <unistd.h>

#include <algorithm>
#include <climits>
#include <random>

#include "Tests/Core/Disk/DiskTree.h"

namespace ravik {

namespace {

using Parts = std::vector<std::string>;

Parts split(const std::string& path) {
    Parts parts;
    std::string part;
    for (const char c : path + "/") {
        if (c != '/') {
            part += c;
        } else if (!part.empty()) {
            parts.push_back(std::exchange(part, {}));
        }
    }
    return parts;
}

std::string join(const Parts& parts) {
    std::string path;
    for (const auto& part : parts) path += "/" + part;
    return path.empty() ? "/" : path;
}

/// Walks a path one name at a time as the kernel would. Absent in a loop of links.
std::optional<Parts> follow(const std::string& path) {
    Parts ahead = split(path);
    std::ranges::reverse(ahead);
    Parts here;
    for (int links = 0; !ahead.empty();) {
        const std::string part = ahead.back();
        ahead.pop_back();
        if (part == ".") continue;
        if (part == "..") {
            if (!here.empty()) here.pop_back();
            continue;
        }
        here.push_back(part);
        char target[PATH_MAX];
        const ssize_t length = readlink(join(here).c_str(), target, sizeof target);
        if (length < 0) continue;
        if (++links > 40) return {};
        const std::string text(target, static_cast<std::size_t>(length));
        here.pop_back();
        if (text.starts_with('/')) here.clear();
        Parts inner = split(text);
        ahead.insert(ahead.end(), inner.rbegin(), inner.rend());
    }
    return here;
}

class FenceRandom : public DiskTree {
protected:
    FenceRandom() {
        for (const auto& cache : tables.caches) folder(home / cache.path / "inner/build");
        for (const char* name : {"chromium-1", "chromium-2", ".links"}) folder(home / ".cache/ms-playwright" / name);
        for (const char* name : {"-home-a", "-home-b", ".c"}) folder(home / ".claude/projects" / name / "build");
        for (const char* root : {"Projects", "Projects2", "src", "src2"}) {
            for (const char* project : {"a", "b", "b/lib", "node_modules"}) {
                for (const char* name : {"build", "node_modules", ".venv", "src", "Build", "build "}) {
                    folder(home / root / project / name);
                }
            }
        }
        link(home / "linked", home / "src");
        link(home / "Projects/a/dist", outside);
        link(home / "Projects/a/target", home / "Projects/b/build");
        link(home / "Projects/c", outside);
        link(home / "Projects/loop", "loop");
        link(home / "Projects/a/venv", "../../Documents");
        folder(home / "Documents/build");
        folder(outside / "build/node_modules");
        roots = {home / "Projects", home / "linked"};
    }

    const std::string& pick(const std::vector<std::string>& from) { return from[random() % from.size()]; }

    /// A path of the kinds that may go, as a caller could write it.
    std::string accepted() {
        switch (random() % 4) {
            case 0: return (home / tables.caches[random() % tables.caches.size()].path).string();
            case 1: return (home / ".cache/ms-playwright" / pick({"chromium-1", "chromium-2", "gone-3"})).string();
            case 2: return (home / ".claude/projects" / pick({"-home-a", "-home-b"})).string();
            default:
                return (home / pick({"Projects", "linked", "src"}) / pick({"a", "b", "b/lib"}) /
                        pick({"build", "node_modules", ".venv", "target"}))
                    .string();
        }
    }

    /// The same path, one step away.
    std::string oneStepFrom(std::string path) {
        if (path.size() <= home.string().size() + 1) return path + "/build";
        const auto slash = path.rfind('/');
        switch (random() % 13) {
            case 0: return path + "/..";
            case 1: return path + "/";
            case 2: return path + "/inner";
            case 3: return path.substr(0, slash);
            case 4: return path + pick({"2", " ", "\n", ".", "-old", "\xff"});
            case 5: return path.substr(0, path.size() - 1);
            case 6: path[slash + 1] = static_cast<char>(path[slash + 1] ^ 0x20); return path;
            case 7: return path.substr(0, slash) + "/../" + path.substr(slash + 1);
            case 8: return path.substr(0, slash) + "/missing/.." + path.substr(slash);
            case 9: return path.substr(0, slash) + "//./" + path.substr(slash + 1) + "/.";
            case 10: return path.replace(home.string().size(), 1, pick({"2/", "//", "/../home/", "/Projects/c/"}));
            case 11: {
                const auto rootEnd = path.find('/', home.string().size() + 1);
                return rootEnd == std::string::npos ? path : path.insert(rootEnd, pick({"2", "ed", " ", "/../src2"}));
            }
            default: return path.substr(1);
        }
    }

    std::string anywhere() {
        static const std::vector<std::string> names{
            "Projects", "linked",  "src",           "a",      "b",    "c",    "build", "node_modules",
            "..",       ".",       "dist",          "target", "lib",  "venv", "etc",   ".cache",
            "projects", ".claude", "ms-playwright", "loop",   ".npm", "_npx", "",      "home",
            "Documents"};
        std::string path = pick({home.string(), home.string(), home.string(), outside.string(), ""});
        for (auto depth = random() % 6; depth > 0; --depth) path += "/" + pick(names);
        return path;
    }

    /// What the tables say, told anew from the parts of the path.
    bool mayGo(const std::string& path) const {
        if (!path.starts_with('/')) return false;
        const auto parts = follow(path);
        if (!parts || parts->empty()) return false;
        for (const auto& cache : tables.caches) {
            if (*parts == split((home / cache.path).string())) return true;
        }
        const Parts parent(parts->begin(), parts->end() - 1);
        const std::string& name = parts->back();
        for (const char* folder : {".cache/ms-playwright", ".claude/projects"}) {
            if (parent == split((home / folder).string()) && name[0] != '.') return true;
        }
        static const std::vector<std::string> builds{"node_modules", ".next", ".turbo", "dist",        "build",
                                                     "target",       ".venv", "venv",   "DerivedData", ".pytest_cache"};
        if (std::ranges::find(builds, name) == builds.end()) return false;
        for (const char* root : {"Projects", "src"}) {
            const Parts at = split((home / root).string());
            if (parts->size() > at.size() && std::equal(at.begin(), at.end(), parts->begin())) return true;
        }
        return false;
    }

    const DiskTables& tables = diskTables(HostKind::linux);
    std::mt19937 random{20'260'101};
};

}  // namespace

TEST_F(FenceRandom, LetsNothingPastThatIsNotInTheTables) {
    NotingTrash trash;
    const DiskScanner::ReclaimScope reclaimScope{tables, home, [](const auto&) { return false; }, trash};
    int passed = 0;
    constexpr int paths = 10'000;
    for (int round = 0; round < paths; ++round) {
        const std::string path = round % 3 == 0   ? oneStepFrom(accepted())
                                 : round % 3 == 1 ? anywhere()
                                                  : (random() % 2 ? accepted() : oneStepFrom(anywhere()));
        const auto resolved = DiskScanner::resolved(path);
        const bool accepts = resolved && DiskScanner::isReclaimable(*resolved, tables, home, roots);
        ASSERT_EQ(accepts, mayGo(path)) << path;
        passed += accepts;
        if (round % 5 != 0) continue;
        trash.moved.clear();
        const auto error = DiskScanner::reclaim(reclaimScope, {path, "", 0, ""}, roots, tables.owners);
        if (!error) {
            ASSERT_TRUE(mayGo(trash.moved.front())) << path;
            ASSERT_EQ(trash.moved.front(), join(*follow(path)));
        } else {
            ASSERT_TRUE(trash.moved.empty());
        }
    }
    EXPECT_GT(passed, paths / 8);
    EXPECT_LT(passed, paths / 2);
}

}  // namespace ravik
