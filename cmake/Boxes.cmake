# ravik_box(TARGET FOLDER [EXCLUDE PATH...]): a static library of all sources below FOLDER, but for those paths.
function(ravik_box target folder)
  cmake_parse_arguments(BOX "" "" "EXCLUDE" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS
       ${PROJECT_SOURCE_DIR}/${folder}/*.cpp ${PROJECT_SOURCE_DIR}/${folder}/*.mm)
  foreach(path ${BOX_EXCLUDE})
    list(FILTER sources EXCLUDE REGEX "^${PROJECT_SOURCE_DIR}/${path}")
  endforeach()
  add_library(${target} STATIC ${sources})
  target_link_libraries(${target} PUBLIC ravik-flags)
endfunction()

# ravik_test(TARGET FOLDER [FORKS] [LINK LIBRARY...]): one test program of all sources below FOLDER. Each case is a ctest
# entry; under a sanitizer, whose start takes longer than most cases, each program is a few entries that share its cases.
# FORKS: its cases fork, which the thread sanitizer allows only where no thread has run before, or wait for programs that
# they start: there each case is an entry under a sanitizer as well.
function(ravik_test target folder)
  cmake_parse_arguments(TEST "FORKS" "" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE ${TEST_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_definitions(${target} PRIVATE RAVIK_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                             RAVIK_BINARY_DIR="${CMAKE_BINARY_DIR}")
  # The tests' own code need not be fast; what they test is built as ever.
  if(NOT RAVIK_SANITIZE)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
    # A value without a printer of its own would be named by its bytes, which differ from run to run.
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES PROPERTIES TIMEOUT 300)
    return()
  endif()

  target_compile_options(${target} PRIVATE -O0)
  string(REGEX REPLACE ",.*" "" sanitizer ${RAVIK_SANITIZE})
  if(TEST_FORKS)
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES TEST_PREFIX ${sanitizer}.
                         PROPERTIES TIMEOUT 300)
    return()
  endif()
  set(shards 4)
  foreach(shard RANGE 1 ${shards})
    set(name "${sanitizer}.${target}.${shard}of${shards}")
    add_test(NAME ${name} COMMAND ${target} --gtest_brief=1)
    math(EXPR index "${shard} - 1")
    set_tests_properties(${name} PROPERTIES TIMEOUT 1200 ENVIRONMENT
      "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${index}")
  endforeach()
endfunction()
