// Other programs name their sockets, and the kernel's datagrams are read by their own lengths.
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Linux/Sockets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ravik::platform;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    socketInode(text);
    std::vector<InetSocket> inet;
    parseInetSockets(text, inet);
    for (const bool fromKernel : {false, true}) {
        std::vector<UnixSocket> local;
        fromKernel ? static_cast<void>(parseUnixDiag(text, local)) : parseUnixSockets(text, local);
        std::vector<std::uint64_t> inodes{0};
        for (const auto& socket : inet) inodes.push_back(socket.inode);
        for (const auto& socket : local) inodes.push_back(socket.inode);
        const SocketTable table(inet, std::move(local), true);
        for (const std::uint64_t inode : inodes) table.served(inode);
    }
    return 0;
}
