option(RAVIK_TESTS "Build the tests" ON)
option(RAVIK_APP "Build the desktop app (Qt)" ON)
option(RAVIK_BENCH "Build the measurements" OFF)
option(RAVIK_FUZZ "Build the fuzz targets (clang)" OFF)
set(RAVIK_SANITIZE "" CACHE STRING "Sanitizers, as -fsanitize takes them")

add_library(ravik-flags INTERFACE)
target_include_directories(ravik-flags INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(ravik-flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
target_compile_definitions(ravik-flags INTERFACE RAVIK_VERSION="${PROJECT_VERSION}")
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 warns about library code of its own when it inlines: variants, optionals, strings.
  target_compile_options(ravik-flags INTERFACE
    -Wno-maybe-uninitialized -Wno-restrict -Wno-stringop-overflow -Wno-array-bounds -Wno-free-nonheap-object)
endif()

if(RAVIK_SANITIZE)
  add_compile_options(-fsanitize=${RAVIK_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${RAVIK_SANITIZE})
  target_sources(ravik-flags INTERFACE $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:${PROJECT_SOURCE_DIR}/cmake/sanitizers/Options.cpp>)
endif()

find_program(RAVIK_MOLD mold)
if(RAVIK_MOLD AND NOT APPLE)
  add_link_options(-fuse-ld=mold)
endif()
find_program(RAVIK_CCACHE ccache)
if(RAVIK_CCACHE)
  set(CMAKE_C_COMPILER_LAUNCHER ${RAVIK_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${RAVIK_CCACHE})
endif()
