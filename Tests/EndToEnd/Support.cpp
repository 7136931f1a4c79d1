#include "Tests/EndToEnd/Support.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <fstream>
#include <sstream>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/EndToEnd/Isolation.h"

namespace ravik::endtoend {

namespace fs = std::filesystem;
using platform::readProc;
using platform::waitUntil;
using Instant = std::chrono::steady_clock::time_point;

namespace {

const std::string programs = RAVIK_BINARY_DIR "/bin/";
const std::string idleProgram = RAVIK_BINARY_DIR "/bin/ravik-test-idle";

double since(Instant begun) { return std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count(); }

std::string contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

[[noreturn]] void become(const Home& home, const std::vector<std::string>& words,
                         const std::string& program = "ravik") {
    const std::string path = programs + program;
    std::vector<char*> arguments{const_cast<char*>(path.c_str())};
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    std::vector<char*> variables;
    for (const std::string& entry : home.environment()) variables.push_back(const_cast<char*>(entry.c_str()));
    variables.push_back(nullptr);
    execve(path.c_str(), arguments.data(), variables.data());
    _exit(127);
}

/// Waits for a child and takes its status; killed at the end of that time.
int take(Pid pid, double seconds) {
    int status = 0;
    const bool ended = waitUntil([&] { return waitpid(pid, &status, WNOHANG) == pid; }, seconds);
    if (!ended) {
        kill(pid, SIGKILL);
        waitpid(pid, &status, 0);
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

Json Result::json() const {
    Json value = Json::parse(out, nullptr, false);
    if (!value.is_discarded()) return value;
    ADD_FAILURE() << "no JSON: " << out << err;
    return {};
}

Json finding(const Json& diagnosis, std::string_view id) {
    for (const Json& one : diagnosis.value("findings", Json::array())) {
        if (one.value("id", "") == id) return one;
    }
    return {};
}

Home::Home() {
    const std::string root = path().native();
    m_environment = {"HOME=" + root,
                     "XDG_CONFIG_HOME=" + root + "/config",
                     "XDG_STATE_HOME=" + root + "/state",
                     "XDG_CACHE_HOME=" + root + "/cache",
                     "XDG_RUNTIME_DIR=" + root + "/run",
                     "PATH=/usr/bin:/bin",
                     "LANG=C.UTF-8"};
    fs::create_directories(path() / "run");
    fs::permissions(path() / "run", fs::perms::owner_all);
}

void Home::store(const Json& keys) const {
    Json all = settings();
    all.update(keys);
    m_folder.write("config/ravik/settings.json", all.dump());
}

Json Home::settings() const {
    const Json all = Json::parse(contents(path() / "config/ravik/settings.json"), nullptr, false);
    return all.is_object() ? all : Json::object();
}

void Home::storeShortPatience() const {
    Json thresholds = run(*this, {"settings", "--json"}).json();
    thresholds["orphanMinHours"] = 1 / 3600.0;
    store({{"thresholds", thresholds}});
}

std::vector<Json> Home::logLines(std::string_view kind) const {
    std::vector<fs::path> files;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(path() / "state/ravik", error)) files.push_back(entry.path());
    std::ranges::sort(files);
    std::vector<Json> lines;
    for (const fs::path& file : files) {
        std::istringstream text(contents(file));
        for (std::string line; std::getline(text, line);) {
            Json value = Json::parse(line, nullptr, false);
            if (value.is_object() && value.value("kind", "") == kind) lines.push_back(std::move(value));
        }
    }
    return lines;
}

std::string Home::copy(const fs::path& program, const std::string& as) const {
    const fs::path to = path() / "bin" / as;
    fs::create_directories(to.parent_path());
    fs::copy_file(program, to, fs::copy_options::skip_existing);
    return to.native();
}

std::string Home::idle(const std::string& as) const { return copy(idleProgram, as); }

std::string Home::shell(const std::string& as) const { return copy(fs::canonical("/bin/sh"), as); }

Running::Running(const Home& home, const std::vector<std::string>& words, const std::string& program)
    : m_begun(std::chrono::steady_clock::now()) {
    m_pid = platform::forkChild([&] {
        dup2(open("/dev/null", O_RDONLY), 0);
        dup2(open((m_output.path() / "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
        dup2(open((m_output.path() / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
        become(home, words, program);
    });
}

Running::~Running() {
    if (!m_ended) finish(0);
}

void Running::signal(int number) const {
    if (!m_ended) kill(m_pid, number);
}

std::string Running::out() const { return contents(m_output.path() / "out"); }

bool Running::says(std::string_view text, double seconds) {
    return waitUntil([&] { return out().find(text) != std::string::npos; }, seconds);
}

Result Running::finish(double seconds) {
    Result result;
    result.status = take(m_pid, seconds);
    result.seconds = since(m_begun);
    m_ended = true;
    result.out = out();
    result.err = contents(m_output.path() / "err");
    return result;
}

Result run(const Home& home, const std::vector<std::string>& words, double seconds) {
    return Running(home, words).finish(seconds);
}

Typed::Typed(const Home& home, const std::vector<std::string>& words) : m_begun(std::chrono::steady_clock::now()) {
    winsize size{};
    size.ws_col = 200;
    size.ws_row = 50;
    m_pid = forkpty(&m_terminal, nullptr, nullptr, &size);
    if (m_pid == 0) become(home, words);
    fcntl(m_terminal, F_SETFD, FD_CLOEXEC);
}

Typed::~Typed() {
    if (!m_ended) finish(0);
    close(m_terminal);
}

bool Typed::readSome(double seconds) {
    pollfd ready{m_terminal, POLLIN, 0};
    if (poll(&ready, 1, static_cast<int>(seconds * 1000)) != 1) return true;
    char bytes[4096];
    const ssize_t got = read(m_terminal, bytes, sizeof bytes);
    if (got <= 0) return false;
    m_screen.append(bytes, static_cast<std::size_t>(got));
    return true;
}

bool Typed::shows(std::string_view text, double seconds) {
    const Instant begun = std::chrono::steady_clock::now();
    while (m_screen.find(text) == std::string::npos) {
        if (since(begun) > seconds || !readSome(0.1)) return false;
    }
    return true;
}

void Typed::type(std::string_view keys) const {
    EXPECT_EQ(write(m_terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

Result Typed::finish(double seconds) {
    // A terminal reads as an error once its last program has gone.
    const Instant begun = std::chrono::steady_clock::now();
    while (since(begun) < seconds && readSome(0.1)) {}
    Result result;
    result.status = take(m_pid, std::max(1.0, seconds - since(begun)));
    result.seconds = since(m_begun);
    result.out = m_screen;
    m_ended = true;
    return result;
}

void EndToEnd::SetUp() {
    ASSERT_TRUE(isIsolated());
    ASSERT_EQ(othersRunning(), "");
}

void EndToEnd::TearDown() {
    reaper.endAll();
    EXPECT_TRUE(waitUntil([] { return othersRunning().empty(); }, 3)) << "left behind: " << othersRunning();
}

Pid EndToEnd::start(const std::vector<std::string>& words, const std::vector<std::string>& environment) {
    const Pid pid = reaper.add(platform::startProgram(words, environment));
    EXPECT_GT(pid, 0) << words.front();
    return pid;
}

Pid EndToEnd::find(const std::string& command) {
    const auto runner = [&](Pid pid) {
        const auto proc = readProc(pid);
        return proc && proc->command == command ? proc : std::nullopt;
    };
    Pid found = 0;
    waitUntil([&] {
        for (const auto& entry : fs::directory_iterator("/proc")) {
            const std::string name = entry.path().filename().native();
            Pid pid = 0;
            std::from_chars(name.data(), name.data() + name.size(), pid);
            const auto proc = pid > 0 ? runner(pid) : std::nullopt;
            // A child that a shell has forked runs the shell's words until it becomes another program.
            if (proc && !runner(proc->ppid)) found = pid;
        }
        return found > 0;
    });
    EXPECT_GT(found, 0) << command;
    return reaper.add(found);
}

Pid EndToEnd::findAdopted(const std::string& command) {
    const Pid pid = find(command);
    EXPECT_TRUE(waitUntil([&] {
        const auto proc = readProc(pid);
        return proc && proc->ppid == 1;
    })) << command;
    return pid;
}

}  // namespace ravik::endtoend
