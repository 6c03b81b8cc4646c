// "ct600 message FILE", run as a user would run it: cases in
// tests/data/cli_message_cases.txt.
#include <gtest/gtest.h>

#include <filesystem>
#include <iterator>

#include "tools/cli_files.h"

namespace {

TEST(MessageCommand, Cases) {
    const auto folder = clitest::freshFolder("message");
    clitest::runCases(folder, "cli_message_cases.txt");
    // The refused output over the return left it whole, and the failed rename no temporary file.
    EXPECT_EQ(clitest::slurp(folder / "return.json"), clitest::slurp(clitest::example("sample-return.json")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "outputs"), {}), 1);
}

}  // namespace
