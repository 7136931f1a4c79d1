#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/EndToEnd/Isolation.h"

// Leaks are looked for by a tracer, which the first process of a pid namespace cannot have.
extern "C" int __lsan_is_turned_off() { return 1; }  // NOLINT(readability-identifier-naming)

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
    return ravik::endtoend::isolated([] { return RUN_ALL_TESTS(); });
}
