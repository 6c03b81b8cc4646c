// "ct600 message FILE", run as a user would run it: cases in
// tests/data/cli_message_cases.txt.
#include <gtest/gtest.h>

#include "tools/cli_files.h"

namespace {

TEST(MessageCommand, Cases) { clitest::runCases(clitest::freshFolder("message"), "cli_message_cases.txt"); }

}  // namespace
