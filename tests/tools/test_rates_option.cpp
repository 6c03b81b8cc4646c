// --rates on the command line: the process's choice of law for calc,
// validate, message and report, which a return's own box 'rates' overrides.
#include <gtest/gtest.h>

#include <string>

#include "cli_files.h"
#include "support/run_cli.h"

namespace {

using namespace clitest;

// FY2023, 200,000: by default 19% = 38,000.00; under current law 25% =
// 50,000.00 less 3/200 x (250,000 - 200,000) = 750.00, 49,250.00.
const char* const kReturn = R"({"form": "ctv3", "from": "01/04/2023", "to": "31/03/2024", "Q155": "200000"})";

TEST(RatesOption, ChoosesTheLawForEachCommand) {
    const std::string file = put(scratch("fy2023.json"), kReturn);
    const std::string ownWord = put(scratch("own.json"),
        R"({"form": "ctv3", "from": "01/04/2023", "to": "31/03/2024", "Q155": "200000", "rates": "default"})");
    const std::string associates = put(scratch("associates.json"),
        R"({"form": "ctv3", "from": "01/04/2023", "to": "31/03/2024", "Q315": "200000", "Q326": "1",
            "Q430": "50000", "Q435": "750", "Q440": "49250"})");
    struct Case {
        std::string arguments, environment;
        const char* expected;  // in the output
        const char* absent;
        int status = 0;
    };
    const Case cases[] = {
        {"calc " + file, "CT600_RATES=", "(Q70): 38000.00", "49250"},
        {"calc --rates current " + file, "CT600_RATES=", "(Q70): 49250.00", "38000"},
        {"calc --rates=current " + file, "CT600_RATES=", "(Q70): 49250.00", "38000"},
        {"calc --rates default " + file, "CT600_RATES=current", "(Q70): 38000.00", "49250"},
        {"calc --rates current " + ownWord, "CT600_RATES=", "(Q70): 38000.00", "49250"},  // the box wins
        {"report --rates current " + file, "CT600_RATES=", "Rates: current law", "x no profit"},
        // message prints the boxes as given, without a run of the calculator.
        {"message --rates current " + associates, "CT600_RATES=", "<ThisPeriod>1</ThisPeriod>", "9350"},
        {"message " + associates, "CT600_RATES=", "<CompanyTaxCalculation>", "AssociatedCompanies"},
        // Box 435 without page I: rule 9350 by default, not under current law.
        {"validate " + associates, "CT600_RATES=", "9350:", "AssociatedCompanies", 1},
        {"validate --rates current " + associates, "CT600_RATES=", "9", "9350", 1},
    };
    for (const Case& c : cases) {
        const CliOutcome o = RunCli(c.arguments, c.environment);
        EXPECT_EQ(o.status, c.status) << c.arguments << "\n" << o.out;
        EXPECT_NE(o.out.find(c.expected), std::string::npos) << c.arguments << "\n" << o.out;
        EXPECT_EQ(o.out.find(c.absent), std::string::npos) << c.arguments << "\n" << o.out;
    }
}

TEST(RatesOption, RefusesAWordItDoesNotKnow) {
    const std::string file = put(scratch("fy2023.json"), kReturn);
    for (const std::string& arguments : {"validate --rates curent " + file, "calc " + file + " --rates"}) {
        const CliOutcome o = RunCli(arguments);
        EXPECT_EQ(o.status, 2) << arguments;
        EXPECT_NE(o.out.find("--rates"), std::string::npos) << o.out;
    }
}

}  // namespace
