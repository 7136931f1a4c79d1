# Builds for macOS 14 on another system: clang, lld and an SDK of Apple's, which may not be handed on and so is not here.
# SDKROOT names its folder (MacOSX14.sdk); libraries of the Debian list, built for macOS, lie below RAVIK_MACOS_PREFIX.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_ARCHITECTURES arm64)
set(CMAKE_OSX_DEPLOYMENT_TARGET 14.0)

if(NOT CMAKE_OSX_SYSROOT)
  set(CMAKE_OSX_SYSROOT "$ENV{SDKROOT}")
endif()
if(NOT EXISTS "${CMAKE_OSX_SYSROOT}/SDKSettings.json")
  message(FATAL_ERROR
    "Building for macOS needs the macOS 14 SDK, which comes with Apple's Xcode. Set SDKROOT to its folder "
    "(the one that holds SDKSettings.json) and configure again.")
endif()

set(target arm64-apple-macos14)
find_program(RAVIK_CLANG NAMES clang-16 clang REQUIRED)
find_program(RAVIK_CLANGXX NAMES clang++-16 clang++ REQUIRED)
foreach(language C CXX OBJC OBJCXX)
  if(language MATCHES "CXX")
    set(CMAKE_${language}_COMPILER ${RAVIK_CLANGXX})
  else()
    set(CMAKE_${language}_COMPILER ${RAVIK_CLANG})
  endif()
  set(CMAKE_${language}_COMPILER_TARGET ${target})
endforeach()
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld")
endforeach()

set(CMAKE_FIND_ROOT_PATH "${CMAKE_OSX_SYSROOT}" "$ENV{RAVIK_MACOS_PREFIX}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
