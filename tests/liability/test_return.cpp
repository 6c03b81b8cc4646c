// Whole third-generation returns through the ctv3_16 export, with the tax
// worked by hand from HMRC's published rates and limits.
#include <gtest/gtest.h>

#include "common/errors.h"
#include "entry/exports.h"
#include "support.h"

namespace {

struct Expected {
    const char *q330, *q335, *q340, *q345, *q380, *q385, *q390, *q395, *q430, *q70;
};

void checkTaxRows(const CMapStringToString& boxes, const Expected& e) {
    expectResults(boxes, {{"Q330", e.q330}, {"Q335", e.q335}, {"Q340", e.q340}, {"Q345", e.q345}, {"Q380", e.q380},
                          {"Q385", e.q385}, {"Q390", e.q390}, {"Q395", e.q395}, {"Q430", e.q430}, {"Q70", e.q70}});
}

class Return : public testing::Test {
protected:
    QuietErrors quiet;
    CMapStringToString boxes, out;
    void run(const char* from, const char* to, const char* profit, const char* prefix = "") {
        boxes["from"] = from;
        boxes["to"] = to;
        boxes[CString(prefix) + "Q155"] = profit;
        CString p(prefix);
        EXPECT_EQ(ctv3_16(&boxes, &p, &out), 1);
    }
};

TEST_F(Return, FullYear2010WithMarginalRelief) {
    // FY2010: main rate 28%, lower limit 300,000, upper 1,500,000, fraction 7/400.
    // 28% x 400,000 = 112,000.00
    // less 7/400 x (1,500,000 - 400,000) = 19,250.00
    // tax chargeable 92,750.00. The form's rows carry 112,000; the relief is in Q70 only.
    run("01/04/2010", "31/03/2011", "400000");
    checkTaxRows(boxes, {"2010", "400000", "28", "112000.000000", "", "", "", "0.000000", "112000.000000",
                         "92750.00"});
    // Nil reliefs (Q470) against a positive tax show as zero.
    expectResults(boxes, {{"Q440", "112000.000000"}, {"Q470", "zero"}, {"Q525", "112000.000000"}});
    EXPECT_EQ(result(out, "Q70"), "92750.00");
}

TEST_F(Return, StraddleAtSmallCompaniesRates) {
    // 01/10/2010 to 30/09/2011: 365 days, 182 in FY2010 and 183 in FY2011.
    // 182/365 x 100,000 = 49,863.01 -> 49,863; FY2011 takes the rest, 50,137.
    // Profit under the 300,000 lower limit: small companies rates, no relief.
    // 49,863 x 21% = 10,471.23; 50,137 x 20% = 10,027.40; total 20,498.63.
    run("01/10/2010", "30/09/2011", "100000");
    checkTaxRows(boxes, {"2010", "49863", "21", "10471.230000", "2011", "50137", "20", "10027.400000",
                         "20498.630000", "20498.63"});
}

TEST_F(Return, LeapYearStraddleWithReliefInBothYears) {
    // Calendar 2012: 366 days, 91 in FY2011 (26%, 3/200) and 275 in FY2012 (24%, 1/100).
    // 91/366 x 500,000 = 124,316.94 -> 124,317; FY2012 375,683.
    // Tax 124,317 x 26% = 32,322.42; 375,683 x 24% = 90,163.92; total 122,486.34.
    // Relief, whole period then apportioned by days:
    //   3/200 x (1,500,000 - 500,000) = 15,000 x 91/366 = 3,729.50
    //   1/100 x (1,500,000 - 500,000) = 10,000 x 275/366 = 7,513.66
    // 122,486.34 - 11,243.16 = 111,243.18.
    run("01/01/2012", "31/12/2012", "500000");
    checkTaxRows(boxes, {"2011", "124317", "26", "32322.420000", "2012", "375683", "24", "90163.920000",
                         "122486.340000", "111243.18"});
}

TEST_F(Return, DriverResultsReplaceOverridesOthersSurvive) {
    boxes["Q340"] = "99!";
    boxes["Q360"] = "77!";
    boxes["Q350"] = "5";
    run("01/04/2010", "31/03/2011", "400000");
    // Q430 counts the override's 77.
    expectResults(boxes, {{"Q340", "28"}, {"Q360", "77!"}, {"Q350", "0.000000"}, {"Q430", "112077.000000"}});
    // Same figures from a second run over the same map.
    run("01/04/2010", "31/03/2011", "400000");
    EXPECT_EQ(boxes["Q70"], "92750.00");
    EXPECT_EQ(boxes["Q430"], "112077.000000");
}

TEST_F(Return, NoProfitShowsNoughts) {
    run("01/04/2010", "31/03/2011", "0");
    for (const char* key : {"Q165", "Q300", "Q315", "Q430", "Q440", "Q475", "Q525"})
        EXPECT_EQ(boxes[key], "zero") << key;
    // Q330 is blank, so Q335 has no nought.
    expectResults(boxes, {{"Q335", ""}, {"Q345", "0.000000"}, {"Q470", "0.000000"}, {"Q70", "<unset>"}});
}

TEST_F(Return, RepaymentBlockFloors) {
    // Q515 above Q510: nothing payable, and the 5,000 of Q545 comes back.
    boxes["Q515"] = "200000";
    boxes["Q540"] = "5000";
    boxes["Q471"] = "100";
    boxes["Q472"] = "300";
    run("01/04/2010", "31/03/2011", "400000");
    expectResults(boxes, {{"Q510", "112000.000000"}, {"Q525", "zero"}, {"Q526", "0.000000"}, {"Q545", "5000.000000"},
                          {"Q570", "5000.000000"}, {"Q575", "0.000000"}, {"Q600", "0.000000"}, {"Q605", "5000.000000"}});
}

TEST_F(Return, PrefixedRunKeepsToItsKeys) {
    run("01/04/2010", "31/03/2011", "400000", "S");
    expectResults(boxes, {{"SQ70", "92750.00"}, {"SQ330", "2010"}, {"SQ470", "zero"}, {"Q70", "<unset>"},
                          {"Q330", "<unset>"}});
}

}  // namespace
