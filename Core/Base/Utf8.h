#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ravik::Utf8 {

/// The scalar that begins at `at`, which moves behind it; a byte that belongs to none stands for itself.
char32_t next(std::string_view text, std::size_t& at);

/// Lower case, scalar by scalar and whatever the language, in every alphabet that has cases; the rest stays as it is.
std::string lower(std::string_view text);

/// The text with its first scalar in upper case, in the same alphabets.
std::string capitalised(std::string_view text);

}  // namespace ravik::Utf8
