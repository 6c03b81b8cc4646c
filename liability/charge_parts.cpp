#include "liability/charge_parts.h"

#include <climits>
#include <cstdlib>

#include "common/library.h"
#include "platform/message_box.h"

namespace {

constexpr const char* kEqualsRow = "<tr><td/><td align=right>=====</td></tr>";

double taxOf(const CXMLVar* year) {
    const CXMLVar* tax = year ? year->FindChild("Tax") : nullptr;
    return tax ? std::strtod(tax->value, nullptr) : 0.0;
}

void amountRow(CString& out, const CString& label, double amount) {
    out += "<tr><td>";
    out += label;
    out += "</td><td align=right>";
    out += fmt2(amount);
    out += "</td></tr>";
}

}  // namespace

int ToInt(const char* text) {
    if (!text) return 0;
    const long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

int AssociatesInYear(const CMapStringToString& associates, int fy) {
    const CString* count = associates.PLookup(fmt0(fy));
    return count ? ToInt(*count) : 0;
}

int CompanyType(CMapStringToString& boxes, CString& label) {
    int type = ToInt(boxes["co_type"]);
    label = type == kOpenEndedInvestmentTrust ? "Open Ended Investment Trust" : "Corporation";
    const CString force = boxes["forcestandardrate"];
    DoLogF("s2=%s", force.c_str());
    if (force == "T" || IsYes(force)) {
        type = kStandardRateCompany;
        DoLogF("forcing cotype=%d", type);
    }
    return type;
}

void AddReturnDetails(CXMLVar& root, CMapStringToString& boxes) {
    root.AddChild("name", boxes["name"]);
    root.AddChild("year", boxes["year"]);
    root.AddChild("ref", boxes["tax_reference"]);
}

void AddProfitFigures(CXMLVar& root, const char* typeLabel, const ChargeRun& run) {
    root.AddChild("Type", typeLabel);
    root.AddChild("BasicProfit", fmt2(run.BasicProfit));
    root.AddChild("OtherProfit", fmt2(run.OtherProfit));
    root.AddChild("Profit", fmt2(run.Profit));
}

CString TempFilePath(const char* fileName) { return TempFilePath(GetTempDir(), fileName); }
CString TempFilePath(const CString& folder, const char* fileName) { return NativePath(folder + "\\" + fileName); }

// A missing date is taken as the start or the end of the financial year of
// the other date: the profit is then charged in that one year, with the limits
// scaled to the days known. A practitioner would rather see that than the
// limits scaled by a day count from year 0. With neither date no year is
// charged, and 0 days are left for the year function to guard.
void KnownPeriod(ChargeRun& run) {
    if (!IsCalendarDate(run.from)) run.from.Empty();
    if (!IsCalendarDate(run.to)) run.to.Empty();
    if (!run.from.IsEmpty() && !run.to.IsEmpty())
        run.days = DaysBetween(run.from, run.to) + 1;
    else if (!run.to.IsEmpty())
        run.days = DaysBetween(FormatString("01/04/%d", FinancialYear(run.to)), run.to) + 1;
    else if (!run.from.IsEmpty())
        run.days = DaysBetween(run.from, FormatString("31/03/%d", FinancialYear(run.from) + 1)) + 1;
    else
        run.days = 0;
}

void CheckPeriodLength(ChargeRun& run, const char* message) {
    if (run.days <= 366) return;
    // A host without a user installs a message sink; either way the run goes on.
    AfxMessageBox(message, MB_OK);
    run.periodMessage = message;
}

void ChargeYears(ChargeRun& run, CXMLVar* root, const YearRules& rules, int associates1, int associates2) {
    int fydays = 0, totaldays = 0;
    // The tax that is summed is the year's two-decimal Tax where there is a
    // tree, and the year function's own figure where there is none.
    auto settle = [root](CXMLVar* year, double tax) {
        if (!year) return tax;
        tax = taxOf(year);
        if (root)
            root->AddChild(year);
        else
            delete year;
        return tax;
    };
    if (!run.from.IsEmpty()) {
        double tax = 0;
        CXMLVar* year = CTyear(rules, run.from, run.to, run.FY1, fydays, totaldays, 1, run.yearBlock1, run.Profit,
                               run.portion1, run.rate1, run.BasicProfit, run.relief, associates1, run.days,
                               run.reliefRows, 0.0, run.type, &tax);
        run.tax1 = settle(year, tax);
        run.year1 = true;
        run.taxRows += "<tr><td>" + fmt(run.FY1) + "</td><td align=right>" + fmt2(run.tax1) + "</td></tr>";
    }
    if (!run.to.IsEmpty() && run.FY1 != FinancialYear(run.to)) {
        double tax = 0;
        CXMLVar* year = CTyear(rules, run.from, run.to, run.FY2, fydays, totaldays, 0, run.yearBlock2, run.Profit,
                               run.portion2, run.rate2, run.BasicProfit, run.relief, associates2, run.days,
                               run.reliefRows, run.portion1, run.type, &tax);
        run.tax2 = settle(year, tax);
        run.year2 = true;
        run.taxRows += "<tr><td>" + fmt(run.FY2) + "</td><td align=right>" + fmt2(run.tax2) + "</td></tr>";
    }
}

void SettleTotals(ChargeRun& run, CXMLVar* root) {
    run.gross = run.tax2 + run.tax1;
    run.net = run.gross - run.relief;
    run.straddle = run.FY1 == 2005 && run.FY2 == 2006;
    // Across 1 April 2006 the rate is worked on the first year alone, with the
    // whole relief set against it, to the nearest penny.
    const double divisor = run.straddle ? run.portion1 : run.BasicProfit;
    // With nothing apportioned there is no rate to work out, and so no
    // profit for distributions to be matched to.
    run.effectiveKnown = divisor != 0;
    if (!run.effectiveKnown)
        run.effective = 0;
    else if (run.straddle)
        run.effective = roundpenny((run.tax1 - run.relief) * 100 / divisor);
    else
        run.effective = roundpennydown(run.net * 100 / divisor);
    if (root) {
        root->AddChild("TotalBeforeMRR", fmt2(run.gross));
        root->AddChild("TotalMRR", fmt2(run.relief));
        root->AddChild("TotalAfterMRR", fmt2(run.net));
        root->AddChild("TotalBeforeNCD", fmt2(run.net));
    }
    run.chargeable = run.net;
}

void SetRateLines(const ChargeRun& run, const RateLineKeys& keys, CMapStringToString& results) {
    results[keys.year1] = fmt0(run.FY1);
    results[keys.portion1] = fmt0(run.portion1);
    results[keys.rate1] = fmt0(run.rate1);
    results[keys.year2] = run.year2 ? fmt0(run.FY2) : CString();
    results[keys.portion2] = run.year2 ? fmt0(run.portion2) : CString();
    results[keys.rate2] = run.year2 ? fmt0(run.rate2) : CString();
}

void MatchDistributions(ChargeRun& run, CXMLVar& root) {
    if (!run.effectiveKnown || !(run.effective < kNcdRate) || !(run.ncd > 0)) return;
    run.matched = true;
    CXMLVar* ncds = root.AddChild(new CXMLVar("NCDs"));
    if (run.straddle)
        run.effectiveWorking.Format("(%.2f / %.2f)", run.tax1 - run.relief, run.portion1);
    else
        run.effectiveWorking.Format("(%.2f / %.2f)", run.net, run.BasicProfit);
    run.ncdTax = roundpenny(run.ncd * 0.19);
    run.remaining = (run.straddle ? run.portion1 : run.BasicProfit) - run.ncd;
    if (run.ncd <= 0.01) return;

    run.distributionsTaxed = true;
    // Distributions above the profit leave a negative remainder, taxed as such.
    run.nonNcdTax = roundpenny(run.effective * run.remaining * 0.01);
    ncds->AddChild("ncd", fmt2(run.ncd));
    ncds->AddChild("ncdrate", fmt2(kNcdRate));
    ncds->AddChild("effectiverate", fmt2(run.effective));
    ncds->AddChild("ncdtax", fmt2(run.ncdTax));
    if (run.straddle) run.chargeable = run.ncdTax + run.nonNcdTax + run.tax2;
    ncds->AddChild("nonncd", fmt2(run.remaining));
    ncds->AddChild("nonncd_tax", fmt2(run.nonNcdTax));
    // Outside the straddle the matching can raise the tax, never lower it.
    if (!run.straddle && run.ncdTax + run.nonNcdTax > run.chargeable) run.chargeable = run.ncdTax + run.nonNcdTax;
}

CString ChargeReportHtml(const ChargeRun& run) {
    CString out;
    if (!run.periodMessage.IsEmpty()) out += "<H2>" + run.periodMessage + "</H2>";
    out += "<H1>Corporation tax chargeable</H1>";
    out += run.lawLine;
    out += run.yearBlock1;
    out += "<BR/>";
    out += run.yearBlock2;
    out += "<BR/>";
    out += "<H2>Totals</H2><table><tr><td><b>Tax</b></td></tr>";
    out += run.taxRows;
    out += kEqualsRow;
    out += "<tr><td/><td align=right>" + fmt2(run.gross) + "</td></tr>";
    if (run.relief != 0) {
        out += "<tr><td><b>Marginal relief</b></td></tr>";
        out += run.reliefRows;
        out += kEqualsRow;
        out += "<tr><td/><td align=right>" + fmt2(run.relief) + "</td></tr>";
    }
    if (run.matched) amountRow(out, "effective rate " + run.effectiveWorking, run.effective);
    if (run.distributionsTaxed) {
        amountRow(out,
                  FormatString("tax on non-corporate distributions matched to profits (%.2f @ %.2f%%)", run.ncd,
                               kNcdRate),
                  run.ncdTax);
        amountRow(out, FormatString("tax on remaining profits (%.5f @ %.5f%%)", run.remaining, run.effective),
                  run.nonNcdTax);
    }
    out += "<tr><td/><td/></tr>";
    out += "<tr><td><b>Tax Chargeable</b></td><td align=right>" + fmt2(run.chargeable) + "</td></tr>";
    out += "</table>";
    return out;
}

void SaveChargeTree(CXMLVar& root, CMapStringToString& results, const CString& tempFolder) {
    CString text;
    root.Save(text, 1);
    results["xml/CT/CTchargeable"] = text;
    // The file is what the suite shows, so it names its style sheet; the text
    // in the results is data and goes without. The two differ only in the
    // style sheet's line after the declaration, so the tree is written once:
    // an empty node saves as its declaration and style sheet line alone.
    CXMLVar styled;
    styled.AddStyle(GetFormatsDir() + "\\ctcharge.xsl");
    CString head;
    styled.Save(head, 1);
    CString declaration;
    CXMLVar().Save(declaration, 1);
    ReplaceFile file(TempFilePath(tempFolder, "ctcharge.xml"));
    file << head.view() << text.view().substr(static_cast<std::size_t>(declaration.GetLength()));
}
