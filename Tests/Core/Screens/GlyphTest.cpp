#include "Core/Screens/Glyph.h"

#include <gtest/gtest.h>

#include "Tests/Core/Wording/Cards.h"

namespace ravik {

using namespace fakes;

namespace {

Glyph shown(const Snapshot& snapshot, const Host& host = macHost()) { return {snapshot, host}; }

Snapshot reclaimable(std::uint64_t bytes) {
    Snapshot snapshot;
    snapshot.sampled = true;
    snapshot.findings = {finding("browser:Arc", QuitApp{"Arc"}, bytes)};
    return snapshot;
}

}  // namespace

TEST(Glyph, SaysThatItReadsBeforeTheFirstReading) {
    EXPECT_EQ(shown({}).symbol, "memorychip");
    EXPECT_EQ(shown({}).title, "");
    EXPECT_EQ(shown({}).label, "Ravik, reading your Mac");
    EXPECT_EQ(shown({}, linuxHost()).label, "Ravik, reading your computer");
}

TEST(Glyph, ShowsTheAmountOnlyWhereThereIsOne) {
    const Glyph full = shown(reclaimable(1500 * MiB));
    EXPECT_EQ(full.symbol, "memorychip.fill");
    EXPECT_EQ(full.title, " 1.5 GB");
    EXPECT_EQ(full.label, "Ravik, 1.5 GB reclaimable");
    const Glyph quiet = shown(reclaimable(0));
    EXPECT_EQ(quiet.symbol, "memorychip");
    EXPECT_EQ(quiet.title, "");
    EXPECT_EQ(quiet.label, "Ravik, nothing to free");
}

TEST(Glyph, TheKeyChangesOnlyWithWhatIsSeen) {
    EXPECT_EQ(shown(reclaimable(1500 * MiB)).key(), shown(reclaimable(1501 * MiB)).key());
    EXPECT_NE(shown(reclaimable(1500 * MiB)).key(), shown(reclaimable(1600 * MiB)).key());
    EXPECT_EQ(shown({}).key(), shown(reclaimable(0)).key());
}

}  // namespace ravik
