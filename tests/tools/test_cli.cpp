// The ct600 command-line host, run as a user would run it.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tools/cli_files.h"

namespace {

using namespace clitest;
using Outcome = CliOutcome;

std::string writeTemp(const std::string& name, const std::string& text) { return put(scratch(name), text); }

TEST(Cli, RecalculatesTheSampleReturn) {
    const Outcome o = RunCli("calc " + example("sample-return.json"));
    EXPECT_EQ(o.status, 0) << o.out;
    // 185000 - 12500 = 172500 trading profit; + 1250 + 2400 + (18000 - 3000) = 191150.
    EXPECT_NE(o.out.find("Q165           172500.000000"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("Q235           191150.000000"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("Errors:"), std::string::npos);
}

TEST(Cli, ReadsAReturnXmlAndPrintsJson) {
    const std::string path = writeTemp(
        "return.xml", "<Return><Boxes><Q155>900</Q155><Q160>100</Q160><Q1>A &amp; B Ltd</Q1></Boxes></Return>");
    const Outcome o = RunCli("calc --json --entry ctv3_16 " + path);
    EXPECT_EQ(o.status, 0) << o.out;
    EXPECT_NE(o.out.find("\"Q165\": \"800.000000\""), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("\"Q1\": \"A & B Ltd\""), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("\"validation\": \"<?xml"), std::string::npos) << o.out;
}

TEST(Cli, AReturnXmlIsRecalculatedAsAWholeAndTheReportCopied) {
    const std::string path = writeTemp(
        "whole.xml",
        "<Return><Boxes><form>ctv3</form><from>01/04/2010</from><to>31/03/2011</to>"
        "<Q155>400000</Q155><Q9>0</Q9></Boxes></Return>");
    const auto dir = scratch("report");
    std::filesystem::remove_all(dir);
    const std::string out = writeTemp("whole-out.xml", "");
    const Outcome o = RunCli("calc --report " + dir.string() + " -o " + out + " " + path);
    ASSERT_EQ(o.status, 0) << o.out;
    const std::string rebuilt = slurp(out);
    // FY2010, 400,000: 28% less 7/400 x (1,500,000 - 400,000) = 112,000 - 19,250.
    EXPECT_NE(rebuilt.find("<Q70>92750.00</Q70>"), std::string::npos) << rebuilt;
    EXPECT_EQ(rebuilt.find("<Q9>"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(dir / "calc.htm"));
    EXPECT_TRUE(std::filesystem::exists(dir / "ctcharge.xml"));
}

TEST(Cli, ValidatePrintsOneErrorALineAndExitsOneOnErrors) {
    setenv("CT600_TODAY", "2018-06-30", 1);  // the rules on dates compare with today
    const std::string clean = example("full-return.json");
    const Outcome ok = RunCli("validate " + clean);
    EXPECT_EQ(ok.status, 0) << ok.out;
    EXPECT_EQ(ok.out, "");
    const std::string faulty = writeTemp("faulty.json", "{\"form\": \"ctv3\", \"from\": \"01/04/2016\", "
                                                        "\"to\": \"31/03/2017\", \"Q155\": \"10\"}");
    const Outcome bad = RunCli("validate " + faulty);
    EXPECT_EQ(bad.status, 1) << bad.out;
    EXPECT_NE(bad.out.find("9148:Box 165 must be completed if Box 155 is greater than 0 (zero)\n"), std::string::npos)
        << bad.out;
    const Outcome xml = RunCli("validate --xml " + faulty);
    EXPECT_EQ(xml.status, 1);
    EXPECT_NE(xml.out.find("<Errors>"), std::string::npos) << xml.out;
    EXPECT_NE(xml.out.find("<Text>9148:"), std::string::npos);
    const Outcome unreadable = RunCli("validate /no/such/return.json");
    EXPECT_EQ(unreadable.status, 2);
    unsetenv("CT600_TODAY");
}

TEST(Cli, BadInputGivesOneMessageAndExitTwo) {
    struct Case {
        std::string arguments;
        const char* message;
    };
    const Case cases[] = {
        {"calc /no/such/file.json", "cannot read /no/such/file.json"},
        {"calc " + writeTemp("bad.json", "{\"Q155\": "), "not a valid JSON box map"},
        {"calc " + writeTemp("array.json", "[1,2]"), "must be a JSON object"},
        {"calc " + writeTemp("nested.json", "{\"Q155\": {\"x\": 1}}"), "box Q155 must hold text or a number"},
        {"calc " + writeTemp("bad.xml", "<Return><Boxes>"), "not well-formed XML"},
        {"calc " + writeTemp("noboxes.xml", "<Return/>"), "has no Boxes node"},
        {"calc " + writeTemp("empty.json", "  \n"), "the file is empty"},
        {"calc --entry nosuch " + writeTemp("ok.json", "{}"), "no form entry named nosuch"},
        {"calc", "calc needs a file"},
        {"frobnicate", "unknown command frobnicate"},
        {"", "usage: ct600"},
    };
    for (const auto& c : cases) {
        const Outcome o = RunCli(c.arguments);
        EXPECT_EQ(o.status, 2) << c.arguments << "\n" << o.out;
        EXPECT_NE(o.out.find(c.message), std::string::npos) << c.arguments << "\n" << o.out;
    }
}

TEST(Cli, ListsEveryExportAndHelps) {
    const Outcome entries = RunCli("entries");
    EXPECT_EQ(entries.status, 0);
    EXPECT_EQ(count(entries.out, "\n"), 237);
    EXPECT_NE(entries.out.find("_ctav3_22    CCT600_16Calc"), std::string::npos);
    EXPECT_NE(entries.out.find("ct600_03     CCT600_02Calc"), std::string::npos);
    const Outcome help = RunCli("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("calc [--entry NAME]"), std::string::npos);
}

}  // namespace
