// The third-generation supplementary pages and field checks, run on their own
// over a box map so each page's totals can be checked in isolation.
#include <gtest/gtest.h>

#include "calculators/pages_16.h"
#include "common/library.h"
#include "support.h"

namespace {

class PagesOnly : public CBaseCalc {
public:
    void Calc() override {
        CalcPages16(*this);
        FieldChecks16(*this);
    }
};

using PageRun = BoxRun<PagesOnly>;

TEST(LoanTaxRate, FollowsTheFirstDayOfThePeriod) {
    struct Case {
        const char* from;
        double rate;
    };
    const Case cases[] = {
        {"05/04/2016", 0.25},  {"06/04/2016", 0.325},  {"05/04/2022", 0.325}, {"06/04/2022", 0.3375},
        {"01/01/2010", 0.25},  {"", 0.25},             {"rubbish", 0.25},     {"01/04/2030", 0.3375},
    };
    for (const auto& c : cases) EXPECT_EQ(LoanTaxRate(c.from, "31/12/2030"), c.rate) << c.from;
}

TEST(TonnageProfit, CutsEachBandToWholeHundreds) {
    struct Case {
        double tons, days, profit;
    };
    const Case cases[] = {
        {99, 365, 0},                       // no whole hundred
        {100, 1, 0.60},
        {1000, 1, 6.00},                    // 10 x 60p
        {1950, 1, 10 * 0.60 + 9 * 0.45},    // band 2 holds 950 tons: 9 hundreds
        {10000, 2, (10 * 0.60 + 90 * 0.45) * 2},
        {25000, 1, 10 * 0.60 + 90 * 0.45 + 150 * 0.30},
        {40050, 365, (10 * 0.60 + 90 * 0.45 + 150 * 0.30 + 150 * 0.15) * 365},
        {0, 365, 0},
    };
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(TonnageProfit(c.tons, c.days), c.profit) << c.tons;
}

// Pages A, B, C, E, F, G and L: cases in tests/data/pages16_cases.txt.
TEST(Pages16, Cases) { runCalcCases<PagesOnly>("pages16_cases.txt", 8); }

TEST(FieldChecks, ReportEachFieldWithItsMessage) {
    const std::string date = "Date must be dd/mm/yyyy - must have slashes typed in.";
    struct Case {
        const char* from;
        const char* to;
        const char* address1;
        const char* address2;
        std::vector<std::pair<std::string, std::string>> errors;
        const char* q1000;
    };
    const std::string a35(35, 'a'), a36(36, 'a');
    const Case cases[] = {
        {"01/04/2015", "31/03/2016", a35.c_str(), "", {}, "1.000000"},
        {"", "", "", "", {}, "1.000000"},  // empty boxes count as good dates
        {"2015-04-01", "31/03/2016", "", "", {{"from", date}}, "1.000000"},
        {"01/04/2015", "31.13.2016", "", "", {{"to", date}}, "1.000000"},
        {"", "", a36.c_str(), "", {{"Address1", "Maximum 35 chars"}}, "1.000000"},
        {"x", "y", a36.c_str(), a36.c_str(),
         {{"from", date}, {"to", date}, {"Address1", "Maximum 35 chars"}, {"Address2", "Maximum 35 chars"}},
         "0.000000"},
    };
    for (const auto& c : cases) {
        PageRun r;
        r.set("from", c.from).set("to", c.to).set("Address1", c.address1).set("Address2", c.address2).go();
        EXPECT_EQ(r.errors, c.errors) << c.from << " " << c.to;
        EXPECT_EQ(r.text("Q1000"), c.q1000);
    }
}

}  // namespace
