// "ct600 message FILE", run as a user would run it.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "envelope_support.h"

namespace {

struct Outcome {
    int status = -1;
    std::string out;
};

Outcome run(const std::string& arguments, const std::string& environment = "") {
    const std::string command = environment + " " + std::string(CT600_CLI) + " " + arguments + " 2>&1";
    Outcome outcome;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return outcome;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) outcome.out.append(buffer, n);
    const int raw = pclose(pipe);
    outcome.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return outcome;
}

const std::string kTemplates = "CT600_TEMPLATE_DIR=" + envtest::templateFolder();

TEST(MessageCommand, PrintsTheMessageOfTheFullExample) {
    const Outcome o = run("message " + envtest::sourcePath("examples/full-return.json"), kTemplates);
    ASSERT_EQ(o.status, 0) << o.out;
    const auto message = envtest::parse(o.out);
    EXPECT_EQ(message->name, "GovTalkMessage");
    EXPECT_EQ(envtest::find(message.get(), "Body/IRenvelope/CompanyTaxReturn/CompanyInformation/CompanyName")->value,
              "Northwind Shipping Limited");
    EXPECT_NE(envtest::find(message.get(), "Body/IRenvelope/CompanyTaxReturn/TaxAvoidanceSchemes"), nullptr);
}

TEST(MessageCommand, ReadsAReturnXmlToo) {
    const auto path = std::filesystem::temp_directory_path() / "ct600-message-test.xml";
    std::ofstream(path) << "<Return><Boxes><Q155>900</Q155><from>01/04/2016</from></Boxes></Return>";
    const Outcome o = run("message " + path.string(), kTemplates);
    std::filesystem::remove(path);
    ASSERT_EQ(o.status, 0) << o.out;
    EXPECT_NE(o.out.find("<Profits>900.00</Profits>"), std::string::npos) << o.out;
    EXPECT_NE(o.out.find("<From>2016-04-01</From>"), std::string::npos) << o.out;
}

TEST(MessageCommand, BadUseExitsTwoWithOneMessage) {
    const auto empty = std::filesystem::temp_directory_path() / "ct600-no-templates";
    std::filesystem::create_directories(empty);
    struct Case {
        std::string arguments, environment;
        const char* message;
    };
    const Case cases[] = {
        {"message", kTemplates, "message takes one file"},
        {"message a.json b.json", kTemplates, "message takes one file"},
        {"message --json", kTemplates, "message takes one file"},
        {"message /no/such/file.json", kTemplates, "cannot read /no/such/file.json"},
        {"message " + envtest::sourcePath("examples/sample-return.json"), "CT600_TEMPLATE_DIR=" + empty.string(),
         "ctv3_16.xml is missing"},
    };
    for (const Case& c : cases) {
        const Outcome o = run(c.arguments, c.environment);
        EXPECT_EQ(o.status, 2) << c.arguments << "\n" << o.out;
        EXPECT_NE(o.out.find(c.message), std::string::npos) << c.arguments << "\n" << o.out;
    }
}

TEST(MessageCommand, TheUsageTextNamesIt) {
    const Outcome o = run("--help");
    EXPECT_EQ(o.status, 0);
    EXPECT_NE(o.out.find("message FILE"), std::string::npos) << o.out;
}

}  // namespace
