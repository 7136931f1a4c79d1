#include "Core/Record/FindingLabel.h"

#include <gtest/gtest.h>

namespace ravik {

namespace {

std::string titled(const std::string& title) { return HistoryStore::label("x", {{"x", title}}); }

}  // namespace

TEST(FindingLabel, IsTheLastPieceOfAnIdWithoutATitle) {
    EXPECT_EQ(HistoryStore::label("orphan:123", {}), "123");
    EXPECT_EQ(HistoryStore::label("holder:app:Slack", {}), "Slack");
    EXPECT_EQ(HistoryStore::label("disk", {}), "disk");
    EXPECT_EQ(HistoryStore::label("orphan:", {}), "orphan");
    EXPECT_EQ(HistoryStore::label("::", {}), "::");
    EXPECT_EQ(HistoryStore::label("", {}), "");
}

TEST(FindingLabel, CutsTheTitleWhereItBeginsToTell) {
    EXPECT_EQ(titled("node: server.js has run 9 h"), "node: server.js");
    EXPECT_EQ(titled("postgres has been up 3 days"), "postgres");
    EXPECT_EQ(titled("ffmpeg has used 300% CPU"), "ffmpeg");
    EXPECT_EQ(titled("Docker holds 4.1 GB"), "Docker");
    EXPECT_EQ(titled("The disk is almost full"), "The disk");
    EXPECT_EQ(titled("Cursor grew to 4.1 GB"), "Cursor grew to 4.1 GB");
}

TEST(FindingLabel, TriesTheSeparatorsInTheirOrder) {
    EXPECT_EQ(titled("What is node holds what it has run"), "What is node holds what it");
    EXPECT_EQ(titled("a holds b holds c"), "a");
}

TEST(FindingLabel, NamesHiddenAutomationByItsBrowser) {
    EXPECT_EQ(titled("A hidden automation Google Chrome from playwright has run 3 h"),
              "Hidden automation Google Chrome");
    EXPECT_EQ(titled("A hidden automation automation Edge from x"), "Hidden automation Edge");
    EXPECT_EQ(titled("A hidden automation browser has run 3 h"), "A hidden automation browser");
    EXPECT_EQ(titled("A hidden automation from x"), "Hidden automation ");
    EXPECT_EQ(titled("A hidden automation\u00e9b from x"), "Hidden automation b") << "never half a letter";
}

}  // namespace ravik
