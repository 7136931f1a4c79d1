#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Core/Base/Pids.h"

namespace ravik::platform {

/// A TCP socket. Addresses in 16 bytes, IPv4 as mapped, so that both ends of a connection compare.
struct InetSocket {
    struct End {
        std::array<std::uint8_t, 16> address{};
        std::uint16_t port = 0;
        friend bool operator==(const End&, const End&) = default;
    };
    End local;
    End remote;
    std::uint64_t inode = 0;
    bool established = false;
    bool listens = false;
};

struct UnixSocket {
    std::uint64_t inode = 0;
    /// The other end; 0 if there is none.
    std::uint64_t peer = 0;
    /// False where the other end exists and the kernel does not say which it is.
    bool peerKnown = true;
    bool established = false;
    bool listens = false;
    /// The address it is bound to; an accepted socket has that of its listener. Empty if it has none.
    std::string name;
};

/// Reads the text of /proc/net/tcp or tcp6, and adds what stands in it. Lines that are none are passed over. Pure.
void parseInetSockets(std::string_view text, std::vector<InetSocket>& into);
/// Reads the text of /proc/net/unix, which does not tell the other ends. Pure.
void parseUnixSockets(std::string_view text, std::vector<UnixSocket>& into);
/// Reads one datagram of the kernel's answer about Unix sockets. Pure. True until the answer has ended.
bool parseUnixDiag(std::string_view bytes, std::vector<UnixSocket>& into);

/// The inode of a descriptor's link text "socket:[123]"; 0 if it is no socket. Pure.
std::uint64_t socketInode(std::string_view link);

/// Who is connected to whom. Pure.
class SocketTable {
public:
    /// `complete` is false where a part could not be read: a socket that is not found may then be any.
    SocketTable(std::vector<InetSocket> inet, std::vector<UnixSocket> local, bool complete);

    /// What a socket serves at its other end.
    struct Served {
        /// Inode of the other end on this machine; 0 if there is none.
        std::uint64_t peer = 0;
        /// True where somebody is at the other end who cannot be told.
        bool unknown = false;
        /// True where the other end is the socket of a Wayland compositor, to which this one is a client.
        bool showsWindows = false;
    };
    /// A connection that this socket opened itself is not served by it. Where the two ends do not tell who opened
    /// it, as with a pair of sockets, both serve.
    Served served(std::uint64_t inode) const;

private:
    const InetSocket* otherEnd(const InetSocket& socket) const;

    std::vector<InetSocket> m_inet;
    std::vector<UnixSocket> m_unix;
    std::unordered_map<std::uint64_t, std::size_t> m_inetByInode;
    std::unordered_map<std::uint64_t, std::size_t> m_unixByInode;
    std::unordered_multimap<std::uint32_t, std::size_t> m_inetByPorts;
    std::unordered_set<std::uint16_t> m_listening;
    bool m_complete;
};

/// All Unix sockets of this network namespace with their other ends; absent where the kernel does not tell. Any
/// thread.
std::optional<std::vector<UnixSocket>> readUnixSockets();

/// Inodes of the sockets that a process holds, from `folder`/fd. Any thread.
std::vector<std::uint64_t> readSocketInodes(const std::filesystem::path& folder);

}  // namespace ravik::platform
