#include "calculators/pages.h"

#include <algorithm>
#include <cmath>

#include "calculators/rows.h"
#include "common/library.h"

namespace {

// The loan-tax rate from the first day after each change of rate.
struct LoanRateStep {
    const char* changedAfter;
    double rate;
};
constexpr LoanRateStep kLoanRates[] = {{"05/04/2022", 0.3375}, {"05/04/2016", 0.325}};
constexpr double kLoanRateBefore2016 = 0.25;

struct TonnageBand {
    double tons;  // width of the band; the last is open
    double perHundredPerDay;
};
constexpr TonnageBand kTonnageBands[] = {{1000, 0.60}, {9000, 0.45}, {15000, 0.30}, {HUGE_VAL, 0.15}};

}  // namespace

double LoanTaxRate(const char* from, const char* to) {
    (void)to;  // the rate of the period's first day serves the whole page
    for (const auto& step : kLoanRates)
        if (after(from, step.changedAfter)) return step.rate;
    return kLoanRateBefore2016;
}

double TonnageProfit(double tons, double days) {
    double remaining = tons, perDay = 0;
    for (const auto& band : kTonnageBands) {
        const double inBand = std::min(remaining, band.tons);
        remaining -= inBand;
        perDay += std::trunc(inBand * 0.01) * band.perHundredPerDay;
    }
    return perDay * days;
}

void SumRows(CBaseCalc& calc, std::span<const RowTotal> totals) {
    for (const RowTotal& t : totals) calc.SetBox(t.total, calc.SumBoxes(t.rowFormat, 1, t.rows));
}

void LoanPage(CBaseCalc& c, const LoanPageKeys& k, const LoanPageRules& rules) {
    auto tax = [&rules](double amount) {
        const double t = amount * rules.rate;
        return rules.round ? rules.round(t) : t;
    };
    SumRows(c, {&k.loans, 1});
    c.SetBox(k.loansTax, tax(c.GetBox(k.loans.total)));
    SumRows(c, k.repaid);
    c.SetBox(k.repaidSum, c.GetBox(k.repaid[0].total) + c.GetBox(k.repaid[1].total));
    c.SetBox(k.repaidTax, tax(c.GetBox(k.repaidSum)));
    SumRows(c, k.released);
    c.SetBox(k.releasedSum, c.GetBox(k.released[0].total) + c.GetBox(k.released[1].total));
    if (rules.taxesReleased) c.SetBox(k.releasedTax, tax(c.GetBox(k.releasedSum)));
    c.SetBox(k.netTax, c.GetBox(k.loansTax) - c.GetBox(k.repaidTax) - c.GetBox(k.releasedTax));
    if (k.mainBox) c.SetBox(k.mainBox, c.GetBox(k.netTax));
    if (rules.marksZero && c.GetBox(k.loansTax) != 0) {
        c.MarkZero(k.netTax);
        if (k.mainBox) c.MarkZero(k.mainBox);
    }
}

void PageD(CBaseCalc& c) {
    c.SetBox("QD3", c.Sum({"QD1", "QD2"}));
    c.SetBox("QD6", c.Sum({"QD4", "QD5"}));
    c.SetBox("QD9", c.Sum({"QD6", "QD7", "QD8"}));
    c.SetBox("QD15", c.Sum({"QD13", "QD14"}));
    c.SetBox("QD16", FlooredAtZero(c.GetBox("QD3") - c.GetBox("QD15")));
}

namespace {
// A ship's row: its net tons and days in, its profit out.
struct TonnageRow {
    const char* tons;
    const char* days;
    const char* profit;
};
constexpr TonnageRow kTonnageRows[] = {
    {"QF10D.1", "QF10E.1", "QF10G.1"}, {"QF10D.2", "QF10E.2", "QF10G.2"}, {"QF10D.3", "QF10E.3", "QF10G.3"},
    {"QF10D.4", "QF10E.4", "QF10G.4"}, {"QF10D.5", "QF10E.5", "QF10G.5"}, {"QF10D.6", "QF10E.6", "QF10G.6"},
    {"QF10D.7", "QF10E.7", "QF10G.7"},
};
}  // namespace

void TonnagePage(CBaseCalc& c) {
    for (const TonnageRow& row : kTonnageRows)
        c.SetBox(row.profit, TonnageProfit(c.GetBox(row.tons), c.GetBox(row.days)));
    // Eight rows are summed: the eighth is entered by hand, never computed.
    c.SetBox("QF10", roundnearest(c.SumBoxes("QF10G.%d", 1, 8)));
    c.SetBox("Q13", c.GetBox("QF10"));
}

void PageG(CBaseCalc& c) { c.SetBox("QG1", c.SumBoxes("QG1.4.%d", 1, 5)); }

void FieldChecks(CBaseCalc& calc, const char* fromKey, const char* toKey, const char* dateMessage) {
    static const char* const kAddressMessage = "Maximum 35 chars";
    calc.SetBox("Q1000", calc.AddError(0, fromKey, calc.BoxDateOk(fromKey), dateMessage));
    calc.SetBox("Q1000", calc.AddError(0, toKey, calc.BoxDateOk(toKey), dateMessage));
    calc.SetBox("Q1000", calc.AddError(0, "Address1", calc.BoxLength("Address1") <= 35, kAddressMessage));
    calc.SetBox("Q1000", calc.AddError(0, "Address2", calc.BoxLength("Address2") <= 35, kAddressMessage));
}
