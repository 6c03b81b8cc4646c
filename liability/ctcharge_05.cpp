// The second-generation liability driver. It is the third generation's
// driver over the older boxes; what sets it apart is marked "Differs".
#include <initializer_list>

#include "common/library.h"
#include "liability/charge_parts.h"

namespace {

// Rates at which the form's small company box is ticked: from 19 up to, not
// including, 26. The main rates of 2012 on fall in the band too; the box is
// cleared again for companies charged at a flat rate.
struct RateBand {
    double from, below;
};
constexpr RateBand kSmallCompanyTick{19.0, 26.0};

bool ticks(double rate) { return rate >= kSmallCompanyTick.from && rate < kSmallCompanyTick.below; }

}  // namespace

void CTcharge_05(CMapStringToString* boxes, CString prefix, CMapStringToString* results) {
    if (!boxes) return;
    CMapStringToString localResults;
    CMapStringToString& out = results ? *results : localResults;
    CMapStringToString& box = *boxes;

    CXMLVar root("CTchargeable");
    ChargeRun run;
    // Differs: the profit is in Q37, and the associated companies are read,
    // one number for both years in Q39 or one a year in Q40 and Q41.
    run.BasicProfit = myatof(box[prefix + "Q37"]);
    run.OtherProfit = myatof(box[prefix + "Q38"]);
    run.Profit = run.OtherProfit + run.BasicProfit;
    CString associates1 = box[prefix + "Q40"], associates2 = box[prefix + "Q41"];
    const CString bothYears = box[prefix + "Q39"];
    if (!bothYears.IsEmpty()) associates1 = associates2 = bothYears;
    run.from = box["from"];
    run.to = box["to"];
    // Differs: no silent end on a missing date; see KnownPeriod below.

    AddReturnDetails(root, box);
    CString typeLabel;
    run.type = CompanyType(box, typeLabel);
    AddProfitFigures(root, typeLabel, run);
    DoLogF("Ct600_05 prefix=%s profit=%f", prefix.c_str(), run.Profit);

    const CString tempFolder = GetTempDir();
    ReplaceFile report(TempFilePath(tempFolder, "calc.htm"));
    if (run.Profit <= 0) {
        for (const char* key : {"Q43", "Q44", "Q45", "Q46"}) out[key] = "";
        report << kNoProfitLine << std::endl;
        SaveChargeTree(root, out, tempFolder);
        return;
    }
    DoLogF("doing ct comp");

    KnownPeriod(run);
    CheckPeriodLength(run, "Error: return period cannot exceed 12 months");
    ChargeYears(run, &root, kYearRules05, ToInt(associates1), ToInt(associates2));
    // Differs: the form's small company box follows the rate of either year.
    int scr = 0;
    if ((run.year1 && ticks(run.rate1)) || (run.year2 && ticks(run.rate2))) scr = 1;

    SettleTotals(run, &root);
    run.ncd = myatof(box[prefix + "Q67"]);
    MatchDistributions(run, root);
    root.AddChild("Total", fmt2(run.chargeable));
    // Differs: no Q70 here; the calculator derives it from its own rows.

    for (const char* key : {"Q42", "Q64", "Q66", "Q68", "Q69"}) out[key] = "";
    SetRateLines(run, {"Q43", "Q44", "Q45", "Q53", "Q54", "Q55"}, out);

    // Differs: the boxes of the small companies rate, the relief and the
    // distributions are filled.
    if (scr) {
        DoLogF("scr=%d ctcharge=%f setting Q42 to y", scr, run.chargeable);
        out["Q42"] = "y";
    }
    if (run.type == kOpenEndedInvestmentTrust || run.type == kStandardRateCompany) out["Q42"] = "";
    if (run.relief != 0) {
        out["Q64"] = fmt2(run.relief);
        DoLogF("marginal=%f setting Q42 to y", run.relief);
        out["Q42"] = "y";
    }
    if (run.matched) {
        out["Q66"] = run.effective == 0 ? CString("zero") : fmt2(run.effective);
        out["Q68"] = fmt2(run.ncdTax);
        out["Q69"] = fmt2(run.nonNcdTax);  // 0.00 when the distributions were too small to match
    }

    report << ChargeReportHtml(run).str();
    SaveChargeTree(root, out, tempFolder);
}
