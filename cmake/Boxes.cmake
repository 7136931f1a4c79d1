# ravik_box(TARGET FOLDER [EXCLUDE FILE...]): a static library of all sources below FOLDER.
function(ravik_box target folder)
  cmake_parse_arguments(BOX "" "" "EXCLUDE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  foreach(path ${BOX_EXCLUDE})
    list(REMOVE_ITEM sources ${PROJECT_SOURCE_DIR}/${path})
  endforeach()
  add_library(${target} STATIC ${sources})
  target_link_libraries(${target} PUBLIC ravik-flags)
endfunction()

# ravik_test(TARGET FOLDER [LINK LIBRARY...]): one test program of all sources below FOLDER, each case a ctest entry.
function(ravik_test target folder)
  cmake_parse_arguments(TEST "" "" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE ${TEST_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE RAVIK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                             RAVIK_BINARY_DIR="${CMAKE_BINARY_DIR}")
  gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()
