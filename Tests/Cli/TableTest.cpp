#include "Cli/Table.h"

#include <gtest/gtest.h>

namespace ravik::cli {

namespace {

std::string shown(std::size_t width) {
    Table table({Table::Align::right, Table::Align::left});
    table.add({"PID", "NAME"});
    table.add({"12345", "/usr/bin/a-long-name"});
    return table.render(width);
}

}  // namespace

TEST(Table, WithoutAWidthNothingIsCut) { EXPECT_EQ(shown(0), "  PID  NAME\n12345  /usr/bin/a-long-name\n"); }

TEST(Table, TheLastColumnIsCutToTheWidth) {
    EXPECT_EQ(shown(27), "  PID  NAME\n12345  /usr/bin/a-long-name\n");
    EXPECT_EQ(shown(26), "  PID  NAME\n12345  /usr/bin/a-long-na…\n");
    EXPECT_EQ(shown(16), "  PID  NAME\n12345  /usr/bin…\n");
}

TEST(Table, ATerminalThatIsTooNarrowStillCuts) {
    for (const std::size_t width : {15u, 10u, 1u}) EXPECT_EQ(shown(width), "  PID  NAME\n12345  /usr/bi…\n") << width;
}

TEST(Table, WideLettersTakeTwoCells) {
    Table table({Table::Align::left, Table::Align::left});
    table.add({"日本", "x"});
    table.add({"abcd", "日本日本日"});
    EXPECT_EQ(table.render(14), "日本  x\nabcd  日本日…\n");
}

TEST(Printable, BytesThatAreNoUtf8AreWrittenOut) {
    EXPECT_EQ(printable("!\xff!"), "!\\xff!");
    EXPECT_EQ(printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");
    EXPECT_EQ(printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
    EXPECT_EQ(printable("\xe0\x82\x9b"), "\\xe0\\x82\\x9b");
    EXPECT_EQ(printable("\xf4\x8f\xbf\xbf\xed\x9f\xbf\xee\x80\x80"), "\xf4\x8f\xbf\xbf\xed\x9f\xbf\xee\x80\x80");
}

}  // namespace ravik::cli
