#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "Platform/Linux/DesktopWorkspace.h"
#include "Platform/Linux/SwayIpc.h"
#include "Tests/Platform/Support/Desktop.h"

namespace ravik::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* tree = R"({"id": 1, "type": "root", "focused": false, "nodes": [
  {"id": 3, "type": "output", "focused": false, "nodes": [
    {"id": 4, "type": "workspace", "focused": false,
     "nodes": [{"id": 7, "type": "con", "pid": 812, "app_id": "foot", "focused": false, "nodes": [], "floating_nodes": []},
               {"id": 8, "type": "con", "pid": 813, "app_id": null, "focused": true, "nodes": []}],
     "floating_nodes": [{"id": 9, "type": "floating_con", "pid": 812, "focused": false}]}]}]})";

Pids pids(const std::vector<Windows::Window>& windows) {
    Pids found;
    for (const Windows::Window& window : windows) found.push_back(window.pid);
    return found;
}

TEST(SwayIpc, ReadsWindowsOutOfTheTree) {
    const SwayIpc::Tree read = SwayIpc::parseTree(tree);
    EXPECT_THAT(pids(read.windows), ElementsAre(812, 813, 812));
    EXPECT_EQ(read.focused, 813);
    EXPECT_EQ(read.windows[0].id, 7U);
}

TEST(SwayIpc, ReadsNoWindowsOutOfNonsense) {
    for (const char* text : {"", "{", "[]", "17", R"({"pid": "x", "nodes": 3})", R"({"nodes": [null, 1, []]})"}) {
        EXPECT_THAT(SwayIpc::parseTree(text).windows, IsEmpty());
        EXPECT_EQ(SwayIpc::focusedBy(text), 0);
        EXPECT_FALSE(SwayIpc::succeeded(text));
    }
}

TEST(SwayIpc, HearsWhoGetsTheFocus) {
    EXPECT_EQ(SwayIpc::focusedBy(R"({"change": "focus", "container": {"id": 7, "pid": 812}})"), 812);
    EXPECT_EQ(SwayIpc::focusedBy(R"({"change": "title", "container": {"id": 7, "pid": 812}})"), 0);
    EXPECT_EQ(SwayIpc::focusedBy(R"({"change": "focus"})"), 0);
}

TEST(SwayIpc, KnowsWhetherACommandWasCarriedOut) {
    EXPECT_TRUE(SwayIpc::succeeded(R"([{"success": true}])"));
    EXPECT_FALSE(SwayIpc::succeeded(R"([{"success": false, "error": "no such container"}])"));
}

TEST(SwayIpc, TakesMessagesApart) {
    std::string bytes = SwayIpc::encode(SwayIpc::getTree, "abc") + SwayIpc::encode(SwayIpc::windowEvent, "");
    const std::string whole = bytes;
    bool broken = false;
    const auto first = SwayIpc::take(bytes, broken);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->type, SwayIpc::getTree);
    EXPECT_EQ(first->payload, "abc");
    EXPECT_EQ(SwayIpc::take(bytes, broken)->type, SwayIpc::windowEvent);
    EXPECT_EQ(bytes, "");
    for (std::size_t size = 0; size < 17; ++size) {
        std::string part = whole.substr(0, size);
        EXPECT_FALSE(SwayIpc::take(part, broken));
        EXPECT_FALSE(broken);
    }
    std::string other = "HTTP/1.1 200 OK\r\n";
    EXPECT_FALSE(SwayIpc::take(other, broken));
    EXPECT_TRUE(broken);
    std::string huge = "i3-ipc\xff\xff\xff\xff\x04";
    huge.append(3, '\0');
    EXPECT_FALSE(SwayIpc::take(huge, broken));
    EXPECT_TRUE(broken);
}

/// Speaks sway's protocol for one window, in a process of its own.
class Compositor {
public:
    Compositor() {
        const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path().copy(address.sun_path, sizeof address.sun_path - 1);
        const bool ready =
            bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 && listen(listener, 4) == 0;
        m_pid = ready ? m_reaper.add(forkChild([&] { serve(listener, getppid()); })) : 0;
        close(listener);
    }
    std::string path() const { return (m_folder.path() / "sway.sock").native(); }
    Pid pid() const { return m_pid; }
    void stop() { m_reaper.end(m_pid); }

private:
    /// The one window belongs to `owner`; each asked to be closed brings it to the front instead.
    static void serve(int listener, Pid owner) {
        const int first = accept(listener, nullptr, nullptr);
        const int second = accept(listener, nullptr, nullptr);
        const std::string node = R"({"id": 7, "focused": true, "pid": )" + std::to_string(owner) + "}";
        // The first connection asks, the second hears events; the subscription comes before any question.
        if (!hear(second)) return;
        tell(second, SwayIpc::subscribe, R"({"success": true})");
        while (const auto message = hear(first)) {
            const bool command = message->type == SwayIpc::runCommand;
            if (command && message->payload != "[con_id=7] kill") return;
            tell(first, message->type, command ? R"([{"success": true}])" : R"({"id": 1, "nodes": [)" + node + "]}");
            if (command) tell(second, SwayIpc::windowEvent, R"({"change": "focus", "container": )" + node + "}");
        }
    }
    static std::optional<SwayIpc::Message> hear(int fd) {
        std::string bytes;
        bool broken = false;
        char piece[4096];
        while (true) {
            if (auto message = SwayIpc::take(bytes, broken)) return message;
            const ssize_t got = read(fd, piece, sizeof piece);
            if (got <= 0) return {};
            bytes.append(piece, static_cast<std::size_t>(got));
        }
    }
    static void tell(int fd, std::uint32_t type, const std::string& payload) {
        const std::string bytes = SwayIpc::encode(type, payload);
        if (write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) _exit(1);
    }

    fakes::TemporaryFolder m_folder;
    Reaper m_reaper;
    Pid m_pid = 0;
};

TEST(SwayWorkspace, ListsFollowsAndAsks) {
    Compositor sway;
    ASSERT_GT(sway.pid(), 0);
    WorkspaceOptions options;
    options.groupOf = [](Pid) { return std::optional<std::string>("Editor"); };
    const auto workspace = makeWorkspace(std::move(options), {.swaySocket = sway.path()});
    std::vector<std::string> heard;
    workspace->onActivation([&](const std::string& group) { heard.push_back(group); });

    EXPECT_TRUE(workspace->knowsFocus());
    EXPECT_EQ(workspace->frontmost(), "Editor");
    const auto apps = workspace->running();
    ASSERT_EQ(apps.size(), 1U);
    EXPECT_EQ(apps[0].pid, getpid());
    EXPECT_TRUE(workspace->terminate(apps[0]));
    EXPECT_TRUE(turnUntil([&] { return !heard.empty(); }));
    EXPECT_THAT(heard, ElementsAre("Editor"));

    sway.stop();
    EXPECT_THAT(workspace->running(), IsEmpty());
    EXPECT_FALSE(workspace->knowsFocus());
    EXPECT_FALSE(turnUntil([] { return false; }, 0.05));
}

}  // namespace
}  // namespace ravik::platform
