// The ct600 command-line host, run as a user would run it: cases in
// tests/data/cli_cases.txt.
#include <gtest/gtest.h>

#include "tools/cli_files.h"

namespace {

TEST(Cli, CommandCases) {
    clitest::runCases(clitest::freshFolder("cli"), "cli_cases.txt");
}

}  // namespace
