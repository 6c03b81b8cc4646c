// Supplementary pages that the generations share in shape: each generation
// hands in its own keys, rows and rates. The third generation's assembly is
// in pages_16, the earlier ones' in their calculators.
#pragma once

#include <span>

#include "boxstore/calcbase.h"

// Rate of the tax on loans to participators, from the start of the period.
double LoanTaxRate(const char* from, const char* to);

// Tonnage-tax profit of one ship: whole hundreds of net tons in four bands,
// at 60p, 45p, 30p and 15p per hundred tons per day.
double TonnageProfit(double tons, double days);

// A total box and the repeated rows it sums, from row 1.
struct RowTotal {
    const char* total;
    const char* rowFormat;
    int rows;
};
void SumRows(CBaseCalc& calc, std::span<const RowTotal> totals);

// Page A, tax on loans to participators: the loans made, taxed; the loans
// repaid and the loans released (two columns each), relieved; the net tax.
struct LoanPageKeys {
    RowTotal loans;
    const char* loansTax;
    RowTotal repaid[2];
    const char* repaidSum;
    const char* repaidTax;
    RowTotal released[2];
    const char* releasedSum;
    const char* releasedTax;
    const char* netTax;
    const char* mainBox;  // the main return's box for the net tax, or null
};
struct LoanPageRules {
    double rate;
    double (*round)(double);  // rounds each tax; null leaves it as it is
    bool taxesReleased;       // false: the tax on loans released is an input
    bool marksZero;           // a nil net tax shows "zero" once tax on loans arose
};
void LoanPage(CBaseCalc& calc, const LoanPageKeys& keys, const LoanPageRules& rules);

// Page D of the first two generations.
void PageD(CBaseCalc& calc);
// Page F: tonnage profits of seven ships, and the page total into Q13.
void TonnagePage(CBaseCalc& calc);
// Page G: the total of its five rows.
void PageG(CBaseCalc& calc);

// The four checks that end a run without prefix, each result into Q1000.
void FieldChecks(CBaseCalc& calc, const char* fromKey, const char* toKey, const char* dateMessage);
