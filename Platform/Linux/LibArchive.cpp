#include "Platform/Linux/LibArchive.h"

#include <optional>

#include <dlfcn.h>

namespace ravik::platform {

namespace {

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

std::optional<LibArchive> open() {
    void* library = dlopen("libarchive.so.13", RTLD_NOW | RTLD_LOCAL);
    if (!library) return {};
    LibArchive found{};
    const bool whole =
        find(library, "archive_write_new", found.writeNew) &&
        find(library, "archive_write_set_format_zip", found.setFormatZip) &&
        find(library, "archive_write_set_options", found.setOptions) &&
        find(library, "archive_write_set_bytes_in_last_block", found.setBytesInLastBlock) &&
        find(library, "archive_write_open_fd", found.openDescriptor) &&
        find(library, "archive_write_header", found.header) && find(library, "archive_write_data", found.data) &&
        find(library, "archive_write_close", found.close) && find(library, "archive_write_fail", found.fail) &&
        find(library, "archive_write_free", found.free) && find(library, "archive_error_string", found.errorString) &&
        find(library, "archive_entry_new", found.entryNew) && find(library, "archive_entry_free", found.entryFree) &&
        find(library, "archive_entry_copy_pathname", found.setPath) &&
        find(library, "archive_entry_copy_symlink", found.setLink) &&
        find(library, "archive_entry_copy_stat", found.setStat) &&
        find(library, "archive_entry_set_size", found.setSize);
    if (!whole) return {};
    return found;
}

}  // namespace

const LibArchive* LibArchive::load() {
    static const std::optional<LibArchive> library = open();
    return library ? &*library : nullptr;
}

}  // namespace ravik::platform
