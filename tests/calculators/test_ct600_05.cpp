// The second-generation calculator: the main return's rows, the driver's
// results taken in, the noughts, and the pages A, B, C, D, F and G.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "calculators/calculators.h"
#include "common/errors.h"
#include "common/library.h"
#include "support.h"

namespace {

// The second-generation calculator, with its log lines kept.
struct Run05 : BoxRun<CCT600_05Calc> {
    std::vector<std::string> log;
    Run05& set(const char* key, const char* value) {
        BoxRun::set(key, value);
        return *this;
    }
    Run05& go(const char* prefix = "") {
        const LogCapture capture;
        BoxRun::go(prefix);
        log = capture.lines;
        return *this;
    }
};

Run05 year(const char* from, const char* to, const char* turnover) {
    Run05 r;
    r.set("from", from).set("to", to).set("Q3", turnover);
    return r;
}

TEST(CCT600_05Calc, FullYear2004InTheStartingRateBand) {
    // FY2004: profits chargeable 30,000 lie between the starting rate limits of
    // 10,000 and 50,000: small companies rate 19% = 5,700.00, less starting rate
    // marginal relief 19/400 x (50,000 - 30,000) = 950.00; tax 4,750.00.
    Run05 r = year("01/04/2004", "31/03/2005", "30000");
    r.go();
    const std::pair<const char*, const char*> boxes[] = {
        {"Q5", "30000.000000"},  {"Q21", "30000.000000"}, {"Q34", "30000.000000"}, {"Q37", "30000.000000"},
        {"Q42", "y"},            {"Q43", "2004"},         {"Q44", "30000"},        {"Q45", "19"},
        {"Q46", "5700.000000"},  {"Q53", ""},             {"Q63", "5700.000000"},  {"Q64", "950.00"},
        {"Q65", "4750.000000"},  {"Q66", ""},             {"Q70", "4750.000000"},  {"Q77", "zero"},
        {"Q78", "4750.000000"},  {"Q83", "4750.000000"},  {"Q86", "4750.000000"},  {"Q89", "0.000000"},
    };
    for (const auto& [key, value] : boxes) EXPECT_EQ(r.text(key), value) << key;
}

TEST(CCT600_05Calc, StraddleOf2006WithDistributions) {
    // 01/01/2006 to 31/12/2006, profits 30,000, distributions 10,000.
    // FY2005: 90/365 x 30,000 = 7,397 at 19% = 1,405.43; FY2006: 22,603 at 19% = 4,294.57.
    // Starting rate relief 19/400 x 20,000 = 950, of which 90/365 = 234.24 in FY2005.
    // Underlying rate (1,405.43 - 234.24) / 7,397 = 15.83%: distributions 10,000 x 19%
    // = 1,900.00; the rest of FY2005, 7,397 - 10,000 = -2,603 x 15.83% = -412.05.
    // Tax chargeable 1,900.00 - 412.05 + 4,294.57 = 5,782.52.
    Run05 r = year("01/01/2006", "31/12/2006", "30000");
    r.set("Q67", "10000").go();
    expectTexts(r, {{"Q67", "10000"}, {"Q44", "7397"}, {"Q54", "22603"}});
    expectDoubles(r, {{"Q46", 1405.43}, {"Q56", 4294.57}, {"Q63", 5700}});
    EXPECT_EQ(r.text("Q64"), "234.24");
    EXPECT_DOUBLE_EQ(r.num("Q65"), 5465.76);
    expectTexts(r, {{"Q66", "15.83"}, {"Q68", "1900.00"}, {"Q69", "-412.05"}});
    EXPECT_NEAR(r.num("Q70"), 5782.52, 1e-6);
    EXPECT_NEAR(r.num("Q86"), 5782.52, 1e-6);
}

TEST(CCT600_05Calc, TaxChargeableWithDistributions) {
    struct Case {
        const char* working;
        const char *profit, *distributions;
        double q70;
    };
    const Case cases[] = {
        {"matched: 1,900 + 3,166 = 5,066 exceeds 5,700 - 950", "30000", "10000", 5066},
        {"matched below net by the rounding of the rate: stays 4,750", "30000", "0.02", 4750},
        {"underlying rate of 19%: the distributions change nothing", "200000", "50000", 38000},
        {"no distributions", "30000", "", 4750},
    };
    for (const auto& c : cases) {
        Run05 r = year("01/04/2004", "31/03/2005", c.profit);
        r.set("Q67", c.distributions).go();
        EXPECT_NEAR(r.num("Q70"), c.q70, 1e-6) << c.working;
    }
}

TEST(CCT600_05Calc, ClearingSparesDistributionsAndOverrides) {
    Run05 r;
    r.set("Q50", "1000").set("Q51", "20").set("Q61", "7").set("Q67", "123").set("Q57", "400!").set("Q58", "10!");
    r.set("Q71", "5").go();
    expectTexts(r, {{"Q50", "0.000000"}, {"Q61", "0.000000"}, {"Q67", "123"}, {"Q57", "400!"}});
    EXPECT_DOUBLE_EQ(r.num("Q59"), 40);     // the override counts
    EXPECT_EQ(r.text("Q65"), "0.000000");   // Q64 of 0 leaves the clearing's 0
    // Distributions without a profit to match them to: the tax of the rows.
    EXPECT_EQ(r.text("Q70"), "40.000000");
    EXPECT_EQ(r.text("Q71"), "0.000000");   // page G's total, empty at the start
}

TEST(CCT600_05Calc, ProfitBlockEveryTerm) {
    // Each input a distinct power of two, so a missing or doubled term shows.
    Run05 r;
    const char* added[] = {"Q6", "Q8", "Q9", "Q10", "Q11", "Q12", "Q13", "Q14", "Q16"};
    double bit = 1, q21 = 0;
    for (const char* key : added) {
        r.set(key, fmt0(bit));
        q21 += bit;
        bit *= 2;
    }
    r.set("Q3", fmt0(bit * 3)).set("Q4", fmt0(bit));  // Q5 = 2 bits
    q21 += 2 * bit;
    bit *= 4;
    r.set("Q17", fmt0(bit)).set("Q19", fmt0(bit * 2)).set("Q20", fmt0(bit * 4));
    q21 -= bit + bit * 2 + bit * 4;
    double q33 = 0;
    for (const char* key : {"Q22", "Q24", "Q25", "Q26", "Q27", "Q28", "Q29", "Q30", "Q32"}) {
        r.set(key, "3");
        q33 += 3;
    }
    r.set("Q23", "1000").set("Q31", "1000");  // not terms of Q33
    r.set("Q35", "5").set("Q36", "11");
    r.go();
    expectNums(r, {{"Q5", 1024}, {"Q15", 32 + 64 + 128},  // Q12 + Q13 + Q14
        {"Q18", 256 - 2048},  // Q16 - Q17
        {"Q21", q21}, {"Q33", q33}, {"Q34", q21 - q33}, {"Q37", q21 - q33 - 16}});
}

TEST(CCT600_05Calc, SmallCompanyBoxFollowsTheComputedProfit) {
    // The driver reads the override of 30,000 and ticks the box; the computed
    // Q37 of 0 blanks it again.
    Run05 r = year("01/04/2004", "31/03/2005", "");
    r.set("Q37", "30000!").go();
    EXPECT_EQ(r.text("Q64"), "950.00");
    EXPECT_EQ(r.text("Q42"), "");
    EXPECT_NE(std::find(r.log.begin(), r.log.end(), "Q37 = 0.000000 setting Q42=n"), r.log.end());

    Run05 loss = year("01/04/2004", "31/03/2005", "");
    loss.set("Q4", "5000").set("Q42", "y").go();
    EXPECT_EQ(loss.text("Q42"), "");
    EXPECT_NE(std::find(loss.log.begin(), loss.log.end(), "Q37 = -5000.000000 setting Q42=n"), loss.log.end());
    EXPECT_EQ(loss.text("Q43"), "");
}

TEST(CCT600_05Calc, NoughtsShowAsZero) {
    Run05 none;
    none.go();
    for (const char* key : {"Q5", "Q34", "Q37", "Q63", "Q70", "Q78", "Q86"}) EXPECT_EQ(none.text(key), "zero") << key;
    expectTexts(none, {{"Q44", ""},  // the driver's blank; Q43 is blank, no mark
        {"Q46", "0.000000"}, {"Q77", "0.000000"}});  // no tax, so no mark

    // Profit only in Q38: FY2004 at the main rate on a portion of 0.
    Run05 other = year("01/04/2004", "31/03/2005", "");
    other.set("Q38", "50000").go();
    expectTexts(other, {{"Q43", "2004"}, {"Q45", "30"}, {"Q44", "zero"}, {"Q46", "zero"}, {"Q53", ""},
        {"Q56", "0.000000"}});
}

TEST(CCT600_05Calc, TotalsAndRepayment) {
    // Tax 4,750 (FY2004, profits 30,000). Reliefs 750; instalments 5,000.
    Run05 r = year("01/04/2004", "31/03/2005", "30000");
    r.set("Q72", "500").set("Q76", "250").set("Q82", "100").set("Q84", "0").set("Q87", "5000").set("Q88", "200");
    r.set("Q91", "50").set("Q170", "30").go();
    const std::pair<const char*, double> rows[] = {
        {"Q77", 750},  {"Q78", 4000}, {"Q83", 4100}, {"Q86", 4100}, {"Q89", 900},
        {"Q90", 200},  {"Q92", 0},    {"Q93", 1150}, {"Q171", 30},
    };
    for (const auto& [key, value] : rows) EXPECT_DOUBLE_EQ(r.num(key), value) << key;

    Run05 owing = year("01/04/2004", "31/03/2005", "30000");
    owing.set("Q84", "9999").go();  // more deducted than due: floored
    EXPECT_EQ(owing.text("Q86"), "zero");
}

TEST(CCT600_05Calc, PagesAndTheirFeedBack) {
    Run05 r;
    r.set("QA2.02.1", "1000.01").set("QA2.02.6", "3").set("QA2.02.7", "500");  // row 7 isn't a row
    r.set("QA4.02.2", "100").set("QA4.03.3", "60").set("QA8.02.4", "40").set("QA8.03.5", "0.5");
    r.set("QB1.06.1", "1").set("QB1.06.200", "2").set("QB1.06.201", "100").set("QB1.10.150", "12.5");
    r.set("QC1.06.20", "7").set("QC2.1", "1").set("QC2.7", "2").set("QC2.8", "99").set("QC3.06.1", "9");
    r.set("QC4.06.21", "1000");
    r.set("QD1", "10").set("QD2", "5").set("QD4", "1").set("QD5", "2").set("QD7", "3").set("QD8", "4");
    r.set("QD13", "20").set("QD14", "1");
    r.set("QF10D.1", "1950").set("QF10E.1", "365").set("QF10G.8", "0.30");
    r.set("QG1.4.1", "100").set("QG1.4.5", "50");
    r.go();
    // Page A at a flat 25%, unrounded.
    expectDoubles(r, {{"QA2", 1003.01}, {"QA3", 250.7525}, {"QA6", 160}, {"QA7", 40}, {"QA10", 40.5},
        {"QA11", 10.125}, {"QA13", 250.7525 - 40 - 10.125}});
    EXPECT_EQ(r.text("Q79"), r.text("QA13"));
    expectNums(r, {{"QB1.06", 3}, {"QB1.10", 12.5}, {"Q81", 12.5}, {"QC1", 7}, {"Q36", 7}, {"QC2.8", 3},
        {"QC3", 9}, {"Q73", 9}, {"QC4", 0}, {"QD3", 15}, {"QD6", 3}, {"QD9", 10}, {"QD15", 21}, {"QD16", 0},  // 15 - 21 floored
        {"QF10", 3669},  // 3,668.25 + 0.30 to the pound
        {"Q13", 3669}, {"QG1", 150}});
    // The main return read the page totals before they were worked.
    expectNums(r, {{"Q71", 0}, {"Q83", 0}, {"Q37", 0}});
    r.go();
    EXPECT_EQ(r.num("Q71"), 150);
    // No dates, so no tax: Q78 = 0 - (150 + 9), then page A's 200.6275 and page B's 12.5.
    EXPECT_DOUBLE_EQ(r.num("Q77"), 159);
    EXPECT_DOUBLE_EQ(r.num("Q83"), -159 + 200.6275 + 12.5);
    EXPECT_EQ(r.num("Q15"), 3669);
    EXPECT_EQ(r.num("Q37"), 3669 - 7);
}

TEST(CCT600_05Calc, PageANoughtOnlyWhenTaxArose) {
    Run05 withTax;
    withTax.set("QA2.02.1", "400").set("QA8.02.1", "400").go();
    EXPECT_EQ(withTax.text("QA13"), "zero");
    EXPECT_EQ(withTax.text("Q79"), "zero");
    Run05 noTax;
    noTax.go();
    EXPECT_EQ(noTax.text("QA13"), "0.000000");
}

TEST(CCT600_05Calc, APrefixedRunStopsBeforeThePages) {
    Run05 r = year("01/04/2004", "31/03/2005", "");
    r.set("SQ3", "30000").set("QA2.02.1", "100").set("from", "bad date").go("S");
    EXPECT_EQ(r.text("SQ5"), "30000.000000");
    EXPECT_EQ(r.text("SQ64"), "950.00");  // a bad from counts as missing: FY2004 in full
    EXPECT_FALSE(r.has("QA2"));
    EXPECT_FALSE(r.has("SQA2"));
    EXPECT_FALSE(r.has("Q5"));
    EXPECT_FALSE(r.has("SQ1000"));
    EXPECT_TRUE(r.errors.empty());
}

TEST(CCT600_05Calc, FieldChecksAsTheThirdGeneration) {
    const std::string date = "Date must be dd/mm/yyyy - must have slashes typed in.";
    Run05 r;
    r.set("from", "2004-04-01").set("to", "31/03/2005").set("Address1", std::string(36, 'a').c_str()).go();
    const std::vector<std::pair<std::string, std::string>> expected = {{"from", date},
                                                                        {"Address1", "Maximum 35 chars"}};
    EXPECT_EQ(r.errors, expected);
    EXPECT_EQ(r.text("Q1000"), "1.000000");
}

}  // namespace
