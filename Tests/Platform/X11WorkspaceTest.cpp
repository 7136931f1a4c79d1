#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include <xcb/xcb.h>

#include "Platform/Linux/DesktopWorkspace.h"
#include "Platform/Linux/StoppedFamily.h"
#include "Platform/Linux/XWindowOwners.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Platform/Support/XClient.h"

namespace ravik::platform {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Applications are called by their pids here.
WorkspaceOptions named() {
    WorkspaceOptions options;
    options.groupOf = [](Pid pid) { return std::optional("app " + std::to_string(pid)); };
    return options;
}

std::string name(Pid pid) { return "app " + std::to_string(pid); }

/// Reaches the test's own children.
class SignalsByPid : public Signals {
public:
    std::optional<VerifiedProcess> verify(const Proc& proc) const override {
        const auto now = readProc(proc.id);
        if (!now || now->startTicks != proc.startTicks) return {};
        return vouch(proc.id, nullptr);
    }
    bool alive(const VerifiedProcess& process) const override { return readProc(process.pid()).has_value(); }
    bool send(const VerifiedProcess& process, Signal signal) const override {
        return signal == Signal::resume && kill(process.pid(), SIGCONT) == 0;
    }
    void waitForExit(std::span<const VerifiedProcess>, double) const override {}
    void sleep(double) const override {}
};

class X11Workspace : public testing::Test {
protected:
    X11Workspace() : manager(server), workspace(make()) {}

    void SetUp() override {
        ASSERT_NE(server.display(), "");
        ASSERT_TRUE(manager.started());
        ASSERT_TRUE(turnUntil([&] { return workspace->knowsFocus(); }));
    }
    std::unique_ptr<Workspace> make(WorkspaceOptions options = named()) const {
        return makeWorkspace(std::move(options), {.display = server.display()});
    }
    Pid open(OnClose onClose) {
        const Pid pid = startXClient(server.display(), onClose, reaper);
        EXPECT_TRUE(turnUntil([&] { return find(pid).has_value(); }));
        return pid;
    }
    std::optional<RunningApp> find(Pid pid) {
        for (RunningApp& app : workspace->running()) {
            if (app.pid == pid) return std::move(app);
        }
        return {};
    }
    bool comesToFront(Pid pid) {
        return turnUntil([&] { return workspace->frontmost() == name(pid); });
    }

    OwnXServer server;
    OwnWindowManager manager;
    Reaper reaper;
    std::unique_ptr<Workspace> workspace;
};

TEST_F(X11Workspace, ListsTheOwnersOfWindows) {
    const Pid first = open(OnClose::quit);
    const Pid second = open(OnClose::refuse);
    Pids pids;
    for (const RunningApp& app : workspace->running()) {
        pids.push_back(app.pid);
        EXPECT_EQ(app.localizedName, name(app.pid));
        EXPECT_EQ(app.bundleName, name(app.pid));
    }
    EXPECT_THAT(pids, UnorderedElementsAre(first, second));
}

TEST_F(X11Workspace, FollowsTheFocus) {
    std::vector<std::string> heard;
    workspace->onActivation([&](const std::string& group) { heard.push_back(group); });
    const auto hears = [&](Pid pid) {
        return comesToFront(pid) && turnUntil([&] { return !heard.empty() && heard.back() == name(pid); });
    };
    const Pid first = open(OnClose::quit);
    ASSERT_TRUE(hears(first));
    const Pid second = open(OnClose::quit);
    ASSERT_TRUE(hears(second));
    reaper.end(second);
    EXPECT_TRUE(hears(first));
    EXPECT_THAT(heard, testing::ElementsAre(name(first), name(second), name(first)));
}

TEST_F(X11Workspace, IgnoresAPassingLossOfFocus) {
    const Pid pid = open(OnClose::quit);
    ASSERT_TRUE(comesToFront(pid));
    // What a window manager does between two windows.
    xcb_connection_t* connection = xcb_connect(server.display().c_str(), nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto cookie = xcb_intern_atom(connection, 0, 18, "_NET_ACTIVE_WINDOW");
    auto* active = xcb_intern_atom_reply(connection, cookie, nullptr);
    const std::uint32_t none = 0;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, root, active->atom, XCB_ATOM_WINDOW, 32, 1, &none);
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    EXPECT_EQ(workspace->frontmost(), name(pid));
    // One that lasts is no passing one.
    EXPECT_TRUE(turnUntil([&] { return !workspace->frontmost(); }, 5));
    std::free(active);
    xcb_disconnect(connection);
}

TEST_F(X11Workspace, ClosesWhoeverCloses) {
    const Pid pid = open(OnClose::quit);
    const auto app = find(pid);
    EXPECT_FALSE(workspace->isTerminated(*app));
    EXPECT_TRUE(workspace->terminate(*app));
    EXPECT_TRUE(turnUntil([&] { return workspace->isTerminated(*app); }));
}

TEST_F(X11Workspace, LeavesWhoeverStaysAlive) {
    const Pid pid = open(OnClose::refuse);
    const auto app = find(pid);
    EXPECT_TRUE(workspace->terminate(*app));
    EXPECT_FALSE(turnUntil([&] { return workspace->isTerminated(*app); }, 0.5));
    EXPECT_TRUE(readProc(pid));
}

TEST_F(X11Workspace, NeverTearsDownAWindowThatCannotBeAsked) {
    const Pid pid = open(OnClose::knowNothing);
    const auto app = find(pid);
    EXPECT_FALSE(workspace->terminate(*app));
    EXPECT_FALSE(turnUntil([&] { return workspace->isTerminated(*app); }, 0.5));
    EXPECT_TRUE(readProc(pid));
}

TEST_F(X11Workspace, AsksOnlyTheApplicationItIsGiven) {
    const Pid first = open(OnClose::quit);
    const Pid second = open(OnClose::quit);
    ASSERT_TRUE(workspace->terminate(*find(first)));
    EXPECT_TRUE(turnUntil([&] { return !find(first); }));
    EXPECT_TRUE(find(second));
}

TEST_F(X11Workspace, TakesAnEndedProcessForTerminated) {
    const Pid pid = open(OnClose::refuse);
    const auto app = find(pid);
    reaper.end(pid);
    EXPECT_TRUE(workspace->isTerminated(*app));
    EXPECT_FALSE(workspace->terminate(*app));
}

TEST_F(X11Workspace, OutlivesItsServer) {
    const Pid pid = open(OnClose::quit);
    const auto app = find(pid);
    server.stop();
    EXPECT_THAT(workspace->running(), IsEmpty());
    EXPECT_FALSE(workspace->knowsFocus());
    EXPECT_EQ(workspace->frontmost(), std::nullopt);
    EXPECT_FALSE(turnUntil([] { return false; }, 0.1));
    EXPECT_FALSE(workspace->terminate(*app));
}

TEST_F(X11Workspace, OutlivesItsServerBetweenTwoQuestions) {
    open(OnClose::quit);
    server.stop();
    EXPECT_FALSE(turnUntil([] { return false; }, 0.1));
    EXPECT_FALSE(workspace->knowsFocus());
    EXPECT_THAT(workspace->running(), IsEmpty());
}

TEST_F(X11Workspace, ClosesATerminal) {
    const Pid pid = reaper.add(startProgram({"xterm", "-e", "sleep", "600"}, {server.variable()}));
    ASSERT_TRUE(turnUntil([&] { return find(pid).has_value(); }));
    const auto app = find(pid);
    EXPECT_TRUE(workspace->terminate(*app));
    EXPECT_TRUE(turnUntil([&] { return workspace->isTerminated(*app); }));
}

TEST_F(X11Workspace, ContinuesAStoppedApplicationFirst) {
    const SignalsByPid signals;
    WorkspaceOptions options = named();
    options.signals = &signals;
    workspace = make(std::move(options));
    const Pid pid = open(OnClose::quit);
    const auto app = find(pid);
    ASSERT_EQ(kill(pid, SIGSTOP), 0);
    ASSERT_TRUE(waitUntil([&] { return !stoppedFamily("/proc", pid).empty(); }));
    EXPECT_TRUE(workspace->terminate(*app));
    EXPECT_TRUE(turnUntil([&] { return workspace->isTerminated(*app); }));
}

TEST_F(X11Workspace, KnowsEverybodyWhoOwnsAWindow) {
    const Pid shown = open(OnClose::quit);
    const PidSet owners = xWindowOwners(server.display());
    EXPECT_THAT(owners, Contains(shown));
    EXPECT_FALSE(owners.contains(server.pid()));
}

TEST(X11WorkspaceAlone, KnowsNoFocusWithoutAWindowManager) {
    OwnXServer server;
    const auto workspace = makeWorkspace(named(), {.display = server.display()});
    EXPECT_FALSE(workspace->knowsFocus());
    EXPECT_THAT(workspace->running(), IsEmpty());
}

TEST(HeadlessWorkspace, RunsNothingAndAsksNobody) {
    const auto workspace = makeWorkspace(named(), {});
    EXPECT_THAT(workspace->running(), IsEmpty());
    EXPECT_FALSE(workspace->knowsFocus());
    EXPECT_EQ(workspace->frontmost(), std::nullopt);
    EXPECT_FALSE(workspace->terminate({"x", "x", getpid()}));
    EXPECT_FALSE(workspace->isTerminated({"x", "x", getpid()}));
}

TEST(HeadlessWorkspace, StandsInForADisplayThatCannotBeReached) {
    const auto workspace = makeWorkspace(named(), {.display = ":7777", .swaySocket = "/nowhere"});
    EXPECT_THAT(workspace->running(), IsEmpty());
    EXPECT_FALSE(workspace->knowsFocus());
}

}  // namespace
}  // namespace ravik::platform
