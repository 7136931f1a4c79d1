#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ravik::platform {

/// A folder of a test's own, gone with it.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "ravik-test-XXXXXX").string();
        if (mkdtemp(pattern.data())) m_path = pattern;
    }
    ~TempFolder() {
        std::error_code ignored;
        if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    std::filesystem::path operator/(const std::filesystem::path& below) const { return m_path / below; }

private:
    std::filesystem::path m_path;
};

/// Exit status of a child of the test that does `work`; -1 if a signal ended it. The child has this thread alone.
inline int inChild(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline constexpr uid_t somebodyElse = 65534;

/// Runs `work` as a user who has no privileges: in a child where the test itself has them.
inline int unprivileged(const std::function<int()>& work) {
    return inChild([&] {
        if (geteuid() == 0 && (setgid(somebodyElse) != 0 || setuid(somebodyElse) != 0)) return 99;
        return work();
    });
}

inline unsigned modeOf(const std::filesystem::path& path) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 ? found.st_mode & 07777u : 0;
}

}  // namespace ravik::platform
