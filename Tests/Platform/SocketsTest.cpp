#include "Platform/Linux/Sockets.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace ravik::platform {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

// A server on port 8080 with one client, and a listener on every IPv6 address.
constexpr const char* tcp =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout inode\n"
    "   0: 0100007F:1F90 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000        0 501 1 0 100 0 0 10 0\n"
    "   1: 0100007F:1F90 0100007F:C350 01 00000000:00000000 00:00000000 00000000  1000        0 502 1 0 20 4 30 10 -1\n"
    "   2: 0100007F:C350 0100007F:1F90 01 00000000:00000000 02:00000AF2 00000000  1000        0 503 2 0 20 4 30 10 -1\n"
    "   3: 0A00000A:C351 08080808:01BB 01 00000000:00000000 00:00000000 00000000  1000        0 504 1 0 20 4 30 10 -1\n"
    "   4: 0100007F:1F90 0100007F:C352 06 00000000:00000000 03:00000AF2 00000000     0        0 0 3 0";
constexpr const char* tcp6 =
    "  sl  local_address                         remote_address                        st ...\n"
    "   0: 00000000000000000000000000000000:0BB8 00000000000000000000000000000000:0000 0A 00000000:00000000 "
    "00:00000000 00000000  1000        0 601 1 0 100 0 0 10 0\n"
    "   1: 0000000000000000FFFF00000100007F:0BB8 0000000000000000FFFF00000100007F:C360 01 00000000:00000000 "
    "00:00000000 00000000  1000        0 602 1 0 20 4 30 10 -1\n";
constexpr const char* tcpClientOf6 =
    "   5: 0100007F:C360 0100007F:0BB8 01 00000000:00000000 00:00000000 00000000  1000        0 603 1 0 20 4 30 10 -1\n";

SocketTable table(std::vector<UnixSocket> local = {}, bool complete = true) {
    std::vector<InetSocket> inet;
    parseInetSockets(tcp, inet);
    parseInetSockets(tcp6, inet);
    parseInetSockets(tcpClientOf6, inet);
    return {std::move(inet), std::move(local), complete};
}

UnixSocket connected(std::uint64_t inode, std::uint64_t peer, std::string name = {}) {
    return {.inode = inode, .peer = peer, .established = true, .name = std::move(name)};
}

TEST(Sockets, ReadsTheKernelsTable) {
    std::vector<InetSocket> sockets;
    parseInetSockets(tcp, sockets);
    ASSERT_THAT(sockets, SizeIs(5));
    EXPECT_TRUE(sockets[0].listens);
    EXPECT_EQ(sockets[0].local.port, 8080);
    EXPECT_TRUE(sockets[1].established);
    EXPECT_EQ(sockets[1].inode, 502U);
    EXPECT_EQ(sockets[1].local, sockets[2].remote);
    EXPECT_FALSE(sockets[4].established);
}

TEST(Sockets, PassesOverLinesThatAreNone) {
    std::vector<InetSocket> sockets;
    parseInetSockets("", sockets);
    parseInetSockets("\n\n 0: 01:02 03:04 01\n 1: 0100007F:1F90 0100007F:C350 01 0:0\n", sockets);
    parseInetSockets("   1: 0100007G:1F90 0100007F:C350 01 0:0 0:0 0 1000 0 502", sockets);
    EXPECT_THAT(sockets, IsEmpty());
}

TEST(Sockets, ServesTheClientOfItsPort) {
    EXPECT_EQ(table().served(502).peer, 503U);
    EXPECT_EQ(table().served(503).peer, 0U);
}

TEST(Sockets, ServesNobodyByListening) {
    EXPECT_EQ(table().served(501).peer, 0U);
    EXPECT_FALSE(table().served(501).unknown);
}

TEST(Sockets, ServesNoOtherComputer) { EXPECT_EQ(table().served(504).peer, 0U); }

TEST(Sockets, MatchesAMappedAddress) { EXPECT_EQ(table().served(602).peer, 603U); }

TEST(Sockets, ServesThroughAnAcceptedUnixSocket) {
    const SocketTable sockets = table({connected(701, 702, "/run/user/1000/tool.sock"), connected(702, 701)});
    EXPECT_EQ(sockets.served(701).peer, 702U);
    EXPECT_EQ(sockets.served(702).peer, 0U);
}

TEST(Sockets, ServesBothWaysThroughAPair) {
    const SocketTable sockets = table({connected(701, 702), connected(702, 701)});
    EXPECT_EQ(sockets.served(701).peer, 702U);
    EXPECT_EQ(sockets.served(702).peer, 701U);
}

TEST(Sockets, ServesNobodyWhoseOtherEndHasGone) {
    EXPECT_EQ(table({connected(701, 0, "/tmp/x")}).served(701).peer, 0U);
}

TEST(Sockets, ShowsWindowsAsAClientOfTheCompositor) {
    const SocketTable sockets = table({connected(701, 702), connected(702, 701, "/run/user/1000/wayland-0"),
                                       connected(703, 704), connected(704, 703, "/run/user/1000/bus")});
    EXPECT_TRUE(sockets.served(701).showsWindows);
    EXPECT_FALSE(sockets.served(702).showsWindows);
    EXPECT_FALSE(sockets.served(703).showsWindows);
}

TEST(Sockets, AreUnknownOnlyWhereATableIsMissing) {
    EXPECT_FALSE(table().served(999).unknown);
    EXPECT_TRUE(table({}, false).served(999).unknown);
}

TEST(Sockets, ReadsTheKernelsUnixTable) {
    std::vector<UnixSocket> sockets;
    parseUnixSockets(
        "Num       RefCount Protocol Flags    Type St Inode Path\n"
        "00000000b1: 00000002 00000000 00010000 0001 01 801 /run/user/1000/bus\n"
        "00000000b2: 00000003 00000000 00000000 0001 03 802 /run/user/1000/a b\n"
        "00000000b3: 00000003 00000000 00000000 0001 03 803",
        sockets);
    ASSERT_THAT(sockets, SizeIs(3));
    EXPECT_TRUE(sockets[0].listens);
    EXPECT_EQ(sockets[1].name, "/run/user/1000/a b");
    EXPECT_TRUE(sockets[2].established);
    EXPECT_FALSE(sockets[2].peerKnown);
    EXPECT_TRUE(SocketTable({}, sockets, true).served(802).unknown);
    EXPECT_FALSE(SocketTable({}, sockets, true).served(801).unknown);
}

TEST(Sockets, ReadsTheInodeOfALink) {
    EXPECT_EQ(socketInode("socket:[123]"), 123U);
    EXPECT_EQ(socketInode("pipe:[123]"), 0U);
    EXPECT_EQ(socketInode("socket:[]"), 0U);
    EXPECT_EQ(socketInode("socket:[12x]"), 0U);
    EXPECT_EQ(socketInode("/dev/null"), 0U);
}

TEST(Sockets, RefusesACutAnswerOfTheKernel) {
    std::vector<UnixSocket> sockets;
    EXPECT_TRUE(parseUnixDiag("", sockets));
    EXPECT_TRUE(parseUnixDiag("abc", sockets));
    EXPECT_TRUE(parseUnixDiag(std::string(64, '\xff'), sockets));
    EXPECT_TRUE(parseUnixDiag(std::string(64, '\0'), sockets));
    EXPECT_THAT(sockets, IsEmpty());
}

TEST(Sockets, FindsTheOtherEndOfARealPair) {
    int ends[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    const auto inode = [](int fd) {
        char link[64]{};
        const std::string path = "/proc/self/fd/" + std::to_string(fd);
        return readlink(path.c_str(), link, sizeof link - 1) > 0 ? socketInode(link) : 0;
    };
    const auto sockets = readUnixSockets();
    ASSERT_TRUE(sockets);
    EXPECT_EQ(SocketTable({}, *sockets, true).served(inode(ends[0])).peer, inode(ends[1]));
    EXPECT_THAT(readSocketInodes("/proc/self"), testing::IsSupersetOf({inode(ends[0]), inode(ends[1])}));
    close(ends[0]);
    close(ends[1]);
}

}  // namespace
}  // namespace ravik::platform
