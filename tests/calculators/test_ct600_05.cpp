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

// Worked returns, noughts, totals and the pages: cases in tests/data/calc05_cases.txt.
TEST(CCT600_05Calc, Cases) { runCalcCases<CCT600_05Calc>("calc05_cases.txt", 15); }

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
