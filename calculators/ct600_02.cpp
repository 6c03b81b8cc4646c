// The first-generation calculator, the plainest of the three: no clearing,
// no list of noughts, and page totals that stay on their pages.
#include "calculators/calculators.h"
#include "calculators/pages.h"
#include "calculators/rows.h"
#include "liability/liability.h"

namespace {

// m_Decimals is asked for before each row, where this generation asked once;
// nothing reads it, so the two come to the same.
constexpr RateRow kRateRows[] = {
    {"Q42", "Q40", "Q41"}, {"Q45", "Q43", "Q44"}, {"Q48", "Q46", "Q47"},
    {"Q52", "Q50", "Q51"}, {"Q55", "Q53", "Q54"}, {"Q58", "Q56", "Q57"},
};

// Page A at the flat rate, unrounded. The page has no row for the tax on
// loans released: QA10 is worked and read by nothing, and QA11 is an input,
// so the user enters that relief as on the paper form of those years.
constexpr double kLoanRate = 0.25;
constexpr LoanPageKeys kLoanPage02{
    {"QA2", "QA2.02.%d", 6}, "QA3",
    {{"QA4", "QA4.02.%d", 6}, {"QA5", "QA4.03.%d", 6}}, "QA6", "QA7",
    {{"QA8", "QA8.02.%d", 6}, {"QA9", "QA8.03.%d", 6}}, "QA10", "QA11",
    "QA13", nullptr,
};

// Twelve rows a column, each total in the column's thirteenth row.
constexpr RowTotal kPageB02[] = {
    {"QB1.06.13", "QB1.06.%d", 12}, {"QB1.07.13", "QB1.07.%d", 12}, {"QB1.08.13", "QB1.08.%d", 12},
    {"QB1.09.13", "QB1.09.%d", 12}, {"QB1.10.13", "QB1.10.%d", 12},
};

constexpr RowTotal kPageC02[] = {
    {"QC1", "QC1.06.%d", 7}, {"QC2.7", "QC2.%d", 6}, {"QC2", "QC2.06.%d", 7},
    {"QC3", "QC3.06.%d", 7}, {"QC4", "QC4.06.%d", 7},
};

}  // namespace

void CCT600_02Calc::Calc() {
    ProfitBlock();
    Liability();
    TaxBlock();
    // Three noughts only, and only where there is turnover.
    if (GetBox("Q3") != 0) {
        MarkZero("Q5");
        MarkZero("Q33");
        MarkZero("Q72");
    }
    // A run under a prefix (the second run, under "S") computes the main return only.
    if (!m_Prefix.IsEmpty()) return;
    Pages();
    FieldChecks(*this, "From", "To", "Date must be dd/mm/yyyy");
}

void CCT600_02Calc::ProfitBlock() {
    SetBox("Q5", GetBox("Q3") - GetBox("Q4"));
    SetBox("Q16", GetBox("Q14") - GetBox("Q15"));
    SetBox("Q19", Sum({"Q5", "Q16", "Q7", "Q8", "Q9", "Q10", "Q11", "Q12", "Q13"}) - GetBox("Q17") - GetBox("Q18"));
    SetBox("Q29", Sum({"Q20", "Q21", "Q22", "Q23", "Q24", "Q25", "Q27", "Q28"}));
    SetBox("Q30", GetBox("Q19") - GetBox("Q29"));
    SetBox("Q33", GetBox("Q30") - GetBox("Q31") - GetBox("Q32"));
}

void CCT600_02Calc::Liability() {
    CMapStringToString results;
    CTcharge_02(m_pBoxes, m_Prefix, &results);
    TakeOverResults(results);
}

void CCT600_02Calc::TaxBlock() {
    RateRows(*this, kRateRows);
    SetBox("Q59", Sum({"Q42", "Q45", "Q48", "Q52", "Q55", "Q58"}));
    SetBox("Q63", Sum({"Q60", "Q61", "Q62", "Q148", "Q162"}));
    SetBox("Q64", GetBox("Q59") - GetBox("Q63"));
    SetBox("Q68", Sum({"Q64", "Q66", "Q67", "Q163"}));
    // The test leaves Q71 out, so the box can go below 0.
    SetBox("Q72", GetBox("Q68") > GetBox("Q69") ? GetBox("Q68") - GetBox("Q69") - GetBox("Q71") : 0.0);
    SetBox("Q74", FlooredAtZero(GetBox("Q73") - GetBox("Q72")));
    SetBox("Q76", FlooredAtZero(GetBox("Q72") - (GetBox("Q73") + GetBox("Q75"))));
    SetBox("Q77", FlooredAtZero(GetBox("Q73") + GetBox("Q75") - GetBox("Q72")));
}

// Pages A to D. No total goes to the main return.
void CCT600_02Calc::Pages() {
    LoanPage(*this, kLoanPage02, {kLoanRate, nullptr, false, false});
    SumRows(*this, kPageB02);
    SumRows(*this, kPageC02);
    PageD(*this);
}
