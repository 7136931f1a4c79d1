#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "Platform/Linux/LinuxServices.h"
#include "Tests/Fakes/TemporaryFolder.h"
#include "Tests/Platform/Support/Children.h"
#include "Tests/Platform/Support/Desktop.h"
#include "Tests/Platform/Support/XClient.h"

namespace ravik::platform {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

[[noreturn]] void waitForEver() {
    while (true) pause();
}

/// Real servers and clients, each a child of the test.
class Engaged : public testing::Test {
protected:
    PidSet ask(const Pids& candidates, const Pids& all, const PidSet& windowOwners = {}) {
        LinuxServices::Options options;
        options.uid = getuid();
        options.self = getpid();
        options.windowOwners = [windowOwners] { return windowOwners; };
        return LinuxServices(options).engaged(candidates, readProcs(all));
    }
    Pid start(const std::function<void()>& body) {
        const Pid pid = reaper.add(forkChild([&] {
            body();
            pipe.tell(getpid());
            waitForEver();
        }));
        EXPECT_EQ(pipe.hear(), pid);
        return pid;
    }

    PidPipe pipe;
    Reaper reaper;
};

/// A listener on a loopback port of the kernel's choice.
int listenTcp(sockaddr_in& address) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener, 4) != 0) return -1;
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    return listener;
}

TEST_F(Engaged, IsAServerWithAClientOfTheUser) {
    sockaddr_in address{};
    const int listener = listenTcp(address);
    ASSERT_GE(listener, 0);
    const Pid client = start([&] {
        close(listener);
        const int link = socket(AF_INET, SOCK_STREAM, 0);
        if (connect(link, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) _exit(1);
    });
    const Pid server = start([&] {
        if (accept(listener, nullptr, nullptr) < 0) _exit(1);
    });
    const Pid idle = start([&] {});
    close(listener);

    EXPECT_THAT(ask({server}, {getpid(), server, client, idle}), UnorderedElementsAre(server));
    EXPECT_THAT(ask({client}, {getpid(), server, client, idle}), IsEmpty());
    EXPECT_THAT(ask({idle}, {getpid(), server, client, idle}), IsEmpty());
    reaper.end(client);
    EXPECT_TRUE(waitUntil([&] { return ask({server}, {getpid(), server}).empty(); }));
}

TEST_F(Engaged, IsAServerOnAUnixSocket) {
    fakes::TemporaryFolder folder;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder.path() / "s").native().copy(address.sun_path, sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 4), 0);
    const Pid client = start([&] {
        close(listener);
        const int link = socket(AF_UNIX, SOCK_STREAM, 0);
        if (connect(link, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) _exit(1);
    });
    const Pid server = start([&] {
        if (accept(listener, nullptr, nullptr) < 0) _exit(1);
    });
    close(listener);

    EXPECT_THAT(ask({server, client}, {getpid(), server, client}), UnorderedElementsAre(server));
}

TEST_F(Engaged, IsAnHelperWhosePairOfSocketsAnotherProcessHolds) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    const Pid helper = start([&] { close(ends[0]); });
    const Pid user = start([&] { close(ends[1]); });
    close(ends[0]);
    close(ends[1]);
    EXPECT_THAT(ask({helper}, {getpid(), helper, user}), UnorderedElementsAre(helper));
    reaper.end(user);
    EXPECT_THAT(ask({helper}, {getpid(), helper}), IsEmpty());
}

TEST_F(Engaged, IsNotWhoeverIsConnectedOnlyToItsOwnChildren) {
    PidPipe children;
    const Pid parent = start([&] {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) _exit(1);
        children.tell(forkChild([&] {
            close(ends[0]);
            waitForEver();
        }));
        close(ends[1]);
    });
    const Pid child = reaper.add(children.hear());
    EXPECT_THAT(ask({parent}, {getpid(), parent, child}), IsEmpty());
    // Seen as a process of its own, the child is in use.
    EXPECT_THAT(ask({child}, {getpid(), parent, child}), UnorderedElementsAre(child));
}

TEST_F(Engaged, IsWhoeverOwnsAWindowOnTheUsersDisplay) {
    OwnXServer server;
    ASSERT_NE(server.display(), "");
    const Pid shown = startXClient(server.display(), OnClose::quit, reaper);
    const Pid hidden = start([&] {});
    LinuxServices::Options options;
    options.uid = getuid();
    options.self = getpid();
    const char* before = std::getenv("DISPLAY");
    const std::string kept = before ? before : "";
    setenv("DISPLAY", server.display().c_str(), 1);
    EXPECT_THAT(LinuxServices(options).engaged({shown, hidden}, readProcs({getpid(), shown, hidden})),
                UnorderedElementsAre(shown));
    if (before) {
        setenv("DISPLAY", kept.c_str(), 1);
    } else {
        unsetenv("DISPLAY");
    }
}

TEST_F(Engaged, IsWhoeverOwnsAWindowItselfOrBelow) {
    const Pid child = start([&] {});
    EXPECT_THAT(ask({child}, {getpid(), child}, {child}), UnorderedElementsAre(child));
    EXPECT_THAT(ask({getpid()}, {getpid(), child}, {child}), UnorderedElementsAre(getpid()));
    EXPECT_THAT(ask({child}, {getpid(), child}, {getpid()}), IsEmpty());
    EXPECT_THAT(ask({}, {getpid(), child}, {child}), IsEmpty());
}

}  // namespace
}  // namespace ravik::platform
