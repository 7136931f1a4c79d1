#include <sys/socket.h>
#include <sys/un.h>

#include "Platform/Linux/Descriptor.h"
#include "Platform/Linux/FdSource.h"
#include "Platform/Linux/SwayIpc.h"
#include "Platform/Linux/Windows.h"

namespace ravik::platform {

namespace {

/// A connection that waits for each answer, but not for long.
class Link {
public:
    explicit Link(const std::string& path) : m_fd(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof address.sun_path - 1);
        const timeval patience{.tv_sec = 1, .tv_usec = 0};
        setsockopt(fd(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        setsockopt(fd(), SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
        if (path.size() >= sizeof address.sun_path ||
            connect(fd(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            shut();
        }
    }

    int fd() const { return m_fd.get(); }
    bool alive() const { return static_cast<bool>(m_fd); }
    void shut() { m_fd.close(); }

    /// The payload of the answer; absent, and the connection shut, if there is none.
    std::optional<std::string> ask(std::uint32_t type, std::string_view payload) {
        const std::string bytes = SwayIpc::encode(type, payload);
        for (std::size_t sent = 0; alive() && sent < bytes.size();) {
            const ssize_t got = send(fd(), bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
            if (got <= 0) {
                shut();
            } else {
                sent += static_cast<std::size_t>(got);
            }
        }
        while (alive()) {
            bool broken = false;
            if (auto message = SwayIpc::take(m_bytes, broken)) {
                if (message->type == type) return std::move(message->payload);
                continue;
            }
            if (broken || !receive(0)) shut();
        }
        return {};
    }

    /// Adds what has come; false if there is nothing more to come.
    bool receive(int flags) {
        char piece[16384];
        const ssize_t got = recv(fd(), piece, sizeof piece, flags);
        if (got > 0) m_bytes.append(piece, static_cast<std::size_t>(got));
        return got > 0;
    }
    std::string& bytes() { return m_bytes; }

private:
    Descriptor m_fd;
    std::string m_bytes;
};

class SwayWindows : public Windows {
public:
    explicit SwayWindows(const std::string& path) : m_link(path), m_events(path) {
        const auto answer = m_events.ask(SwayIpc::subscribe, R"(["window"])");
        if (!answer || answer->find("true") == answer->npos || !m_link.ask(SwayIpc::getTree, "")) {
            m_link.shut();
            return;
        }
        m_source = std::make_unique<FdSource>(
            m_events.fd(), [] { return false; }, [this] { return drain(); });
    }

    bool answers() const { return m_link.alive(); }

    std::vector<Window> list() override { return tree().windows; }
    std::optional<Pid> active() override {
        const Pid focused = tree().focused;
        return focused > 0 ? std::optional(focused) : std::nullopt;
    }
    bool knowsFocus() override { return m_link.alive() && m_events.alive(); }
    void onActive(std::function<void(Pid)> observer) override { m_observer = std::move(observer); }

    bool close(const Window& window) override {
        const auto answer = m_link.ask(SwayIpc::runCommand, "[con_id=" + std::to_string(window.id) + "] kill");
        return answer && SwayIpc::succeeded(*answer);
    }

private:
    SwayIpc::Tree tree() {
        const auto answer = m_link.ask(SwayIpc::getTree, "");
        return answer ? SwayIpc::parseTree(*answer) : SwayIpc::Tree{};
    }

    bool drain() {
        if (!m_events.receive(MSG_DONTWAIT)) {
            m_events.shut();
            return false;
        }
        bool broken = false;
        while (const auto message = SwayIpc::take(m_events.bytes(), broken)) {
            if (message->type != SwayIpc::windowEvent) continue;
            if (const Pid pid = SwayIpc::focusedBy(message->payload); pid > 0 && m_observer) m_observer(pid);
        }
        return !broken;
    }

    Link m_link;
    Link m_events;
    std::function<void(Pid)> m_observer;
    std::unique_ptr<FdSource> m_source;
};

}  // namespace

std::unique_ptr<Windows> makeSwayWindows(const std::string& socketPath) {
    auto windows = std::make_unique<SwayWindows>(socketPath);
    if (!windows->answers()) return nullptr;
    return windows;
}

}  // namespace ravik::platform
