#include "Core/Disk/TreeWalk.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

#include "Core/Disk/Descent.h"
#include "Core/Disk/FolderQueue.h"
#include "Core/Disk/MountPoints.h"

namespace ravik {

namespace {

constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
constexpr std::uint64_t blockBytes = 512;  // the unit of st_blocks
/// A tree with fewer folders is read before a second thread would have begun.
constexpr int foldersForHelper = 16;

std::vector<FolderIdentity> mountedBelow(const std::filesystem::path& folder) {
    std::error_code error;
    const auto resolved = std::filesystem::canonical(folder, error);
    std::vector<FolderIdentity> roots;
    if (error) return roots;
    for (const std::string& point : mountPointsBelow(resolved)) {
        struct stat status;
        if (lstat(point.c_str(), &status) == 0) roots.push_back({status.st_dev, status.st_ino});
    }
    return roots;
}

class Walk {
public:
    Walk(TreeQuestion question, std::vector<FolderIdentity> mounted, const std::atomic<bool>* cancelled)
        : m_question(question), m_mounted(std::move(mounted)), m_cancelled(cancelled) {}

    TreeTotals run(int root) {
        TreeTotals totals;
        m_queue.enter();
        descend(root, totals, true);
        work(totals, true);
        if (m_helper.joinable()) {
            m_helper.join();
            totals.bytes += m_helperTotals.bytes;
            totals.newest = std::max(totals.newest, m_helperTotals.newest);
        }
        return totals;
    }

private:
    void work(TreeTotals& totals, bool mayHire) {
        for (int folder = m_queue.take(); folder >= 0; folder = m_queue.take()) descend(folder, totals, mayHire);
    }

    bool isCancelled() const { return m_cancelled && m_cancelled->load(std::memory_order_relaxed); }

    void descend(int root, TreeTotals& totals, bool mayHire) {
        Descent descent(root);
        while (!isCancelled()) {
            const dirent* entry = descent.next();
            if (!entry) return;
            if (entry->d_name[0] == '.') continue;
            bool isFolder = entry->d_type == DT_DIR;
            if (m_question == TreeQuestion::newest || entry->d_type == DT_UNKNOWN || entry->d_type == DT_REG) {
                struct stat status;
                if (fstatat(descent.folder(), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
                isFolder = S_ISDIR(status.st_mode);
                add(status, totals);
            }
            if (isFolder) open(descent, entry->d_name, mayHire);
        }
    }

    void add(const struct stat& status, TreeTotals& totals) const {
        if (m_question == TreeQuestion::newest) {
            totals.newest = std::max(totals.newest, modificationTime(status));
        } else if (S_ISREG(status.st_mode)) {
            totals.bytes += static_cast<std::uint64_t>(status.st_blocks) * blockBytes;
        }
    }

    void open(Descent& descent, const char* name, bool mayHire) {
        const int folder = openat(descent.folder(), name, openFlags);
        if (folder < 0) return;
        if (!m_mounted.empty()) {
            const auto self = FolderIdentity::of(folder);
            if (!self || std::ranges::find(m_mounted, *self) != m_mounted.end()) {
                close(folder);
                return;
            }
        }
        if (mayHire && ++m_folders == foldersForHelper) hire();
        if (!m_queue.offer(folder)) descent.enter(folder);
    }

    void hire() {
        if (std::thread::hardware_concurrency() == 1) return;
        try {
            m_helper = std::thread([this] {
                m_queue.enter();
                work(m_helperTotals, false);
            });
        } catch (const std::system_error&) {
            // The system is out of threads: the first one does it all.
        }
    }

    const TreeQuestion m_question;
    const std::vector<FolderIdentity> m_mounted;
    const std::atomic<bool>* const m_cancelled;
    FolderQueue m_queue;
    int m_folders = 0;
    std::thread m_helper;
    TreeTotals m_helperTotals;
};

}  // namespace

Time modificationTime(const struct stat& status) {
#ifdef __APPLE__
    const timespec& time = status.st_mtimespec;
#else
    const timespec& time = status.st_mtim;
#endif
    return static_cast<Time>(time.tv_sec) + static_cast<Time>(time.tv_nsec) * 1e-9;
}

TreeTotals walkTree(const std::filesystem::path& folder, TreeQuestion question, const std::atomic<bool>* cancelled) {
    const int root = open(folder.c_str(), openFlags);
    if (root < 0) return {};
    return Walk(question, mountedBelow(folder), cancelled).run(root);
}

}  // namespace ravik
