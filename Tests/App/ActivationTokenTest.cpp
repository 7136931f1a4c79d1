#include "App/Views/ActivationToken.h"

#include <gtest/gtest.h>

namespace ravik::app {
namespace {

constexpr const char* variable = "XDG_ACTIVATION_TOKEN";

TEST(ActivationToken, StandsInTheEnvironmentOnlyWhileItIsUsed) {
    {
        const ActivationToken token("leave-1");
        EXPECT_EQ(qgetenv(variable), "leave-1");
    }
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST(ActivationToken, OfTheStartIsTakenOutOfTheEnvironment) {
    qputenv(variable, "leave-2");
    EXPECT_EQ(ActivationToken::taken(), "leave-2");
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
    EXPECT_EQ(ActivationToken::taken(), "");
}

}  // namespace
}  // namespace ravik::app
