// The second-generation calculator. It runs in the order of the third
// generation's pass; the comments marked "Differs" say where it departs.
#include <algorithm>

#include "calculators/calculators.h"
#include "calculators/pages.h"
#include "calculators/pages_16.h"
#include "calculators/rows.h"
#include "liability/liability.h"

namespace {

constexpr RateRow kRateRows[] = {
    {"Q46", "Q44", "Q45"}, {"Q49", "Q47", "Q48"}, {"Q52", "Q50", "Q51"},
    {"Q56", "Q54", "Q55"}, {"Q59", "Q57", "Q58"}, {"Q62", "Q60", "Q61"},
};

// Totals that show an explicit nought rather than a blank: the same rows as
// the third generation's list, under the older numbers.
constexpr int kZeroBoxes[] = {5, 34, 37, 63, 70, 78, 86};
constexpr YearLine kYearLines[] = {{"Q43", "Q44", "Q46"}, {"Q53", "Q54", "Q56"}};

// Across 1 April 2006 the driver charges the distributions in the first
// year only, and the second year's tax on top.
constexpr int kStraddleYears[] = {2005, 2006};

// Differs: page A has one flat rate for every year, and no rounding.
constexpr double kLoanRate = 0.25;
constexpr LoanPageKeys kLoanPage05{
    {"QA2", "QA2.02.%d", 6}, "QA3",
    {{"QA4", "QA4.02.%d", 6}, {"QA5", "QA4.03.%d", 6}}, "QA6", "QA7",
    {{"QA8", "QA8.02.%d", 6}, {"QA9", "QA8.03.%d", 6}}, "QA10", "QA11",
    "QA13", "Q79",
};

constexpr RowTotal kPageB05[] = {
    {"QB1.06", "QB1.06.%d", 200}, {"QB1.07", "QB1.07.%d", 200}, {"QB1.08", "QB1.08.%d", 200},
    {"QB1.09", "QB1.09.%d", 200}, {"QB1.10", "QB1.10.%d", 200},
};

constexpr RowTotal kPageC05[] = {
    {"QC1", "QC1.06.%d", 20}, {"QC2.8", "QC2.%d", 7}, {"QC2", "QC2.06.%d", 20},
    {"QC3", "QC3.06.%d", 20}, {"QC4", "QC4.06.%d", 20},
};

}  // namespace

void CCT600_05Calc::Calc() {
    // Differs: Q67, the distributions, is an input and is spared the clearing.
    ClearBoxes(*this, 43, 70, {67});
    ProfitBlock();
    const bool distributionsMatched = Liability();
    TaxBlock(distributionsMatched);
    TotalsBlock();
    MarkZeroes(*this, kZeroBoxes, kYearLines);
    // A run under a prefix computes the main return only.
    if (!m_Prefix.IsEmpty()) return;
    Pages();
    FieldChecks16(*this);  // the same fields and messages as the third generation
}

void CCT600_05Calc::ProfitBlock() {
    SetBox("Q5", GetBox("Q3") - GetBox("Q4"));
    SetBox("Q15", Sum({"Q12", "Q13", "Q14"}));
    SetBox("Q18", GetBox("Q16") - GetBox("Q17"));
    SetBox("Q21", Sum({"Q5", "Q15", "Q18", "Q6", "Q8", "Q9", "Q10", "Q11"}) - GetBox("Q19") - GetBox("Q20"));
    SetBox("Q33", Sum({"Q22", "Q24", "Q25", "Q26", "Q27", "Q28", "Q29", "Q30", "Q32"}));
    SetBox("Q34", GetBox("Q21") - GetBox("Q33"));
    SetBox("Q37", GetBox("Q34") - (GetBox("Q35") + GetBox("Q36")));
}

bool CCT600_05Calc::Liability() {
    CMapStringToString results;
    CTcharge_05(m_pBoxes, m_Prefix, &results);
    // Differs: with no profits chargeable the small company box is blanked,
    // whatever the driver found. The computed figure decides, not an override.
    const double profit = GetValue("Q37");
    if (profit <= 0) {
        DoLogF("Q37 = %f setting Q42=n", profit);
        results["Q42"] = "";
    }
    const CString* distributionTax = results.PLookup("Q68");
    const bool matched = distributionTax && !distributionTax->IsEmpty();
    TakeOverResults(results);
    return matched;
}

void CCT600_05Calc::TaxBlock(bool distributionsMatched) {
    RateRows(*this, kRateRows);
    SetBox("Q63", Sum({"Q46", "Q49", "Q52", "Q56", "Q59", "Q62"}));
    // Differs: Q65 and Q70 are written under conditions, and Q70 is derived
    // here, where the third generation's driver hands it back.
    if (GetBox("Q64") > 0) SetBox("Q65", GetBox("Q63") - GetBox("Q64"));
    const double net = GetBox("Q63") - GetBox("Q64");
    if (GetBox("Q67") != 0 && distributionsMatched) {
        // The driver gives no Q70 here; a practitioner expects the tax
        // chargeable of the worked report: Q68 + Q69, never below Q63 - Q64,
        // or across 1 April 2006 Q68 + Q69 + the second year's Q56. Without a
        // matching (underlying rate 19% or more) the distributions change nothing.
        const double matched = GetBox("Q68") + GetBox("Q69");
        const bool straddle = GetBox("Q43") == kStraddleYears[0] && GetBox("Q53") == kStraddleYears[1];
        SetBox("Q70", straddle ? matched + GetBox("Q56") : std::max(matched, net));
    } else {
        SetBox("Q70", net);
    }
    // Differs: Q71 takes page G's total as it stands before page G is worked.
    SetBox("Q71", GetBox("QG1"));
    SetBox("Q77", Sum({"Q71", "Q72", "Q73", "Q76"}));
    if (GetBox("Q70") > 0) MarkZero("Q77");
}

void CCT600_05Calc::TotalsBlock() {
    SetBox("Q78", GetBox("Q70") - GetBox("Q77"));
    SetBox("Q83", Sum({"Q78", "Q79", "Q81", "Q82"}));
    SetBox("Q86", FlooredAtZero(GetBox("Q83") - GetBox("Q84")));
    SetBox("Q89", FlooredAtZero(GetBox("Q87") - GetBox("Q86")));
    SetBox("Q90", FlooredAtZero(GetBox("Q87") + GetBox("Q88") - GetBox("Q86") - GetBox("Q89")));
    SetBox("Q92", FlooredAtZero(GetBox("Q86") - GetBox("Q87") - GetBox("Q88") - GetBox("Q91")));
    SetBox("Q93", FlooredAtZero(GetBox("Q88") + GetBox("Q91") + GetBox("Q87") - GetBox("Q86")));
    SetBox("Q171",
           FlooredAtZero(GetBox("Q87") + GetBox("Q88") + GetBox("Q170") - GetBox("Q86") - GetBox("Q89") - GetBox("Q90")));
}

// Pages A, B, C, D, F, G. Their totals feed Q79, Q81, Q36, Q73 and Q13,
// which the main return has already read: they count in the next run.
void CCT600_05Calc::Pages() {
    LoanPage(*this, kLoanPage05, {kLoanRate, nullptr, true, true});
    SumRows(*this, kPageB05);
    SetBox("Q81", GetBox("QB1.10"));
    SumRows(*this, kPageC05);
    SetBox("Q36", GetBox("QC1"));
    SetBox("Q73", GetBox("QC3"));
    PageD(*this);
    TonnagePage(*this);
    PageG(*this);
}
