#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/EndToEnd/Isolation.h"

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
    return ravik::endtoend::isolated([] { return RUN_ALL_TESTS(); });
}
