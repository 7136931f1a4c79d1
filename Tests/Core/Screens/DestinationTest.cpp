#include "Core/Screens/Destination.h"

#include <gtest/gtest.h>

namespace ravik {

TEST(Destination, IsAskedForByTheActionOrItsParameter) {
    for (const Destination destination : allDestinations) {
        EXPECT_EQ(requestedDestination("open", word(destination)), destination);
        EXPECT_EQ(requestedDestination(word(destination), ""), destination);
    }
    EXPECT_EQ(requestedDestination("", ""), std::nullopt);
    EXPECT_EQ(requestedDestination("open", ""), std::nullopt);
    EXPECT_EQ(requestedDestination("open", "open"), std::nullopt);
    EXPECT_EQ(requestedDestination("quit", "disk"), std::nullopt);
}

}  // namespace ravik
