// The first-generation calculator, alone and through ct600_02, which runs it
// under the caller's prefix and again under "S".
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "calculators/calculators.h"
#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "support.h"

namespace {

class Gen1 : public testing::Test, public BoxRun<CCT600_02Calc> {
public:
    const QuietErrors quiet;
    Gen1& set(const char* key, const char* value) {
        BoxRun::set(key, value);
        return *this;
    }
};

TEST_F(Gen1, BothRunsInOneCallWorkedByHand) {
    // Plain keys, FY2001, profits 30,000: small companies rate 20% = 6,000.00,
    // starting rate marginal relief 1/40 x (50,000 - 30,000) = 500.00; 5,500.00.
    // S keys, the same year, profits 8,000: the 10% starting rate, 800.00.
    set("From", "01/04/2001").set("To", "31/03/2002").set("Q3", "30000").set("SQ3", "8000");
    CMapStringToString result;
    CString prefix;
    EXPECT_EQ(ct600_02(&boxes, &prefix, &result), 1);
    const std::pair<const char*, const char*> rows[] = {
        {"Q5", "30000.000000"},  {"Q19", "30000.000000"}, {"Q33", "30000.000000"}, {"Q39", "2001"},
        {"Q40", "30000"},        {"Q41", "20"},           {"Q42", "6000.000000"},  {"Q49", ""},
        {"Q59", "6000.000000"},  {"Q60", "500.00"},       {"Q63", "500.000000"},   {"Q64", "5500.000000"},
        {"Q68", "5500.000000"},  {"Q72", "5500.000000"},  {"SQ5", "8000.000000"},  {"SQ33", "8000.000000"},
        {"SQ41", "10"},          {"SQ42", "800.000000"},  {"SQ60", "0.00"},        {"SQ64", "800.000000"},
        {"SQ68", "800.000000"},  {"SQ72", "800.000000"},
    };
    for (const auto& [key, value] : rows) EXPECT_EQ(text(key), value) << key;
    EXPECT_EQ(result["Q60"], "500.00");
    EXPECT_EQ(result["SQ60"], "0.00");
    CXMLVar doc("");
    doc.Open(result["validation"]);
    EXPECT_EQ(doc.name, kCalcErrorsRoot);
    EXPECT_EQ(doc.GetChildCount(), 0);
}

// Worked returns, reconciliation, noughts and pages: cases in tests/data/calc02_cases.txt.
TEST(Gen1Cases, All) { runCalcCases<CCT600_02Calc>("calc02_cases.txt", 12); }

TEST_F(Gen1, ProfitAndTaxBlocksEveryTerm) {
    const char* q19Terms[] = {"Q7", "Q8", "Q9", "Q10", "Q11", "Q12", "Q13"};
    double bit = 1, q19 = 0;
    for (const char* key : q19Terms) {
        set(key, fmt0(bit));
        q19 += bit;
        bit *= 2;
    }
    set("Q3", "1000").set("Q4", "400").set("Q14", "50").set("Q15", "20").set("Q17", "4").set("Q18", "8");
    q19 += 600 + 30 - 12;
    double q29 = 0;
    for (const char* key : {"Q20", "Q21", "Q22", "Q23", "Q24", "Q25", "Q27", "Q28"}) {
        set(key, "2");
        q29 += 2;
    }
    set("Q26", "1000").set("Q31", "3").set("Q32", "5");
    // Tax rows that the driver doesn't write, and the reliefs.
    set("Q43", "100").set("Q44", "10").set("Q46", "200").set("Q47", "20").set("Q53", "300").set("Q54", "30");
    set("Q56", "400").set("Q57", "40").set("Q61", "1").set("Q62", "2").set("Q148", "4").set("Q162", "8");
    set("Q66", "16").set("Q67", "32").set("Q163", "64");
    go();
    expectNums(*this, {{"Q5", 600}, {"Q16", 30}, {"Q19", q19}, {"Q29", q29}, {"Q30", q19 - q29},
        {"Q33", q19 - q29 - 8}, {"Q45", 10}, {"Q48", 40}, {"Q55", 90}, {"Q58", 160}, {"Q59", 300},  // no dates: the driver's years are empty
        {"Q63", 15},  // relief 0 + 1 + 2 + 4 + 8
        {"Q64", 285}, {"Q68", 285 + 16 + 32 + 64}});
}

TEST_F(Gen1, FieldChecksOnTheCapitalDateFields) {
    const std::string date = "Date must be dd/mm/yyyy";
    set("From", "2001-04-01").set("To", "31/02/2002").set("from", "garbage");
    set("Address2", std::string(36, 'x').c_str()).go();
    const std::vector<std::pair<std::string, std::string>> expected = {{"From", date},
                                                                        {"Address2", "Maximum 35 chars"}};
    EXPECT_EQ(errors, expected);
    EXPECT_EQ(text("Q1000"), "0.000000");
}

TEST_F(Gen1, ErrorsOfBothRunsInOneValidation) {
    struct Case {
        const char* prefix;
        int errors;  // only the run without prefix reaches the checks
    };
    const Case cases[] = {{"", 2}, {"X", 0}};
    for (const auto& c : cases) {
        CMapStringToString map, result;
        map["From"] = "bad";
        map["To"] = "also bad";
        map[CString(c.prefix) + "Q3"] = "500";
        map["SQ3"] = "700";
        CString prefix(c.prefix);
        EXPECT_EQ(_cte_03(&map, &prefix, &result), 1);
        EXPECT_EQ(map[CString(c.prefix) + "Q5"], "500.000000") << c.prefix;
        EXPECT_EQ(map["SQ5"], "700.000000") << c.prefix;
        EXPECT_EQ(map.PLookup("SQA2"), nullptr) << c.prefix;
        EXPECT_EQ(map.PLookup("QA2") != nullptr, c.prefix[0] == '\0') << c.prefix;
        CXMLVar doc("");
        doc.Open(result["validation"]);
        EXPECT_EQ(doc.CountChildren("Error"), c.errors) << c.prefix;
    }
}

}  // namespace
