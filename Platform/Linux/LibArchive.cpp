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

std::optional<LibArchive> found() {
    void* library = dlopen("libarchive.so.13", RTLD_NOW | RTLD_LOCAL);
    if (!library) return {};
    LibArchive all{};
    const bool whole =
        find(library, "archive_write_new", all.writeNew) &&
        find(library, "archive_write_set_format_zip", all.setFormatZip) &&
        find(library, "archive_write_set_options", all.setOptions) &&
        find(library, "archive_write_set_bytes_in_last_block", all.setBytesInLastBlock) &&
        find(library, "archive_write_open", all.open) && find(library, "archive_write_header", all.header) &&
        find(library, "archive_write_data", all.data) && find(library, "archive_write_close", all.close) &&
        find(library, "archive_write_free", all.free) && find(library, "archive_error_string", all.errorString) &&
        find(library, "archive_entry_new", all.entryNew) && find(library, "archive_entry_free", all.entryFree) &&
        find(library, "archive_entry_copy_pathname", all.setPath) &&
        find(library, "archive_entry_copy_symlink", all.setLink) &&
        find(library, "archive_entry_copy_stat", all.setStat) && find(library, "archive_entry_set_size", all.setSize);
    if (!whole) return {};
    return all;
}

}  // namespace

const LibArchive* LibArchive::load() {
    static const std::optional<LibArchive> library = found();
    return library ? &*library : nullptr;
}

}  // namespace ravik::platform
