// The pieces the liability drivers are assembled from. Each generation's
// driver reads its own box keys and writes its own result keys; the working in
// between (years, totals, distributions, report and tree) is shared.
#pragma once


#include "common/outfile.h"
#include "liability/liability.h"

// Rate on non-corporate distributions matched to profits.
inline constexpr double kNcdRate = 19.0;

// The working of one run of a driver.
struct ChargeRun {
    // read from the box map
    double BasicProfit = 0;  // apportioned and taxed
    double OtherProfit = 0;
    double Profit = 0;       // tested against the limits
    CString from, to;
    int type = kOrdinaryCompany;
    double ncd = 0;          // non-corporate distributions

    // the financial years
    int days = 0;
    bool year1 = false, year2 = false;  // which of the two years were charged
    int FY1 = 0, FY2 = 0;
    double portion1 = 0, portion2 = 0;
    double rate1 = 0, rate2 = 0;
    double tax1 = 0, tax2 = 0;  // as read back from the year's two-decimal Tax
    double relief = 0;

    // totals
    double gross = 0, net = 0, chargeable = 0;
    double effective = 0;
    bool effectiveKnown = false;  // false when there is no profit to divide by
    bool straddle = false;        // FY1 2005 and FY2 2006

    // the matching of distributions
    bool matched = false;           // the matching ran
    bool distributionsTaxed = false;  // and the distributions were above 0.01
    CString effectiveWorking;
    double ncdTax = 0, remaining = 0, nonNcdTax = 0;

    // report texts built up on the way
    CString lawLine;  // under current law, the line that says so
    CString periodMessage;
    CString yearBlock1, yearBlock2, taxRows, reliefRows;
};

// The whole of calc.htm where there is no profit, less its line end. The
// first generation's report has its own wording.
inline constexpr const char* kNoProfitLine = "x no profit";
inline constexpr const char* kNoProfitLine02 = "no profit";
// Heads calc.htm when the return is charged under current law.
inline constexpr const char* kCurrentLawLine =
    "<p><b>Rates: current law</b> (from FY2023 small profits rate, marginal relief and associated "
    "companies: CTA 2010 ss18A-18N)</p>";

// Result keys of the rate lines of the form: financial year, portion and rate
// of each of the two years.
struct RateLineKeys {
    const char *year1, *portion1, *rate1;
    const char *year2, *portion2, *rate2;
};

// atoi without its undefined overflow.
int ToInt(const char* text);

// Company type from co_type, forced to the standard rate by forcestandardrate;
// label receives the report's name for the type (from co_type alone).
int CompanyType(CMapStringToString& boxes, CString& label);

// name, year and ref of the return.
void AddReturnDetails(CXMLVar& root, CMapStringToString& boxes);
// Type, BasicProfit, OtherProfit and Profit.
void AddProfitFigures(CXMLVar& root, const char* typeLabel, const ChargeRun& run);

// A file in the temporary folder, opened for output and emptied. A file that
// can't be opened takes no output and stops nothing.
CString TempFilePath(const char* fileName);
// The same within a temporary folder already found: a run finds it once.
CString TempFilePath(const CString& folder, const char* fileName);

// The earlier generations go on without a date. A text that is no day of the
// calendar counts as missing, and days is the length of what is known of the
// period (see the definition).
void KnownPeriod(ChargeRun& run);

// A period above 366 days is shown to the user and put in the report; the
// run goes on.
void CheckPeriodLength(ChargeRun& run, const char* message);

// The first year (when from is given) and the second (when to is given and
// falls in another financial year), with their tax rows. Year nodes go to
// root, or are dropped when root is null or the rules keep no tree.
void ChargeYears(ChargeRun& run, CXMLVar* root, const YearRules& rules, int associates1, int associates2);

// Gross tax, relief, net and the effective rate; TotalBeforeMRR to
// TotalBeforeNCD when there is a tree. The tax chargeable starts as net.
void SettleTotals(ChargeRun& run, CXMLVar* root);

// The rate lines: the first year's, and the second's or three empty texts.
void SetRateLines(const ChargeRun& run, const RateLineKeys& keys, CMapStringToString& results);

// Matching of non-corporate distributions, when the effective rate is below
// the distribution rate and there are distributions. Can raise the tax.
void MatchDistributions(ChargeRun& run, CXMLVar& root);

// calc.htm for a run with profit.
CString ChargeReportHtml(const ChargeRun& run);

// The tree as text under "xml/CT/CTchargeable" in results, and as ctcharge.xml
// in the temporary folder.
void SaveChargeTree(CXMLVar& root, CMapStringToString& results, const CString& tempFolder);
