#include "Core/Base/Utf8.h"

#include <gtest/gtest.h>

#include "Core/Base/SmallLetters.h"

namespace ravik {

TEST(Utf8, LowersTheAlphabetsThatHaveCases) {
    EXPECT_EQ(Utf8::lower("Google CHROME 1.2"), "google chrome 1.2");
    EXPECT_EQ(Utf8::lower("ÄÖÜ×ß ŁŽŸĀ"), "äöü×ß łžÿā");
    EXPECT_EQ(Utf8::lower("ΑΩΆΏ ЖЯЁ Ա"), "αωάώ жяё ա");
    EXPECT_EQ(Utf8::lower("日本 ŀĸ"), "日本 ŀĸ");
    EXPECT_EQ(Utf8::lower("ȘȚ ƠƯ Ɖ ẞ"), "șț ơư ɖ ß");
    EXPECT_EQ(Utf8::lower("ἈΘΉΝΑ ΣΑΣ Ω"), "ἀθήνα σασ ω");
    EXPECT_EQ(Utf8::lower("ႠႵ Ა Ꭰ ꭰ Ꮝ"), "ⴀⴕ ა ꭰ ꭰ ꮝ");
    EXPECT_EQ(Utf8::lower("ＡＺ Ⅷ Ⓐ Å"), "ａｚ ⅷ ⓐ å");
    EXPECT_EQ(Utf8::lower("𐐀 𞤀"), "𐐨 𞤢");
    EXPECT_EQ(Utf8::lower("ǄǅǆÑÓ"), "ǆǆǆñó");
    EXPECT_EQ(Utf8::lower("İI"), "i\u0307i");
}

TEST(Utf8, CapitalsStandInOrderAndMayBeSearched) {
    char32_t behind = 0x80;
    for (const Utf8::Capitals& run : Utf8::capitals()) {
        EXPECT_GE(run.first, behind);
        EXPECT_EQ((run.last - run.first) % run.step, 0u);
        behind = run.last + 1;
    }
}

TEST(Utf8, BytesOfNoScalarStayAsTheyAre) {
    EXPECT_EQ(Utf8::lower("A\xff\xc3"
                          "B\xe2\x82"),
              "a\xff\xc3"
              "b\xe2\x82");
    std::size_t at = 0;
    EXPECT_EQ(Utf8::next("\xf0\x9f\x98\x80x", at), U'\U0001F600');
    EXPECT_EQ(at, 4u);
}

TEST(Utf8, CapitalisesTheFirstScalarAlone) {
    EXPECT_EQ(Utf8::capitalised(""), "");
    EXPECT_EQ(Utf8::capitalised("node is"), "Node is");
    EXPECT_EQ(Utf8::capitalised("éé"), "Éé");
    EXPECT_EQ(Utf8::capitalised("šš"), "Šš");
    EXPECT_EQ(Utf8::capitalised("яя"), "Яя");
    EXPECT_EQ(Utf8::capitalised("ας"), "Ας");
    EXPECT_EQ(Utf8::capitalised("Éa"), "Éa");
    EXPECT_EQ(Utf8::capitalised("÷a"), "÷a");
    EXPECT_EQ(Utf8::capitalised("日本"), "日本");
    EXPECT_EQ(Utf8::capitalised("țț"), "Țț");
    EXPECT_EQ(Utf8::capitalised("åå"), "Åå");
    EXPECT_EQ(Utf8::capitalised("𐐨𐐨"), "𐐀𐐨");
    EXPECT_EQ(Utf8::capitalised("\xE9x"), "\xE9x");
}

}  // namespace ravik
