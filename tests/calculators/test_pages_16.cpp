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

TEST(PageA, SumsRowsTaxesThemAndFeedsBox480) {
    // Loans 10,000 + 2,500.50 at 32.5%: 4,062.6625 rounds up to 4,062.67.
    PageRun r;
    r.set("from", "01/01/2017").set("QA10B.1", "10000").set("QA10B.6", "2500.50").set("QA10B.7", "999");
    r.set("QA25B.2", "1000").set("QA25C.3", "1000.01");  // 2,000.01 x 0.325 = 650.00325 -> 650.01
    r.go();
    EXPECT_EQ(r.num("QA15"), 12500.50);
    expectDoubles(r, {{"QA20", 4062.67}, {"QA40", 2000.01}, {"QA45", 650.01}});
    EXPECT_EQ(r.num("QA70"), 0);
    EXPECT_DOUBLE_EQ(r.num("QA80"), 4062.67 - 650.01);
    EXPECT_EQ(r.text("Q480"), r.text("QA80"));
}

TEST(PageA, NoughtShowsAsZeroOnlyWhenTaxArose) {
    PageRun withTax;
    withTax.set("from", "01/01/2015").set("QA10B.1", "400").set("QA50B.1", "400").go();
    expectTexts(withTax, {{"QA20", "100.000000"}, {"QA70", "100.000000"}, {"QA80", "zero"}, {"Q480", "zero"}});
    PageRun noTax;
    noTax.go();
    EXPECT_EQ(noTax.text("QA80"), "0.000000");
}

TEST(PageA, AnOverriddenTotalIsKeptAndUsed) {
    PageRun r;
    r.set("from", "01/01/2015").set("QA10B.1", "400").set("QA15", "1000!").go();
    EXPECT_EQ(r.text("QA15"), "1000!");
    EXPECT_EQ(r.num("QA20"), 250);
}

TEST(PagesBCEG, SumTheirRowsAndFeedTheMainReturn) {
    PageRun r;
    r.set("QB5F.1", "1").set("QB5F.200", "2").set("QB5F.201", "100");
    r.set("QB5J.7", "30").set("QB5J.150", "12.5");
    r.set("QC5D.1", "10").set("QC5D.20", "5").set("QC125D.3", "7");
    r.set("QC45", "1").set("QC46", "2").set("QC75", "4").set("QC160", "8").set("QC161", "16").set("QC180", "32");
    r.set("QC85D.2", "3").set("QC190D.19", "9");
    r.set("QE50", "1").set("QE85", "2").set("QE95", "4").set("QE120", "8");
    r.set("QG1.4.1", "100").set("QG1.4.5", "50").set("QG1.4.6", "1000");
    r.go();
    expectNums(r, {{"QB10", 3}, {"QB30", 42.5}, {"Q490", 42.5}, {"QC10", 15}, {"Q310", 15}, {"QC130", 7},
        {"Q312", 7}, {"QC80", 7}, {"QC185", 56}, {"QC90", 3}, {"QC195", 9}, {"QE90", 3}, {"QE125", 12},
        {"QG1", 150}});
}

TEST(PageF, RowsSevenComputedEightSummedAndRounded) {
    PageRun r;
    r.set("QF10D.1", "1950").set("QF10E.1", "365");  // (6.00 + 4.05) x 365 = 3668.25
    r.set("QF10D.7", "100").set("QF10E.7", "1");     // 0.60
    r.set("QF10G.8", "0.30");                        // entered by hand
    r.set("QF10G.2", "555!");                        // an override of a computed row
    r.go();
    EXPECT_DOUBLE_EQ(r.num("QF10G.1"), 3668.25);
    EXPECT_EQ(r.text("QF10G.2"), "555!");
    EXPECT_EQ(r.text("QF10G.8"), "0.30");
    EXPECT_EQ(r.num("QF10"), 4224);  // 3668.25 + 555 + 0.60 + 0.30 = 4224.15
    EXPECT_EQ(r.num("Q13"), 4224);
}

TEST(PageL, WorksThroughTheReliefSteps) {
    PageRun r;
    r.set("QL5", "500").set("QL6", "300").set("QL7", "100");
    r.set("QL15", "1000").set("QL20", "200").set("Q475", "700").set("QL35", "50");
    r.set("QL55", "100").set("QL75", "10").set("QL90", "5").set("QL100", "3");
    r.set("QL110", "2").set("QL115", "1").set("QL135", "4").set("QL170", "9").set("QL175", "6").set("QL194", "11");
    r.go();
    expectNums(r, {{"QL8", 400}, {"QL9", 200}, {"QL25", 1200}, {"QL30", 700}, {"QL40", 650}, {"QL45", 650},
        {"QL50", 550}, {"QL60", 900}, {"QL62", 300}, {"QL65", 0},  // 300 - 900 floored
        {"QL70", 550}, {"QL80", 540}, {"QL85", 10}, {"QL95", 5}, {"QL105", 2}, {"QL120", 3}, {"QL125", -1},
        {"QL129", 400}, {"QL140", -4}, {"QL150", 536}, {"QL165", 7}, {"QL180", 3}, {"QL210", 650 + 2 + 6 + 11},
        {"Q530", 669}, {"Q880", -1}});
}

TEST(PageL, SkippedStepsKeepTheirFormerValues) {
    PageRun r;
    // QL15 of 0 leaves QL30 alone; QL50 of 0 leaves QL60 to QL65 alone, and
    // QL70 subtracts the old QL65.
    r.set("QL30", "80").set("QL35", "30").set("QL60", "11").set("QL62", "22").set("QL65", "33");
    r.go();
    EXPECT_EQ(r.text("QL30"), "80");
    expectNums(r, {{"QL40", 50}, {"QL45", 0}, {"QL50", 0}});
    EXPECT_EQ(r.text("QL60"), "11");
    EXPECT_EQ(r.text("QL62"), "22");
    EXPECT_EQ(r.num("QL70"), -33);
    EXPECT_EQ(r.boxes.PLookup("QL129"), nullptr);
}

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
