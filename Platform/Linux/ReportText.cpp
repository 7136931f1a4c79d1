#include "Platform/Linux/ReportText.h"

#include <charconv>
#include <cmath>

#include <fmt/format.h>

#include "Platform/Linux/Utf8.h"

namespace ravik::platform::ReportText {

namespace {

/// The value of the first line of that key before the empty line.
std::string_view valueOf(std::string_view text, std::string_view key) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        if (line.empty()) return {};
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.size() > key.size() + 1 && line.starts_with(key) && line.substr(key.size(), 2) == ": ") {
            return line.substr(key.size() + 2);
        }
    }
    return {};
}

template <typename Number>
std::optional<Number> number(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return value;
}

}  // namespace

CrashDiagnostic crash(std::string_view text) {
    CrashDiagnostic diagnostic;
    diagnostic.signal = number<int>(valueOf(text, "signal")).value_or(0);
    diagnostic.version = repairedUtf8(valueOf(text, "version"));
    diagnostic.reason = repairedUtf8(valueOf(text, "reason"));
    return diagnostic;
}

std::optional<HangDiagnostic> hang(std::string_view text) {
    const auto seconds = number<double>(valueOf(text, "seconds"));
    if (!seconds || !std::isfinite(*seconds) || *seconds <= 0) return {};
    return HangDiagnostic{*seconds};
}

std::string ofHang(double seconds, std::string_view version) {
    return fmt::format("seconds: {:.3f}\nversion: {}\n", seconds, oneLine(version));
}

std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char& byte : line) {
        if (static_cast<unsigned char>(byte) < ' ') byte = ' ';
    }
    return line;
}

}  // namespace ravik::platform::ReportText
