#include "calculators/pages_16.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

double floorAtZero(double value) { return value < 0 ? 0 : value; }

void pageA(CBaseCalc& c) {
    const double rate = LoanTaxRate(c.GetBoxText("from"), c.GetBoxText("to"));
    c.SetBox("QA15", c.SumBoxes("QA10B.%d", 1, 6));
    c.SetBox("QA20", roundpennyup(c.GetBox("QA15") * rate));
    c.SetBox("QA30", c.SumBoxes("QA25B.%d", 1, 6));
    c.SetBox("QA35", c.SumBoxes("QA25C.%d", 1, 6));
    c.SetBox("QA40", c.GetBox("QA30") + c.GetBox("QA35"));
    c.SetBox("QA45", roundpennyup(c.GetBox("QA40") * rate));
    c.SetBox("QA55", c.SumBoxes("QA50B.%d", 1, 6));
    c.SetBox("QA60", c.SumBoxes("QA50C.%d", 1, 6));
    c.SetBox("QA65", c.GetBox("QA55") + c.GetBox("QA60"));
    c.SetBox("QA70", roundpennyup(c.GetBox("QA65") * rate));
    c.SetBox("QA80", c.GetBox("QA20") - c.GetBox("QA45") - c.GetBox("QA70"));
    c.SetBox("Q480", c.GetBox("QA80"));
    if (c.GetBox("QA20") != 0) {
        c.MarkZero("QA80");
        c.MarkZero("Q480");
    }
}

void pageB(CBaseCalc& c) {
    c.SetBox("QB10", c.SumBoxes("QB5F.%d", 1, 200));
    c.SetBox("QB15", c.SumBoxes("QB5G.%d", 1, 200));
    c.SetBox("QB20", c.SumBoxes("QB5H.%d", 1, 200));
    c.SetBox("QB25", c.SumBoxes("QB5I.%d", 1, 200));
    c.SetBox("QB30", c.SumBoxes("QB5J.%d", 1, 200));
    c.SetBox("Q490", c.GetBox("QB30"));
}

void pageC(CBaseCalc& c) {
    c.SetBox("QC10", c.SumBoxes("QC5D.%d", 1, 20));
    c.SetBox("QC80", c.Sum({"QC45", "QC46", "QC50", "QC55", "QC60", "QC65", "QC70", "QC75"}));
    c.SetBox("QC90", c.SumBoxes("QC85D.%d", 1, 20));
    c.SetBox("QC130", c.SumBoxes("QC125D.%d", 1, 20));
    c.SetBox("QC185", c.Sum({"QC160", "QC161", "QC165", "QC170", "QC175", "QC180"}));
    c.SetBox("QC195", c.SumBoxes("QC190D.%d", 1, 20));
    c.SetBox("Q310", c.GetBox("QC10"));
    c.SetBox("Q312", c.GetBox("QC130"));
}

void pageE(CBaseCalc& c) {
    c.SetBox("QE90", c.Sum({"QE50", "QE55", "QE60", "QE65", "QE70", "QE75", "QE80", "QE85"}));
    c.SetBox("QE125", c.Sum({"QE95", "QE100", "QE105", "QE110", "QE115", "QE120"}));
}

void pageF(CBaseCalc& c) {
    for (int row = 1; row <= 7; ++row)
        c.SetBox(CBaseCalc::BoxKey("QF10G.%d", row),
                 TonnageProfit(c.GetBox(CBaseCalc::BoxKey("QF10D.%d", row)),
                               c.GetBox(CBaseCalc::BoxKey("QF10E.%d", row))));
    // Eight rows are summed: the eighth is entered by hand, never computed.
    c.SetBox("QF10", roundnearest(c.SumBoxes("QF10G.%d", 1, 8)));
    c.SetBox("Q13", c.GetBox("QF10"));
}

void pageG(CBaseCalc& c) { c.SetBox("QG1", c.SumBoxes("QG1.4.%d", 1, 5)); }

// Every comparison reads the box as it stands at that step; a skipped step
// leaves its boxes as they came in.
void pageL(CBaseCalc& c) {
    auto box = [&c](const char* key) { return c.GetBox(key); };
    c.SetBox("QL8", floorAtZero(box("QL5") - box("QL7")));
    c.SetBox("QL9", floorAtZero(box("QL6") - box("QL7")));
    c.SetBox("QL25", box("QL15") + box("QL20"));
    if (box("QL15") > 0) c.SetBox("QL30", box("Q475"));
    c.SetBox("QL40", box("QL30") - box("QL35"));
    c.SetBox("QL45", std::min(box("QL40"), box("QL25")));
    c.SetBox("QL50", floorAtZero(box("QL25") - box("QL45")));
    if (box("QL50") > 0) {
        c.SetBox("QL60", box("QL15") - box("QL55"));
        if (box("QL15") > box("QL30")) c.SetBox("QL62", box("QL15") - box("QL30"));
        if (box("QL9") > 0) c.SetBox("QL65", floorAtZero(box("QL62") - box("QL60")));
    }
    c.SetBox("QL70", box("QL50") - box("QL65"));
    c.SetBox("QL80", floorAtZero(box("QL70") - box("QL75")));
    c.SetBox("QL85", box("QL70") - box("QL80"));
    c.SetBox("QL95", box("QL85") - box("QL90"));
    c.SetBox("QL105", box("QL95") - box("QL100"));
    c.SetBox("QL120", box("QL110") + box("QL115"));
    c.SetBox("QL125", box("QL105") - box("QL120"));
    if (box("QL50") - box("QL65") > 0) {
        c.SetBox("QL129", box("QL8"));
        c.SetBox("QL130", box("QL65"));
        c.SetBox("QL140", box("QL130") - box("QL135"));
        c.SetBox("QL145", box("QL80"));
        c.SetBox("QL150", box("QL140") + box("QL145"));
    }
    c.SetBox("QL155", box("QL135"));
    c.SetBox("QL160", box("QL100"));
    c.SetBox("QL165", box("QL155") + box("QL160"));
    c.SetBox("QL180", box("QL170") - box("QL175"));
    c.SetBox("QL195", box("QL45"));
    c.SetBox("QL200", box("QL110"));
    c.SetBox("QL205", box("QL175"));
    c.SetBox("QL210", box("QL195") + box("QL200") + box("QL205") + box("QL194"));
    c.SetBox("Q530", box("QL210"));
    c.SetBox("Q880", box("QL125"));
}

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

void CalcPages16(CBaseCalc& calc) {
    pageA(calc);
    pageB(calc);
    pageC(calc);
    pageE(calc);
    pageF(calc);
    pageG(calc);
    pageL(calc);
}

void FieldChecks16(CBaseCalc& calc) {
    static const char* const kDateMessage = "Date must be dd/mm/yyyy - must have slashes typed in.";
    static const char* const kAddressMessage = "Maximum 35 chars";
    calc.SetBox("Q1000", calc.AddError(0, "from", calc.BoxDateOk("from"), kDateMessage));
    calc.SetBox("Q1000", calc.AddError(0, "to", calc.BoxDateOk("to"), kDateMessage));
    calc.SetBox("Q1000", calc.AddError(0, "Address1", calc.BoxLength("Address1") <= 35, kAddressMessage));
    calc.SetBox("Q1000", calc.AddError(0, "Address2", calc.BoxLength("Address2") <= 35, kAddressMessage));
}
