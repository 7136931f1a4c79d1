#include "Core/Screens/ProcessRows.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;
using ProcessRows::Scope;

namespace {

std::vector<ProcRow> rows(const Machine& machine, Scope scope, std::string_view query = {},
                          const ProcessRows::Running& running = {}) {
    const Cards cards(machine);
    return ProcessRows::rows(cards.snapshot, cards.index, scope, query, running, cards.host, fakes::now);
}

std::vector<std::string> ids(const std::vector<ProcRow>& rows) {
    std::vector<std::string> found;
    for (const ProcRow& row : rows) found.push_back(row.id);
    return found;
}

using Ids = std::vector<std::string>;
using Mark = std::pair<Tone, std::optional<std::string>>;

Mark mark(const std::vector<ProcRow>& rows, const std::string& id) {
    for (const ProcRow& row : rows) {
        if (row.id == id) return {row.tone, row.word};
    }
    return {Tone::advice, "no such row"};
}

Making app(Pid pid, const std::string& name) { return Making(pid, "/Applications/" + name + ".app/x"); }

}  // namespace

TEST(ProcessRows, AnAppRowSumsItsProcesses) {
    Machine machine;
    machine.procs = {app(7, "Arc").mb(30).cpu(2).age(hour), app(8, "Arc").mb(12).cpu(1.5).age(3 * hour)};
    ProcRow expected;
    expected.id = "app:Arc";
    expected.command = "Arc";
    expected.mb = 42;
    expected.cpu = 3.5;
    expected.age = 3 * hour;
    expected.app = "Arc";
    EXPECT_EQ(rows(machine, Scope::apps, {}, {"Arc"}), std::vector{expected});
    expected.app = std::nullopt;
    EXPECT_EQ(rows(machine, Scope::apps), std::vector{expected});
}

TEST(ProcessRows, AppsThatMayNotBeTouchedSayWhy) {
    Machine machine;
    machine.procs = {app(7, "Finder"),      app(8, "Foo").uid(0), Making(9, "/System/Library/x"),
                     Making(10, "/sbin/y"), app(11, "Mixed"),     Making(12, "/System/Library/Mixed.app/z")};
    const auto apps = rows(machine, Scope::apps, {}, {"Finder", "[0] Foo", "x", "Mixed"});
    EXPECT_EQ(mark(apps, "app:Finder"), (Mark{Tone::never, "protected"}));
    EXPECT_EQ(mark(apps, "app:[0] Foo"), (Mark{Tone::never, "not yours"}));
    EXPECT_EQ(mark(apps, "app:x"), (Mark{Tone::never, "macOS"}));
    EXPECT_EQ(mark(apps, "app:y"), (Mark{Tone::never, "macOS"}));
    EXPECT_EQ(mark(apps, "app:Mixed"), (Mark{Tone::safe, std::nullopt}));
    for (const ProcRow& row : apps) EXPECT_EQ(row.app.has_value(), row.id == "app:Mixed") << row.id;
}

TEST(ProcessRows, AProcessRowCarriesItsVerdict) {
    Machine machine;
    machine.procs = {Making(7, "/tmp/a").mb(5).cpu(1), Making(8, "/tmp/b").cpu(5.0), Making(9, "/tmp/c").uid(0),
                     Making(10, "/usr/libexec/d"), Making(11, "git gc")};
    const auto all = rows(machine, Scope::all);
    ProcRow first;
    first.id = "pid:7";
    first.command = "/tmp/a";
    first.mb = 5;
    first.cpu = 1;
    first.age = 2 * hour;
    first.pid = 7;
    EXPECT_EQ(all.at(0), first);
    EXPECT_EQ(mark(all, "pid:8"), (Mark{Tone::caution, "busy"}));
    EXPECT_EQ(mark(all, "pid:9"), (Mark{Tone::never, "not yours"}));
    EXPECT_EQ(mark(all, "pid:10"), (Mark{Tone::never, "macOS"}));
    EXPECT_EQ(mark(all, "pid:11"), (Mark{Tone::never, std::nullopt}));
}

TEST(ProcessRows, OnLinuxTheSystemIsCalledSystem) {
    Machine machine;
    machine.host = linuxHost();
    machine.procs = {Making(7, "/usr/sbin/d").uid(1000)};
    EXPECT_EQ(mark(rows(machine, Scope::all), "pid:7"), (Mark{Tone::never, "system"}));
    EXPECT_EQ(mark(rows(machine, Scope::apps), "app:d"), (Mark{Tone::never, "system"}));
}

TEST(ProcessRows, LeftoversAreTheOrphans) {
    Machine machine;
    machine.procs = {Making(7, "/tmp/a").parent(1), Making(8, "/tmp/b"), Making(9, "/tmp/c").parent(1).age(minute)};
    EXPECT_EQ(ids(rows(machine, Scope::leftovers)), Ids{"pid:7"});
}

TEST(ProcessRows, TheQuerySearchesNameAndCommandWithoutCase) {
    Machine machine;
    machine.procs = {Making(7, "/tmp/Alpha --port 1"), Making(8, "/tmp/x").name("ALPHABET"), Making(9, "/tmp/ÉTÉ")};
    EXPECT_EQ(ids(rows(machine, Scope::all, "alpha")), (Ids{"pid:7", "pid:8"}));
    EXPECT_EQ(ids(rows(machine, Scope::all, "PORT")), Ids{"pid:7"});
    EXPECT_EQ(ids(rows(machine, Scope::all, "été")), Ids{"pid:9"});
    EXPECT_TRUE(rows(machine, Scope::all, "nothing").empty());
}

TEST(ProcessRows, TheQueryOfAppsSearchesTheirIdsAlone) {
    Machine machine;
    machine.procs = {app(7, "Arc"), Making(8, "/tmp/x --arc")};
    EXPECT_EQ(ids(rows(machine, Scope::apps, "ARC")), Ids{"app:Arc"});
}

}  // namespace ravik
