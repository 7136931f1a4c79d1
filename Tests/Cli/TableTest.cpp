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

TEST(Printable, LinesStayApart) {
    EXPECT_EQ(printableLines("a\x1b[31m\n\n  b\u202e\n"), "a\\u001b[31m\n\n  b\\u202e\n");
    EXPECT_EQ(printableLines("a"), "a");
    EXPECT_EQ(printableLines(""), "");
}

TEST(Printable, JsonKeepsItsValueAndSteersNoTerminal) {
    EXPECT_EQ(printableJson("{\n\t\"a\": \"\\u001b \u00e9\u00a0\u00b7 \u65e5 \U0001F600\"\n}"),
              "{\n\t\"a\": \"\\u001b \u00e9\u00a0\u00b7 \u65e5 \U0001F600\"\n}");
    EXPECT_EQ(printableJson("\"\u009b31m\x7f\u202e\u2066\u2028\""), "\"\\u009b31m\\u007f\\u202e\\u2066\\u2028\"");
    EXPECT_EQ(printableJson("\x1b[2J\r\xff"), "\\u001b[2J\\u000d\\ufffd");
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
