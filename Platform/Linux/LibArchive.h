#pragma once

#include <archive.h>
#include <archive_entry.h>

namespace ravik::platform {

/// The functions of libarchive that writing needs, found at run time.
struct LibArchive {
    decltype(&archive_write_new) writeNew;
    decltype(&archive_write_set_format_zip) setFormatZip;
    decltype(&archive_write_set_options) setOptions;
    decltype(&archive_write_set_bytes_in_last_block) setBytesInLastBlock;
    decltype(&archive_write_open) open;
    decltype(&archive_write_header) header;
    decltype(&archive_write_data) data;
    decltype(&archive_write_close) close;
    decltype(&archive_write_free) free;
    decltype(&archive_error_string) errorString;
    decltype(&archive_entry_new) entryNew;
    decltype(&archive_entry_free) entryFree;
    decltype(&archive_entry_copy_pathname) setPath;
    decltype(&archive_entry_copy_symlink) setLink;
    decltype(&archive_entry_copy_stat) setStat;
    decltype(&archive_entry_set_size) setSize;

    /// Null if it is not installed. Loaded once, for the program's life; any thread.
    static const LibArchive* load();
};

}  // namespace ravik::platform
