// Financial years and the slice of a return period that falls in one of them.
#include <climits>
#include <cstdint>
#include <memory>

#include "common/library.h"
#include "liability/liability.h"

namespace {

constexpr const char* kDayFormat = "%d/%m/%Y";

// Years this far out are garbage anyway; the bound keeps year arithmetic
// (year - 1, fy + 1) clear of overflow.
constexpr int kYearBound = 1000000;

int clampToInt(std::int64_t value) {
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// ParseDate with the year widened, as AtoT reads a date. A text that is no
// date gives zeros, and so some day long ago: the caller gets figures, never
// a crash, and the return's own date checks report the text.
bool splitDate(const char* text, int& year, int& month, int& day) {
    year = month = day = 0;
    if (!text || !ParseDate(text, year, month, day)) {
        year = month = day = 0;
        return false;
    }
    year = yyyy(year);
    if (year > kYearBound) year = kYearBound;
    if (year < -kYearBound) year = -kYearBound;
    return true;
}

CTime noon(int year, int month, int day) { return CTime(year, month, day, 12, 0, 0, -1); }

}  // namespace

int FinancialYear(const char* date) {
    int year, month, day;
    if (!splitDate(date, year, month, day)) return 0;
    return month < 4 ? year - 1 : year;
}

int DaySpan(const CTime& a, const CTime& b) {
    // Whole hours, then ten hours' slack, so a clock change between two noons
    // still gives whole days.
    const std::int64_t hours = (b - a).GetTotalSeconds() / 3600;
    return clampToInt((hours + 10) / 24);
}

int DaysBetween(const char* from, const char* to) {
    int y1, m1, d1, y2, m2, d2;
    splitDate(from, y1, m1, d1);
    splitDate(to, y2, m2, d2);
    return DaySpan(noon(y1, m1, d1), noon(y2, m2, d2));
}

bool IsCalendarDate(const char* date) {
    int year, month, day;
    if (!splitDate(date, year, month, day)) return false;
    if (year < 1 || year > 9999 || month < 1 || month > 12 || day < 1) return false;
    // The day must survive a round trip through the time line: 31/02 doesn't.
    const CTime t = noon(year, month, day);
    return t.GetDay() == day && t.GetMonth() == month;
}

CXMLVar* CTyear(const YearRules& rules, const char* from, const char* to, int& fy, int& fydays, int& totaldays,
                int first, CString& html, double Profit, double& portion, double& rate, double BasicProfit,
                double& relief, int associates, int days, CString& reliefrows, double fy1portion, int type,
                double* tax) {
    int year, month, day;
    splitDate(first ? from : to, year, month, day);

    // The element is built only for the generations that keep a tree; every
    // write to it below goes through this one pointer.
    std::unique_ptr<CXMLVar> node;
    if (rules.keepsTree) {
        node = std::make_unique<CXMLVar>(first ? "FY1" : "FY2");
        node->SetAttr("fy", node->name);
    }
    auto addChild = [&node](const char* name, const CString& value) {
        if (node) node->AddChild(name, value);
    };

    fy = month < 4 ? year - 1 : year;
    const CTime yearStart = noon(fy, 4, 1), yearEnd = noon(fy + 1, 3, 31);
    const CTime dated = noon(year, month, day);

    // The first year runs from the start of the period to 31 March or the
    // period's end; the second from 1 April to the period's end.
    CTime sliceStart = yearStart, sliceEnd = dated;
    if (first) {
        sliceStart = dated;
        sliceEnd = yearEnd;
        if (to && *to) {
            int y, m, d;
            splitDate(to, y, m, d);
            const CTime end = noon(y, m, d);
            if (end < yearEnd) sliceEnd = end;
        }
    }
    addChild("Year", fmt(fy));
    const CString sliceFrom = sliceStart.Format(kDayFormat), sliceTo = sliceEnd.Format(kDayFormat);
    addChild("From", sliceFrom);
    addChild("To", sliceTo);

    fydays = clampToInt(static_cast<std::int64_t>(DaySpan(sliceStart, sliceEnd)) + 1);
    // The report's figures: "%d" is fmt, "%.0f" fmt0 and "%.2f" fmt2, each
    // printf's digits without the printf machinery.
    html += "<H2>Financial year " + fmt(fy) + "</H2>";
    html += sliceFrom;
    html += " - ";
    html += sliceTo;
    html += " = " + fmt(fydays) + " days";
    html += "<BR>";

    // The denominator is the whole period, leap day included, never 365.
    totaldays = (rules.zeroDaysAsOne && days == 0) ? 1 : days;
    if (node) node->AddChild(FractionNode("Fraction", fydays, totaldays));

    // A 0 denominator only reaches here by a direct call, or from a first-
    // generation period that ends the day before it starts.
    const double share = totaldays ? roundnearest(fydays * BasicProfit / totaldays) : 0.0;
    portion = (first || !rules.secondTakesRemainder) ? share : BasicProfit - fy1portion;
    addChild("Portion", fmt2(portion));

    // Limits are tested on the whole period's profit and days, not the slice's.
    double msrr = 0, mscr = 0;
    CString rateText, reliefText;
    rate = CTrate(fy, Profit, BasicProfit, msrr, mscr, rateText, reliefText, associates, days, node.get(), type,
                  rules.ladder);
    addChild("Rate", fmt2(rate));

    html += rateText;
    html += "<B>Chargeable profit</B><BR>";
    html += fmt(fydays) + "/" + fmt(totaldays) + " x " + fmt0(BasicProfit) + " = " + fmt0(portion) + "<BR>";
    const double yearTax = rules.taxToThePenny ? roundpenny(rate * 0.01 * portion) : rate * portion * 0.01;
    html += fmt0(portion) + " @ " + fmt0(rate) + "% = " + fmt2(yearTax) + "<BR>";
    html += "<BR>";

    const double M = mscr + msrr;
    if (M > 0) {
        const double reliefShare = totaldays ? fydays * M / totaldays : 0.0;
        const bool starting = msrr > 0;
        html += rules.reliefTitleOpen;
        // Current law has one relief, no longer named after small companies.
        if (rules.ladder == RateLadder::CurrentLaw) {
            html += "Marginal relief";
        } else {
            html += "Marginal ";
            html += starting ? "Starting Rate" : "Small companies";
            html += " relief";
        }
        html += rules.reliefTitleClose;
        html += reliefText;
        html += fmt(fydays) + "/" + fmt(totaldays) + " x " + fmt2(M) + " = " + fmt2(reliefShare) + "<BR>\n";
        reliefrows += "<tr><td>" + fmt(fy) + "</td><td align=right>" + fmt2(reliefShare) + "</td></tr>";
        // A year of the current-law table adds its share as it stands; the
        // driver takes the sum to the penny below once.
        const bool exact = rules.ladder == RateLadder::CurrentLaw && CurrentLawTableYear(fy);
        relief += rules.reliefShareToPennyBelow && !exact ? roundpennydown(reliefShare) : reliefShare;
        if (node) {
            CXMLVar* band = node->GetChild(starting ? "MSRR" : "MSCR");
            band->AddChild("m1", fmt2(M));
            band->AddChild("m2", fmt2(reliefShare));
            band->AddChild("m3", fmt2(reliefShare));
        }
    }
    addChild("Tax", fmt2(yearTax));
    if (tax) *tax = yearTax;
    return node.release();
}

CXMLVar* CTyear_16(const char* from, const char* to, int& fy, int& fydays, int& totaldays, int first, CString& html,
                   double Profit, double& portion, double& rate, double BasicProfit, double& relief, int associates,
                   int days, CString& reliefrows, double fy1portion, int type) {
    return CTyear(kYearRules16, from, to, fy, fydays, totaldays, first, html, Profit, portion, rate, BasicProfit,
                  relief, associates, days, reliefrows, fy1portion, type);
}

CXMLVar* CTyear_05(const char* from, const char* to, int& fy, int& fydays, int& totaldays, int first, CString& html,
                   double Profit, double& portion, double& rate, double BasicProfit, double& relief, int associates,
                   int days, CString& reliefrows, double fy1portion, int type) {
    return CTyear(kYearRules05, from, to, fy, fydays, totaldays, first, html, Profit, portion, rate, BasicProfit,
                  relief, associates, days, reliefrows, fy1portion, type);
}

double CTyear_02(const char* from, const char* to, int& fy, int& fydays, int& totaldays, int first, CString& html,
                 double Profit, double& portion, double& rate, double BasicProfit, double& relief,
                 const CMapStringToString& associates, int days, CString& reliefrows, int type) {
    // The year is known before the slice is cut: it is the financial year of
    // the date the slice is cut from.
    const int inYear = AssociatesInYear(associates, FinancialYear(first ? from : to));
    double tax = 0;
    CTyear(kYearRules02, from, to, fy, fydays, totaldays, first, html, Profit, portion, rate, BasicProfit, relief,
           inYear, days, reliefrows, 0.0, type, &tax);
    return tax;
}
