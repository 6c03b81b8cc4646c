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

TEST_F(Gen1, CalendarYear2003AcrossTwoFinancialYears) {
    // 01/01/2003 to 31/12/2003, profits 40,000; FY2002 and FY2003 both 19%, 19/400.
    // FY2002: 90/365 x 40,000 = 9,863.01 -> 9,863 x 19% = 1,873.97.
    // FY2003: 275/365 x 40,000 = 30,136.99 -> 30,137 x 19% = 5,726.03.
    // Relief 19/400 x (50,000 - 40,000) = 475.00, shared 117.12 + 357.88.
    // 7,600.00 - 475.00 = 7,125.00, the same as 0% on 10,000 and 23.75% on 30,000.
    set("From", "01/01/2003").set("To", "31/12/2003").set("Q3", "40000");
    go();
    expectTexts(*this, {{"Q39", "2002"}, {"Q40", "9863"}, {"Q49", "2003"}, {"Q50", "30137"}, {"Q51", "19"}});
    expectDoubles(*this, {{"Q42", 1873.97}, {"Q52", 5726.03}, {"Q59", 7600}});
    EXPECT_EQ(text("Q60"), "475.00");
    EXPECT_DOUBLE_EQ(num("Q64"), 7125);
}

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

TEST_F(Gen1, ReconciliationRows) {
    struct Case {
        const char *q66, *q69, *q71, *q73, *q75;
        double q72, q74, q76, q77;
    };
    const Case cases[] = {
        {"1000", "300", "100", "", "", 600, 0, 600, 0},
        {"1000", "300", "900", "", "", -200, 200, 0, 200},  // Q71 is outside the test: below 0
        {"1000", "1000", "50", "", "", 0, 0, 0, 0},         // equal: 0 whatever Q71 holds
        {"1000", "1200", "", "", "", 0, 0, 0, 0},
        {"1000", "", "", "1500", "", 1000, 500, 0, 500},    // more paid than due
        {"1000", "", "", "300", "200", 1000, 0, 500, 0},
    };
    for (const auto& c : cases) {
        boxes.RemoveAll();
        set("Q66", c.q66).set("Q69", c.q69).set("Q71", c.q71).set("Q73", c.q73).set("Q75", c.q75);
        go();
        EXPECT_EQ(num("Q72"), c.q72) << c.q69 << " " << c.q71;
        EXPECT_EQ(num("Q74"), c.q74) << c.q73;
        EXPECT_EQ(num("Q76"), c.q76) << c.q73;
        EXPECT_EQ(num("Q77"), c.q77) << c.q73;
    }
}

TEST_F(Gen1, NoClearingAndThreeNoughtsOnlyWithTurnover) {
    set("Q65", "123").set("Q42", "77").go();
    EXPECT_EQ(text("Q65"), "123");  // no row writes it, and nothing clears it
    EXPECT_EQ(text("Q42"), "0.000000");
    for (const char* key : {"Q5", "Q33", "Q72"}) EXPECT_EQ(text(key), "0.000000") << key;

    boxes.RemoveAll();
    set("Q3", "100").set("Q4", "100").go();
    for (const char* key : {"Q5", "Q33", "Q72"}) EXPECT_EQ(text(key), "zero") << key;
    for (const char* key : {"Q59", "Q64", "Q68"}) EXPECT_EQ(text(key), "0.000000") << key;
}

TEST_F(Gen1, NoProfitBlanksYearsAndPortionsOnly) {
    set("From", "01/04/2001").set("To", "31/03/2002").set("Q41", "20").set("Q51", "19").set("Q60", "12");
    go();
    for (const char* key : {"Q39", "Q40", "Q49", "Q50"}) EXPECT_EQ(text(key), "") << key;
    expectTexts(*this, {{"Q41", "20"}, {"Q51", "19"}, {"Q60", "12"}});
    EXPECT_EQ(num("Q63"), 12);
}

TEST_F(Gen1, PagesStayOnTheirPages) {
    set("QA2.02.1", "1000.01").set("QA4.02.6", "100").set("QA8.02.2", "40").set("QA8.03.3", "2");
    set("QA11", "30");  // no row of this generation writes it
    set("QB1.06.1", "1").set("QB1.06.12", "2").set("QB1.06.13", "500").set("QB1.10.5", "7");
    set("QC1.06.7", "3").set("QC1.06.8", "100").set("QC2.1", "1").set("QC2.6", "2").set("QC2.7", "50");
    set("QC3.06.2", "4").set("QC4.06.1", "5");
    set("QD1", "10").set("QD2", "5").set("QD13", "3").set("QD14", "2").set("QD6", "99");
    set("QG1.4.1", "100").set("QF10D.1", "1000").set("QF10E.1", "1");
    go();
    expectDoubles(*this, {{"QA2", 1000.01}, {"QA3", 250.0025},  // 25%, unrounded
        {"QA6", 100}, {"QA7", 25}, {"QA10", 42}});
    EXPECT_EQ(text("QA11"), "30");
    EXPECT_DOUBLE_EQ(num("QA13"), 250.0025 - 25 - 30);
    expectNums(*this, {{"QB1.06.13", 3}, {"QB1.10.13", 7}, {"QC1", 3}, {"QC2.7", 3}, {"QC3", 4}, {"QC4", 5},
        {"QD3", 15}, {"QD6", 0}, {"QD15", 5}, {"QD16", 10}});
    // No main box fed, no page of the later forms, no noughts on page A.
    for (const char* key : {"Q79", "Q81", "Q73", "Q13", "QG1", "QF10", "QB1.06"})
        EXPECT_FALSE(has(key)) << key;

    boxes.RemoveAll();
    set("QA2.02.1", "400").set("QA4.02.1", "400").go();
    EXPECT_EQ(text("QA13"), "0.000000");
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
