#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <set>

#include <fmt/format.h>

#include "Tests/EndToEnd/Support.h"

namespace ravik::endtoend {
namespace {

using platform::readProc;
using platform::waitUntil;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

/// The installed browser without a window, as scripts start it.
class RealBrowser : public EndToEnd {
protected:
    Pid browse(const std::vector<std::string>& more) {
        std::vector<std::string> words{RAVIK_CHROMIUM,
                                       "--headless",
                                       "--no-sandbox",
                                       "--disable-gpu",
                                       "--disable-dev-shm-usage",
                                       "--no-first-run",
                                       "--remote-debugging-port=0"};
        words.insert(words.end(), more.begin(), more.end());
        words.emplace_back("about:blank");
        return start(words, home.environment());
    }
    /// What of the rows stands below `root`: pids, the root's own first.
    std::vector<Pid> family(Pid root, const Json& rows) const {
        std::vector<Pid> pids{root};
        for (std::size_t at = 0; at < pids.size(); ++at) {
            for (const Json& row : rows) {
                const auto proc = readProc(row["pid"].get<Pid>());
                if (proc && proc->ppid == pids[at]) pids.push_back(proc->id);
            }
        }
        return pids;
    }
    /// The rows of all processes, once the browser runs a page.
    Json rowsOf(Pid root) {
        Json rows;
        EXPECT_TRUE(waitUntil(
            [&] {
                rows = run(home, {"ps", "--json"}).json();
                for (const Pid pid : family(root, rows)) {
                    const auto proc = readProc(pid);
                    if (proc && proc->command.view().find("--type=renderer") != std::string_view::npos) return true;
                }
                return false;
            },
            40));
        for (const Pid pid : family(root, rows)) reaper.add(pid);
        return rows;
    }
    /// The same reading two hours later.
    Json twoHoursLater() const {
        const std::string file = (home.path() / "reading.json").native();
        EXPECT_EQ(run(home, {"diagnose", "--json", "--capture", file}).status, 0);
        Json reading = Json::parse(std::ifstream(file), nullptr, false);
        reading["now"] = reading["now"].get<double>() + 7200;
        std::ofstream(file) << reading;
        return run(home, {"replay", file}).json();
    }
};

TEST_F(RealBrowser, IsOneGroupUnderItsName) {
    const Pid root = browse({});
    Json rows = rowsOf(root);
    Json diagnosis = run(home, {"diagnose", "--json"}).json();
    std::set<Pid> grouped;
    for (const Json& group : diagnosis["groups"]) {
        if (group["id"] == "Chromium Web Browser") grouped = group["processes"].get<std::set<Pid>>();
    }
    const std::vector<Pid> members = family(root, rows);
    EXPECT_GE(members.size(), 4u);
    for (const Pid pid : members) {
        const auto proc = readProc(pid);
        EXPECT_TRUE(!proc || grouped.contains(pid)) << proc->command.view();
    }
    EXPECT_EQ(std::ranges::count(run(home, {"apps", "--json"}).json(), "app:Chromium Web Browser",
                                 [](const Json& row) { return row["id"]; }),
              1);
    EXPECT_EQ(finding(twoHoursLater(), fmt::format("automation:{}", root)), Json());
}

TEST_F(RealBrowser, WithAThrowAwayProfileIsNamedOnceItIsOld) {
    const Pid root = browse({"--user-data-dir=" + (home.path() / "profile").native()});
    rowsOf(root);
    const std::string id = fmt::format("automation:{}", root);
    EXPECT_EQ(finding(run(home, {"diagnose", "--json"}).json(), id), Json());
    Json found = finding(twoHoursLater(), id);
    EXPECT_THAT(found.value("title", ""),
                AllOf(StartsWith("A hidden automation Chromium Web Browser from "), HasSubstr(" has run 2"),
                      testing::EndsWith(" — your own Chromium Web Browser may not open while it runs")));
    EXPECT_THAT(found.value("evidence", ""), StartsWith(fmt::format("pid {} · temp profile · ", root)));
    EXPECT_EQ(found["remedy"], Json({{"kind", "killTrees"}, {"pids", {root}}}));
}

}  // namespace
}  // namespace ravik::endtoend
