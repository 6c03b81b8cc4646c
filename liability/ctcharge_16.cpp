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
    const bool currentLaw = UnderCurrentLaw(box);
    run.BasicProfit = myatof(box[prefix + "Q315"]);
    // Current law tests augmented profits against the limits: taxable total
    // profits and the exempt distributions of Q620.
    run.OtherProfit = myatof(box[prefix + (currentLaw ? "Q620" : "Q38")]);
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
    if (currentLaw) {
        root.AddChild("Rates", kCurrentLawWord);
        run.lawLine = kCurrentLawLine;
    }
    DoLogF("Ct600_16 prefix=%s profit=%f", prefix.c_str(), run.Profit);

    const CString tempFolder = GetTempDir();
    ReplaceFile report(TempFilePath(tempFolder, "calc.htm"));
    if (run.Profit <= 0) {
        for (const char* key : {"Q330", "Q335", "Q340", "Q345"}) out[key] = "";
        if (currentLaw)
            for (const char* key : {"Q329", "Q435"}) out[key] = "";
        report << run.lawLine.str() << kNoProfitLine << std::endl;
        SaveChargeTree(root, out, tempFolder);
        return;
    }

    run.days = DaysBetween(run.from, run.to) + 1;
    CheckPeriodLength(run, "Error: return period cannot exceed 12 months");
    if (!currentLaw) {
        // The form of the default ladder has no boxes for associated companies.
        ChargeYears(run, &root, kYearRules16, 0, 0);
        SettleTotals(run, &root);
        run.ncd = myatof(box[prefix + "Q67"]);
        MatchDistributions(run, root);
    } else {
        YearRules rules = kYearRules16;
        rules.ladder = RateLadder::CurrentLaw;
        ChargeYears(run, &root, rules, AssociatedCompaniesInYear(box, prefix, false),
                    AssociatedCompaniesInYear(box, prefix, true));
        // The years of the current-law table add their shares of the relief
        // as they stand, and the sum goes to the penny below once: with the
        // exact limits that gives HMRC's own figures (CTM03956: 425.00, where
        // two shares each rounded down lose a penny). A period that ends
        // before the table keeps the default's rounding, share by share.
        if (CurrentLawTableYear(FinancialYear(run.to))) run.relief = roundpennydown(run.relief);
        // Distributions are no longer matched to profits (that ended in 2006).
        SettleTotals(run, &root);
    }
    root.AddChild("Total", fmt2(run.chargeable));

    out["Q70"] = fmt2(run.chargeable);
    // The relief reaches Q70 but not the form's rows, which the calculator
    // works as amount times rate; the second generation's boxes stay empty.
    for (const char* key : {"Q42", "Q435", "Q66", "Q68", "Q69"}) out[key] = "";
    if (currentLaw) {
        // The current form carries the relief in Q435, so Q440 = Q430 - Q435
        // is the tax after it, and ticks Q329 for a company that paid the
        // small profits rate or had relief in either year.
        if (run.relief > 0) out["Q435"] = fmt2(run.relief);
        const auto atSmallProfitsRate = [](bool charged, int fy, double rate) {
            return charged && SmallProfitsRate(fy) > 0 && rate == SmallProfitsRate(fy);
        };
        const bool smallProfits =
            atSmallProfitsRate(run.year1, run.FY1, run.rate1) || atSmallProfitsRate(run.year2, run.FY2, run.rate2);
        out["Q329"] = smallProfits || run.relief > 0 ? "yes" : "";
    }
    DoLogF("doing ct comp- %d", run.FY1);
    SetRateLines(run, {"Q330", "Q335", "Q340", "Q380", "Q385", "Q390"}, out);

    report << ChargeReportHtml(run).str();
    SaveChargeTree(root, out, tempFolder);
}
