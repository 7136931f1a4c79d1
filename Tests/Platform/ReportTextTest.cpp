#include "Platform/Linux/ReportText.h"

#include <gtest/gtest.h>

namespace ravik::platform {

TEST(ReportText, ReadsACrash) {
    EXPECT_EQ(ReportText::crash("signal: 11\nversion: 0.1.0\nreason: SIGSEGV at address 0x10\ntime: 1\n\nframes\n"),
              (CrashDiagnostic{11, 0, "0.1.0", "SIGSEGV at address 0x10"}));
}

TEST(ReportText, WhatACrashDoesNotTellIsZeroOrEmpty) {
    EXPECT_EQ(ReportText::crash(""), CrashDiagnostic{});
    EXPECT_EQ(ReportText::crash("sig"), CrashDiagnostic{});
    EXPECT_EQ(ReportText::crash("signal: eleven\nversion\nreason:\n"), CrashDiagnostic{});
    EXPECT_EQ(ReportText::crash("signal: 6\nversion: 0."), (CrashDiagnostic{6, 0, "0.", ""}));
    EXPECT_EQ(ReportText::crash("signal: 99999999999999999999\n"), CrashDiagnostic{});
}

TEST(ReportText, OnlyTheLinesBeforeTheEmptyOneCount) {
    EXPECT_EQ(ReportText::crash("signal: 6\n\nreason: a line of the backtrace\n"), (CrashDiagnostic{6, 0, "", ""}));
}

TEST(ReportText, MendsWhatIsNoUtf8) {
    EXPECT_EQ(ReportText::crash("reason: b\xff"
                                "d\n")
                  .reason,
              "b\uFFFDd");
}

TEST(ReportText, AHangIsReadAsItIsWritten) {
    EXPECT_EQ(ReportText::hang(ReportText::ofHang(2.5, "0.1.0")), HangDiagnostic{2.5});
    EXPECT_EQ(ReportText::ofHang(2.5, "0.1.0"), "seconds: 2.500\nversion: 0.1.0\n");
}

TEST(ReportText, AHangWithoutALengthIsNone) {
    for (const char* text : {"", "seconds: \n", "seconds: long\n", "seconds: -2\n", "seconds: 0\n", "seconds: nan\n",
                             "seconds: inf\n", "seconds: 2x\n", "version: 2\n"}) {
        EXPECT_EQ(ReportText::hang(text), std::nullopt) << text;
    }
}

TEST(ReportText, AValueStandsOnOneLine) {
    EXPECT_EQ(ReportText::oneLine("first\nsecond\tthird\r\x1b[2J"), "first second third  [2J");
}

}  // namespace ravik::platform
