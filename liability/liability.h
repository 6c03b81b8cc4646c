// The liability engine: corporation tax rates and limits by financial year,
// the split of a return period at 31 March, marginal relief, and the drivers
// of the three generations that turn the profit boxes into the tax chargeable.
#pragma once

#include "common/current_law.h"
#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"
#include "platform/ctime.h"

// ---- company types, as CTrate takes them
inline constexpr int kOrdinaryCompany = 0;
inline constexpr int kOpenEndedInvestmentTrust = 1;  // co_type 1: flat 20%
inline constexpr int kStandardRateCompany = 2;       // co_type 2, or forcestandardrate
inline constexpr int kStandardRateCompanyToo = 3;    // charged as type 2

// ---- rates and thresholds

// The rate of corporation tax (a percentage) for one financial year. Works out
// the starting rate relief (msrr) and small companies relief (mscr) for the
// whole period where a band holds; the caller zeroes both first. text and
// margintext receive the report wording of the rate and of the relief; node,
// when given, receives the Reductions, MSRR and MSCR elements of the report.
// ladder chooses the law; under current law years from FY2017 on are charged
// by the current-law table, each year's text naming its source, and the
// limits are held exactly (shown to the penny) where the default ladder
// truncates them to the pound.
double CTrate(int year, double Profit, double BasicProfit, double& msrr, double& mscr, CString& text,
              CString& margintext, int associates, int days, CXMLVar* node, int type,
              RateLadder ladder = RateLadder::Default);

// The small profits rate of the financial year under current law; 0 for a
// year that has none (before FY2023, when all profits paid one rate).
double SmallProfitsRate(int year);

// True when current law charges the financial year by its own table (FY2017
// on); the years before it charges as the default ladder does.
bool CurrentLawTableYear(int year);

// Scales a limit by numerator/denominator, truncating, and reports the change.
// A limit of 0 is left alone without a word; a denominator of 0 counts as 1.
void ReduceThreshold(int& limit, int numerator, int denominator, CString& text, CXMLVar* node = nullptr);

// A new element holding Numerator, Denominator and the whole Percent.
CXMLVar* FractionNode(const char* name, int numerator, int denominator);

// ---- dates

// The calendar year in which the financial year of the date begins (1 April).
// 0 for a text that is no date.
int FinancialYear(const char* date);
// Whole days from a to b, robust against an hour either way.
int DaySpan(const CTime& a, const CTime& b);
// DaySpan of two text dates; the ends are not both counted.
int DaysBetween(const char* from, const char* to);
// A real day of the calendar, years 1 to 9999, in a form ParseDate reads.
bool IsCalendarDate(const char* date);

// ---- one financial year's slice of a return period

// Where one generation's slice differs from the third generation's. The three
// generations side by side are the table below the struct.
struct YearRules {
    // A period of 0 days is apportioned over 1 day: the second-generation
    // driver goes on with a missing date, and the denominator must not be 0.
    bool zeroDaysAsOne;
    // The year's element of the report tree, and CTrate's nodes in it.
    bool keepsTree;
    // The second year takes what the first left, so the portions add up to
    // the profit to the penny; otherwise each year is its own whole-pound share.
    bool secondTakesRemainder;
    // The year's tax to the nearest penny; otherwise rate x portion as it stands.
    bool taxToThePenny;
    // The year's share of marginal relief counted to the penny below;
    // otherwise added as it stands.
    bool reliefShareToPennyBelow;
    // Tags around the title of the relief lines in the year's report block.
    const char* reliefTitleOpen;
    const char* reliefTitleClose;
    // The law the year is charged by; the drivers set it for the return.
    RateLadder ladder = RateLadder::Default;
};
//                                      0 days  tree   remainder  tax 1p  relief 1p  relief title
inline constexpr YearRules kYearRules16{false,  true,  true,      true,   true,      "<b>", "</b><br>"};
inline constexpr YearRules kYearRules05{true,   true,  true,      true,   true,      "<b>", "</b><br>"};
inline constexpr YearRules kYearRules02{false,  false, false,     false,  false,     "<B>", "</B><BR>"};

// The slice of the first (first non-zero) or second financial year of the
// period from..to: days, share of BasicProfit, rate, tax and relief share.
// html and reliefrows are appended to, relief is added to. Returns the year's
// report element FY1 or FY2, which the caller adopts with AddChild, or null
// where the rules keep no tree. tax, when given, receives the year's tax.
CXMLVar* CTyear(const YearRules& rules, const char* from, const char* to, int& fy, int& fydays, int& totaldays,
                int first, CString& html, double Profit, double& portion, double& rate, double BasicProfit,
                double& relief, int associates, int days, CString& reliefrows, double fy1portion, int type,
                double* tax = nullptr);

CXMLVar* CTyear_16(const char* from, const char* to, int& fy, int& fydays, int& totaldays, int first, CString& html,
                   double Profit, double& portion, double& rate, double BasicProfit, double& relief, int associates,
                   int days, CString& reliefrows, double fy1portion, int type);
CXMLVar* CTyear_05(const char* from, const char* to, int& fy, int& fydays, int& totaldays, int first, CString& html,
                   double Profit, double& portion, double& rate, double BasicProfit, double& relief, int associates,
                   int days, CString& reliefrows, double fy1portion, int type);

// The first generation's associated companies: financial year (as text) to
// their number (as text). A year with no entry has none.
int AssociatesInYear(const CMapStringToString& associates, int fy);

// First generation: no tree, no remainder rule, no rounding of tax or relief;
// the associated companies come by financial year. Returns the year's tax.
double CTyear_02(const char* from, const char* to, int& fy, int& fydays, int& totaldays, int first, CString& html,
                 double Profit, double& portion, double& rate, double BasicProfit, double& relief,
                 const CMapStringToString& associates, int days, CString& reliefrows, int type);

// ---- drivers

// Third generation: reads Q315, Q38, Q67, from, to, co_type and
// forcestandardrate from the box map (keys under prefix where they are
// boxes), leaves Q330..Q390, Q70, the emptied boxes and
// "xml/CT/CTchargeable" in results, and writes calc.htm and ctcharge.xml to
// the temporary folder.
void CTcharge_16(CMapStringToString* boxes, CString prefix, CMapStringToString* results);

// Second generation: as CTcharge_16 over the older boxes (Q37, Q38, the
// associated companies in Q39 to Q41, Q67), leaving Q43..Q55, the small
// company tick Q42, relief Q64 and the distribution boxes Q66, Q68, Q69 in
// results, with the same report and tree.
void CTcharge_05(CMapStringToString* boxes, CString prefix, CMapStringToString* results);

// First generation: Q33 and Q34, the period in From/To (or from/to), the
// associated companies by year in Q35..Q38; leaves Q39..Q51 and relief Q60,
// and writes calc.htm only.
void CTcharge_02(CMapStringToString* boxes, CString prefix, CMapStringToString* results);
