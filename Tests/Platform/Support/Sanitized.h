#pragma once

namespace ravik::platform {

/// True where a sanitizer watches, under which a program takes several times as long.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

}  // namespace ravik::platform
