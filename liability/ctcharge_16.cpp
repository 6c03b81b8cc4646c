// The third-generation liability driver: from Q315 and the return period to
// the tax chargeable, the form's rate lines and the worked report.
#include <initializer_list>

#include "common/library.h"
#include "liability/charge_parts.h"

void CTcharge_16(CMapStringToString* boxes, CString prefix, CMapStringToString* results) {
    if (!boxes) return;
    CMapStringToString localResults;
    CMapStringToString& out = results ? *results : localResults;
    CMapStringToString& box = *boxes;

    CXMLVar root("CTchargeable");
    ChargeRun run;
    run.BasicProfit = myatof(box[prefix + "Q315"]);
    run.OtherProfit = myatof(box[prefix + "Q38"]);
    run.Profit = run.OtherProfit + run.BasicProfit;
    run.from = box["from"];
    run.to = box["to"];
    if (run.from.IsEmpty() || run.to.IsEmpty() || before(run.to, run.from)) return;
    // A date that is no day of the calendar counts as missing: the field
    // checks of the return report it, and no tax is worked on a guess.
    if (!IsCalendarDate(run.from) || !IsCalendarDate(run.to)) return;

    AddReturnDetails(root, box);
    CString typeLabel;
    run.type = CompanyType(box, typeLabel);
    AddProfitFigures(root, typeLabel, run);
    DoLogF("Ct600_16 prefix=%s profit=%f", prefix.c_str(), run.Profit);

    ReplaceFile report(TempFilePath("calc.htm"));
    if (run.Profit <= 0) {
        for (const char* key : {"Q330", "Q335", "Q340", "Q345"}) out[key] = "";
        report << kNoProfitLine << std::endl;
        SaveChargeTree(root, out);
        return;
    }

    run.days = DaysBetween(run.from, run.to) + 1;
    CheckPeriodLength(run, "Error: return period cannot exceed 12 months");
    // The third generation has no boxes for associated companies.
    ChargeYears(run, &root, kYearRules16, 0, 0);
    SettleTotals(run, &root);
    run.ncd = myatof(box[prefix + "Q67"]);
    MatchDistributions(run, root);
    root.AddChild("Total", fmt2(run.chargeable));

    out["Q70"] = fmt2(run.chargeable);
    // The relief reaches Q70 but not the form's rows, which the calculator
    // works as amount times rate; the second generation's boxes stay empty.
    for (const char* key : {"Q42", "Q435", "Q66", "Q68", "Q69"}) out[key] = "";
    DoLogF("doing ct comp- %d", run.FY1);
    SetRateLines(run, {"Q330", "Q335", "Q340", "Q380", "Q385", "Q390"}, out);

    report << ChargeReportHtml(run).str();
    SaveChargeTree(root, out);
}
