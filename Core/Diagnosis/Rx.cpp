#include "Core/Diagnosis/Rx.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace ravik {

struct Regex::Code {
    pcre2_code* compiled;
    /// A text without these bytes cannot match; empty: none known.
    std::string_view required;
};

namespace {

[[noreturn]] void fail(const char* pattern, int error) {
    PCRE2_UCHAR message[256] = {};
    pcre2_get_error_message(error, message, sizeof message);
    std::fprintf(stderr, "%s: %s\n", pattern, reinterpret_cast<const char*>(message));
    std::abort();
}

struct FreeMatch {
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

/// One range is enough for every expression, since no capture is ever asked for.
pcre2_match_data* scratch() {
    static thread_local const std::unique_ptr<pcre2_match_data, FreeMatch> data(pcre2_match_data_create(1, nullptr));
    return data.get();
}

}  // namespace

Regex::Regex(const char* pattern, std::string_view required) : m_code(new Code{nullptr, required}) {
    int error = 0;
    PCRE2_SIZE at = 0;
    m_code->compiled = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern), PCRE2_ZERO_TERMINATED,
                                     PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF, &error, &at, nullptr);
    if (!m_code->compiled) fail(pattern, error);
    // Without JIT on this processor the interpreter answers the same, slower.
    pcre2_jit_compile(m_code->compiled, PCRE2_JIT_COMPLETE);
}

Regex::~Regex() {
    pcre2_code_free(m_code->compiled);
    delete m_code;
}

std::optional<std::string_view> Regex::find(std::string_view text) const {
    if (!m_code->required.empty() && text.find(m_code->required) == text.npos) return std::nullopt;
    const int found =
        pcre2_match(m_code->compiled, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), 0, 0, scratch(), nullptr);
    if (found < 0) return std::nullopt;
    const PCRE2_SIZE* range = pcre2_get_ovector_pointer(scratch());
    return text.substr(range[0], range[1] - range[0]);
}

namespace Rx {

const Regex& appBundle() {
    static const Regex regex(R"(/([^/]+)\.app(/|$))", ".app");
    return regex;
}

const Regex& version() {
    static const Regex regex(R"(^\d+\.\d+)", ".");
    return regex;
}

const Regex& insideApp() {
    static const Regex regex(R"(/[^/]+\.app/)", ".app/");
    return regex;
}

const Regex& agentLeftover() {
    static const Regex regex(R"(mcp|_npx/|playwright|chrome-devtools|\.claude/)");
    return regex;
}

const Regex& automationProfile() {
    // The second alternative matches nothing. It leaps over a blank-free run that holds no such profile, which
    // otherwise costs the square of its length when the flag is repeated in it.
    static const Regex regex(R"(--user-data-dir=\S*(puppeteer|playwright|chrome-devtools|/T/|/tmp/))"
                             R"(|--user-data-dir=\S*(*SKIP)(*FAIL))",
                             "--user-data-dir=");
    return regex;
}

}  // namespace Rx

}  // namespace ravik
