// The first-generation liability driver: the third generation's years and
// totals without company type, distributions or tree, over the oldest boxes.
#include <initializer_list>

#include "common/library.h"
#include "liability/charge_parts.h"

namespace {

// Two pairs of boxes: a financial year and its number of associated companies.
struct AssociatesPair {
    const char* year;
    const char* count;
};
constexpr AssociatesPair kAssociatesPairs[] = {{"Q35", "Q36"}, {"Q37", "Q38"}};

}  // namespace

void CTcharge_02(CMapStringToString* boxes, CString prefix, CMapStringToString* results) {
    if (!boxes) return;
    CMapStringToString localResults;
    CMapStringToString& out = results ? *results : localResults;
    CMapStringToString& box = *boxes;

    ChargeRun run;
    run.BasicProfit = myatof(box[prefix + "Q33"]);
    run.OtherProfit = myatof(box[prefix + "Q34"]);
    run.Profit = run.OtherProfit + run.BasicProfit;
    // The oldest forms name the period with capitals; the later names serve
    // where those are empty.
    run.from = box["From"];
    if (run.from.IsEmpty()) run.from = box["from"];
    run.to = box["To"];
    if (run.to.IsEmpty()) run.to = box["to"];

    CMapStringToString associates;
    for (const AssociatesPair& pair : kAssociatesPairs) {
        const CString year = box[prefix + pair.year];
        if (!year.IsEmpty()) associates[year] = box[prefix + pair.count];
    }

    ReplaceFile report(TempFilePath("calc.htm"));
    if (run.Profit <= 0) {
        // Q41 and Q51, the rates, keep what they held.
        for (const char* key : {"Q39", "Q40", "Q49", "Q50"}) out[key] = "";
        report << kNoProfitLine02 << std::endl;
        return;
    }

    KnownPeriod(run);
    CheckPeriodLength(run, "Error: accounting period cannot exceed 12 months");
    ChargeYears(run, nullptr, kYearRules02, AssociatesInYear(associates, FinancialYear(run.from)),
                AssociatesInYear(associates, FinancialYear(run.to)));
    SettleTotals(run, nullptr);
    out["Q60"] = fmt2(run.relief);
    report << ChargeReportHtml(run).str();
    SetRateLines(run, {"Q39", "Q40", "Q41", "Q49", "Q50", "Q51"}, out);
}
