#include "Platform/Linux/ZipArchive.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <memory>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Platform/Linux/Descriptor.h"
#include "Platform/Linux/LibArchive.h"
#include "Platform/Linux/Utf8.h"

namespace ravik::platform {

namespace fs = std::filesystem;

namespace {

using Failure = std::optional<std::string>;

constexpr std::size_t pieceBytes = 1 << 17;

Failure unreadable(const fs::path& path, int error) {
    return fmt::format("{} could not be read ({}).", path.string(), std::generic_category().message(error));
}

Failure unwritable(const fs::path& path, std::string_view why) {
    return fmt::format("{} could not be written ({}).", path.string(), why);
}

/// libarchive marks a name as UTF-8 where the thread's locale is, and a program in the C locale is none.
class Utf8Names {
public:
    Utf8Names() : m_locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (m_locale) m_before = uselocale(m_locale);
    }
    ~Utf8Names() {
        if (!m_locale) return;
        uselocale(m_before);
        freelocale(m_locale);
    }
    Utf8Names(const Utf8Names&) = delete;
    Utf8Names& operator=(const Utf8Names&) = delete;

private:
    locale_t m_locale;
    locale_t m_before{};
};

class Packer {
public:
    Packer(const LibArchive& library, const fs::path& file, const std::function<bool()>& cancelled)
        : m_library(library), m_file(file), m_cancelled(cancelled), m_zip(library.writeNew()) {}
    ~Packer() {
        // A zip that is given up is completed all the same, or the library would keep its memory.
        m_out.isWanted = false;
        m_library.free(m_zip);
    }
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    Failure open(int target) {
        m_library.setFormatZip(m_zip);
        m_library.setOptions(m_zip, "zip:compression=deflate,zip:hdrcharset=UTF-8");
        m_library.setBytesInLastBlock(m_zip, 1);
        m_out.file = target;
        return checked(m_library.open(m_zip, &m_out, nullptr, &Packer::write, nullptr));
    }

    Failure add(const fs::path& path, const std::string& name) {
        struct stat about {};
        if (lstat(path.c_str(), &about) != 0) return errno == ENOENT ? Failure() : unreadable(path, errno);
        if (S_ISDIR(about.st_mode)) return addFolder(path, name + "/", about);
        if (S_ISLNK(about.st_mode)) return addLink(path, name, about);
        if (S_ISREG(about.st_mode)) return addFile(path, name);
        return {};
    }

    Failure close() { return checked(m_library.close(m_zip)); }

private:
    struct Out {
        int file = -1;
        int error = 0;
        bool isWanted = true;
    };

    /// Never fails: after a failed write the library would not free what it holds.
    static la_ssize_t write(archive*, void* data, const void* bytes, std::size_t count) {
        Out& out = *static_cast<Out*>(data);
        const char* next = static_cast<const char*>(bytes);
        for (std::size_t left = count; left > 0 && out.isWanted;) {
            const ssize_t done = ::write(out.file, next, left);
            if (done < 0 && errno == EINTR) continue;
            if (done <= 0) {
                out.error = done < 0 ? errno : ENOSPC;
                out.isWanted = false;
                break;
            }
            next += done;
            left -= static_cast<std::size_t>(done);
        }
        return static_cast<la_ssize_t>(count);
    }

    Failure checked(la_ssize_t result) {
        if (m_out.error) return unwritable(m_file, std::generic_category().message(m_out.error));
        if (result >= ARCHIVE_WARN) return {};
        const char* why = m_library.errorString(m_zip);
        return unwritable(m_file, why ? why : "no reason given");
    }

    Failure begin(const std::string& name, const struct stat& about, const char* link = nullptr) {
        archive_entry* entry = m_library.entryNew();
        m_library.setStat(entry, &about);
        m_library.setPath(entry, repairedUtf8(name).c_str());
        if (link) m_library.setLink(entry, repairedUtf8(link).c_str());
        if (!S_ISREG(about.st_mode)) m_library.setSize(entry, 0);
        Failure why = checked(m_library.header(m_zip, entry));
        m_library.entryFree(entry);
        return why;
    }

    Failure addFolder(const fs::path& path, const std::string& name, const struct stat& about) {
        if (auto why = begin(name, about)) return why;
        std::vector<fs::path> below;
        std::error_code error;
        for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
            below.push_back(entry->path());
        }
        if (error) return unreadable(path, error.value());
        std::ranges::sort(below);
        for (const fs::path& one : below) {
            if (auto why = add(one, name + one.filename().string())) return why;
        }
        return {};
    }

    Failure addLink(const fs::path& path, const std::string& name, const struct stat& about) {
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error) return unreadable(path, error.value());
        return begin(name, about, target.c_str());
    }

    Failure addFile(const fs::path& path, const std::string& name) {
        const Descriptor source(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        struct stat about {};
        if (!source || fstat(source.get(), &about) != 0) return unreadable(path, errno);
        if (!S_ISREG(about.st_mode)) return {};
        if (auto why = begin(name, about)) return why;
        // The header has told the size: not a byte more goes in, however the file grows.
        auto left = static_cast<std::uint64_t>(about.st_size);
        while (left > 0) {
            if (m_cancelled && m_cancelled()) return "It was interrupted.";
            const ssize_t got = read(source.get(), m_piece.get(), std::min<std::uint64_t>(left, pieceBytes));
            if (got == 0) break;
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) return unreadable(path, errno);
            if (auto why = checked(m_library.data(m_zip, m_piece.get(), static_cast<std::size_t>(got)))) return why;
            left -= static_cast<std::uint64_t>(got);
        }
        return {};
    }

    const LibArchive& m_library;
    const fs::path& m_file;
    const std::function<bool()>& m_cancelled;
    archive* m_zip;
    Out m_out;
    std::unique_ptr<char[]> m_piece = std::make_unique<char[]>(pieceBytes);
};

Failure packed(const LibArchive& library, const fs::path& folder, const fs::path& file, int target,
               const std::function<bool()>& cancelled) {
    Packer packer(library, file, cancelled);
    Failure why = packer.open(target);
    if (!why) why = packer.add(folder, folder.filename().string());
    if (!why) why = packer.close();
    return why;
}

}  // namespace

std::optional<std::string> ZipArchive::zip(const fs::path& folder, const fs::path& file,
                                           const std::function<bool()>& cancelled) {
    const LibArchive* library = LibArchive::load();
    if (!library) return "The library that packs zip files, libarchive, is not installed.";
    if (!fs::is_directory(fs::symlink_status(folder))) return unreadable(folder, ENOENT);

    // Beside its place, so that nobody ever finds half a zip there.
    std::string fresh = (file.parent_path() / ("." + file.filename().string() + ".XXXXXX")).string();
    Descriptor target(mkostemp(fresh.data(), O_CLOEXEC));
    if (!target) return unwritable(file, std::generic_category().message(errno));

    const Utf8Names names;
    Failure why = packed(*library, folder, file, target.get(), cancelled);
    target.close();
    if (!why && std::rename(fresh.c_str(), file.c_str()) != 0) {
        why = unwritable(file, std::generic_category().message(errno));
    }
    if (why) unlink(fresh.c_str());
    return why;
}

}  // namespace ravik::platform
