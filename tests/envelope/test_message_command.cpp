// "ct600 message FILE", run as a user would run it.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "envelope_support.h"
#include "support/run_cli.h"

namespace {

using Outcome = CliOutcome;

const std::string kTemplates = "CT600_TEMPLATE_DIR=" + envtest::templateFolder();

TEST(MessageCommand, PrintsTheMessageOfTheFullExample) {
    const Outcome o = RunCli("message " + envtest::sourcePath("examples/full-return.json"), kTemplates);
    ASSERT_EQ(o.status, 0) << o.out;
    const auto message = parseXml(o.out);
    EXPECT_EQ(message->name, "GovTalkMessage");
    EXPECT_EQ(nodeAt(message.get(), "Body/IRenvelope/CompanyTaxReturn/CompanyInformation/CompanyName")->value,
              "Northwind Shipping Limited");
    EXPECT_NE(nodeAt(message.get(), "Body/IRenvelope/CompanyTaxReturn/TaxAvoidanceSchemes"), nullptr);
}

TEST(MessageCommand, ReadsAReturnXmlToo) {
    const auto path = std::filesystem::temp_directory_path() / "ct600-message-test.xml";
    std::ofstream(path) << "<Return><Boxes><Q155>900</Q155><from>01/04/2016</from></Boxes></Return>";
    const Outcome o = RunCli("message " + path.string(), kTemplates);
    std::filesystem::remove(path);
    ASSERT_EQ(o.status, 0) << o.out;
    EXPECT_NE(o.out.find("<Profits>900.00</Profits>"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("<From>2016-04-01</From>"), std::string::npos) << o.out;
}

// Bad use exits 2 with one message; the usage text names the command.
TEST(MessageCommand, BadUseExitsTwoWithOneMessage) {
    const auto empty = std::filesystem::temp_directory_path() / "ct600-no-templates";
    std::filesystem::create_directories(empty);
    struct Case {
        std::string arguments, environment;
        const char* message;
        int status = 2;
    };
    const Case cases[] = {
        {"message", kTemplates, "message takes one file"},
        {"message a.json b.json", kTemplates, "message takes one file"},
        {"message --json", kTemplates, "unknown option --json"},
        {"message /no/such/file.json", kTemplates, "cannot read /no/such/file.json"},
        {"message " + envtest::sourcePath("examples/sample-return.json"), "CT600_TEMPLATE_DIR=" + empty.string(),
         "ctv3_16.xml is missing"},
        {"--help", "", "message FILE", 0},
    };
    for (const Case& c : cases) {
        const Outcome o = RunCli(c.arguments, c.environment);
        EXPECT_EQ(o.status, c.status) << c.arguments << "\n" << o.out;
        EXPECT_NE(o.out.find(c.message), std::string::npos) << c.arguments << "\n" << o.out;
    }
}

}  // namespace
