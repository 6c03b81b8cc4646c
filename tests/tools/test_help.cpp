// Every command tells how to use it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/run_cli.h"

namespace {

TEST(Help, EachCommandNamesItsOptionsAndExitStatus) {
    const struct {
        const char* command;
        std::vector<const char*> options;
    } commands[] = {
        {"calc", {"--entry NAME", "--json", "--all", "--report DIR", "-o OUT", "--jobs N", "--timeout SECONDS"}},
        {"validate", {"--xml", "--jobs N", "--timeout SECONDS"}},
        {"report", {"--entry NAME", "-o OUT"}},
        {"message", {}},
        {"entries", {}},
    };
    const CliOutcome overview = RunCli("--help");
    EXPECT_EQ(overview.status, 0);
    for (const auto& c : commands) {
        const CliOutcome o = RunCli(std::string(c.command) + " --help");
        EXPECT_EQ(o.status, 0) << c.command;
        EXPECT_EQ(o.out.rfind(std::string("usage: ct600 ") + c.command, 0), 0u) << o.out;
        EXPECT_NE(o.out.find("  --help\n"), std::string::npos) << c.command;
        EXPECT_NE(o.out.find("exit status: 0"), std::string::npos) << c.command;
        for (const char* option : c.options) EXPECT_NE(o.out.find(option), std::string::npos) << c.command << " " << option;
        EXPECT_NE(overview.out.find(std::string("  ") + c.command), std::string::npos) << c.command;
    }
    // Usage errors point to the help.
    const CliOutcome wrong = RunCli("validate --frobnicate x.json");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_NE(wrong.out.find("unknown option --frobnicate (see 'ct600 validate --help')"), std::string::npos);
}

}  // namespace
