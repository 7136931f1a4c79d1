#include "Core/Base/Iso8601.h"

#include <gtest/gtest.h>

namespace ravik {

TEST(Iso8601, WritesUtcToTheSecond) {
    EXPECT_EQ(Iso8601::format(1772357415.9), "2026-03-01T09:30:15Z");
    EXPECT_EQ(Iso8601::format(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(Iso8601::format(-0.5), "1969-12-31T23:59:59Z");
}

TEST(Iso8601, ReadsWhatItWrites) { EXPECT_EQ(Iso8601::parse("2026-03-01T09:30:15Z"), 1772357415.0); }

TEST(Iso8601, ReadsOffsets) {
    EXPECT_EQ(Iso8601::parse("2026-03-01T15:00:15+05:30"), 1772357415.0);
    EXPECT_EQ(Iso8601::parse("2026-03-01T04:30:15-0500"), 1772357415.0);
}

TEST(Iso8601, RefusesEverythingElse) {
    for (const char* text : {"", "2026-03-01", "2026-03-01T09:30:15", "2026-03-01T09:30:15.5Z", "2026-02-30T09:30:15Z",
                             "2026-03-01T24:30:15Z", "2026-03-01 09:30:15Z", "2026-03-01T09:30:15Zx", "x", "+"}) {
        EXPECT_EQ(Iso8601::parse(text), std::nullopt) << text;
    }
}

}  // namespace ravik
