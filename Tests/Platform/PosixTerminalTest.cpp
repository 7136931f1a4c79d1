#include "Platform/Linux/PosixTerminal.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include "Tests/Platform/Support/ChildWork.h"

namespace ravik::platform {

TEST(PosixTerminal, WhatWasTypedBeforeTheQuestionAnswersNothing) {
    EXPECT_EQ(inChild([] {
                  alarm(60);
                  int keys = -1;
                  int own = -1;
                  if (openpty(&keys, &own, nullptr, nullptr, nullptr) != 0 || dup2(own, STDIN_FILENO) < 0) return 1;
                  if (write(keys, "yes\ny", 5) != 5) return 2;
                  bool typed = false;
                  const auto answer = PosixTerminal().readLine([&] { typed = write(keys, "no\n", 3) == 3; });
                  return typed && answer == "no" ? 0 : 3;
              }),
              0);
}

}  // namespace ravik::platform
