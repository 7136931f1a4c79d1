// Log files may be torn, edited or written by another version: the history takes what fits and loses nothing of it.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Core/Record/HistoryCache.h"
#include "Core/Record/HistoryStore.h"
#include "Core/Record/LineFold.h"
#include "Core/Record/LogBytes.h"

namespace {

using namespace ravik;

std::string padded(std::string_view line) { return std::string(line) + std::string(LogBytes::padding, '\0'); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    DayAggregate quick;
    DayAggregate thorough;
    LineFold quickFold;
    LineFold thoroughFold;
    quickFold.begin(quick);
    thoroughFold.begin(thorough);
    forEachLine(text, [&](std::string_view line) {
        const std::string whole = padded(line);
        quickFold.apply({whole.data(), line.size()});
        // A blank where the log writes none changes nothing but the way the line is read.
        const std::string spaced = line.front() == '{' ? "{ " + std::string(line.substr(1)) : std::string(line);
        const std::string wide = padded(spaced);
        thoroughFold.apply({wide.data(), spaced.size()});
    });
    if (quick != thorough) __builtin_trap();

    if (const auto bytes = HistoryCache::encode(quick)) {
        const auto again = HistoryCache::decode(*bytes);
        if (!again || *again != quick) __builtin_trap();
    }
    if (const auto day = HistoryCache::decode(text)) {
        const auto bytes = HistoryCache::encode(*day);
        if (bytes && HistoryCache::decode(*bytes) != day) __builtin_trap();
    }
    return 0;
}
