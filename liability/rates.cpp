// Corporation tax rates, limits and marginal relief fractions by financial year.
#include <climits>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <optional>

#include "common/library.h"
#include "liability/liability.h"

namespace {

struct Fraction {
    int numerator;
    int denominator;
};

struct LadderRow {
    int firstYear;  // the row holds from this year until the next row's
    double startingRate, smallRate, mainRate;
    int startingLower, startingUpper, smallLower, smallUpper;
    std::optional<Fraction> msrr;  // starting rate relief; none once that band closed
    Fraction mscr;                 // small companies relief
};

constexpr std::optional<Fraction> kNoMsrr = std::nullopt;

// The row of a ladder that holds in the year: the last that starts by then,
// or the first row for an earlier year.
template <typename Row, std::size_t N>
constexpr const Row& rowFor(const Row (&ladder)[N], int year) {
    const Row* found = &ladder[0];
    for (const Row& row : ladder)
        if (row.firstYear <= year) found = &row;
    return *found;
}

// The first row also covers every earlier year and the last every later one.
// Fractions keep their published form (3/200, 0/100): the report shows them.
constexpr LadderRow kFullLadder[] = {
    {INT_MIN, 0, 21, 31, 0, 0, 300000, 1500000, Fraction{1, 40}, {1, 40}},
    {1999, 0, 20, 30, 0, 0, 300000, 1500000, Fraction{1, 40}, {1, 40}},
    {2000, 10, 20, 30, 10000, 50000, 300000, 1500000, Fraction{1, 40}, {1, 40}},
    {2002, 0, 19, 30, 10000, 50000, 300000, 1500000, Fraction{19, 400}, {11, 400}},
    {2006, 0, 19, 30, 0, 50000, 300000, 1500000, kNoMsrr, {11, 400}},
    {2007, 0, 20, 30, 0, 50000, 300000, 1500000, kNoMsrr, {1, 40}},
    {2008, 0, 21, 28, 0, 50000, 300000, 1500000, kNoMsrr, {7, 400}},
    {2011, 0, 20, 26, 0, 50000, 300000, 1500000, kNoMsrr, {3, 200}},
    {2012, 0, 20, 24, 0, 50000, 300000, 1500000, kNoMsrr, {1, 100}},
    {2013, 0, 20, 23, 0, 50000, 300000, 1500000, kNoMsrr, {3, 400}},
    {2014, 0, 20, 21, 0, 50000, 300000, 1500000, kNoMsrr, {1, 400}},
    {2015, 0, 20, 20, 0, 50000, 300000, 1500000, kNoMsrr, {0, 100}},
    {2017, 0, 19, 19, 0, 50000, 300000, 1500000, kNoMsrr, {0, 100}},
};

struct StandardRow {
    int firstYear;
    double rate;
};

// Companies charged at the main rate whatever their profit. No 31% step here.
constexpr StandardRow kStandardLadder[] = {
    {INT_MIN, 30}, {2008, 28}, {2011, 26}, {2012, 24}, {2013, 23}, {2014, 21}, {2015, 20}, {2017, 19},
};

constexpr double kOpenEndedInvestmentTrustRate = 20.0;

// Current law, chosen by the host (common/current_law.h). Years before the
// first row are charged as the full ladder above charges them; the last row
// also covers every later year. Each row says where its figures come from,
// so that the next Finance Act's change is one new row with its source.
struct CurrentLawRow {
    int firstYear;
    double smallProfitsRate, mainRate;
    int lowerLimit, upperLimit;  // of augmented profits; 0 and 0: no limits, no relief
    Fraction fraction;           // marginal relief: F x (U - A) x N / A
    const char* source;
};

constexpr CurrentLawRow kCurrentLawLadder[] = {
    {2017, 19, 19, 0, 0, {0, 100},
     "FY2017 to FY2022: main rate 19% on all profits, no small profits rate, no marginal relief "
     "(F(No.2)A 2015 s7, the rate held at 19% by FA 2020 and FA 2021)"},
    {2023, 19, 25, 50000, 250000, {3, 200},
     "From FY2023: main rate 25%, small profits rate 19%, lower limit 50,000, upper limit 250,000, "
     "marginal relief fraction 3/200 (CTA 2010 ss18A-18N, inserted by FA 2021 Sch 1; HMRC CTM03900 to "
     "CTM03958); unchanged to FY2026"},
};

const CurrentLawRow* currentLawRowFor(int year) {
    if (year < kCurrentLawLadder[0].firstYear) return nullptr;
    return &rowFor(kCurrentLawLadder, year);
}

// A current-law row in the shape the rate test below works on. The lowest
// band is the small profits rate; there is no starting rate band.
LadderRow asLadderRow(const CurrentLawRow& row) {
    return {row.firstYear,  row.smallProfitsRate, row.smallProfitsRate, row.mainRate, 0, 0,
            row.lowerLimit, row.upperLimit,       kNoMsrr,              row.fraction};
}

int clampToInt(std::int64_t value) {
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// A limit as the report shows it: whole pounds, or pounds and pence where a
// limit held exactly (current law) has a part of a pound.
CString limitText(double limit) { return limit == std::floor(limit) ? FormatString("%.0f", limit) : fmt2(limit); }

// ReduceThreshold for a limit held exactly: under current law 250,000 shared
// between three companies is 83,333.33..., not 83,333, and HMRC works the
// relief on that.
void reduceExactly(double& limit, int numerator, int denominator, CString& text, CXMLVar* node) {
    if (limit == 0) return;
    if (denominator == 0) denominator = 1;
    CXMLVar* reduction = node ? node->AddChild(new CXMLVar("Reduction")) : nullptr;
    text.AppendFormat("%s threshhold ", limitText(limit).c_str());
    if (reduction) reduction->SetAttr("from", limitText(limit).c_str());
    limit = limit * numerator / denominator;
    if (reduction) reduction->SetAttr("to", limitText(limit).c_str());
    text.AppendFormat("reduced to %s<br>", limitText(limit).c_str());
}

// (upper - Profit) x BasicProfit / Profit x F, left to right.
double reliefAmount(double upper, double Profit, double BasicProfit, Fraction fraction) {
    if (Profit == 0) return 0.0;
    const double f = static_cast<double>(fraction.numerator) / (fraction.denominator ? fraction.denominator : 1);
    return (upper - Profit) * BasicProfit / Profit * f;
}

void reportRelief(const char* name, double upper, double Profit, double BasicProfit, Fraction fraction, double amount,
                  CString& margintext, CXMLVar* node) {
    const bool apportioned = BasicProfit != Profit;
    if (node) {
        CXMLVar* child = node->GetChild(name);
        child->AddChild(FractionNode("Fraction", fraction.numerator, fraction.denominator));
        child->AddChild("M", fmt2(upper));
        child->AddChild("P", fmt2(Profit));
        if (apportioned) child->AddChild("I", fmt2(BasicProfit));
    }
    const double n = fraction.numerator, d = fraction.denominator;
    const CString U = limitText(upper);
    if (apportioned)
        margintext.AppendFormat("(%s-%.0f) x (%.0f / %.0f) x (%.0f / %.0f) = %.2f<BR>\n", U.c_str(), Profit,
                                BasicProfit, Profit, n, d, amount);
    else if (CString(name) == "MSRR")
        margintext.AppendFormat("(%s-%.0f) x (%.0f / %.0f) = %.2f<BR>\n", U.c_str(), Profit, n, d, amount);
    else
        margintext.AppendFormat("(%s-%.0f) x  (%.0f / %.0f) = %.2f<BR>\n", U.c_str(), Profit, n, d, amount);
}

}  // namespace

double SmallProfitsRate(int year) {
    const CurrentLawRow* row = currentLawRowFor(year);
    return row && row->upperLimit > 0 ? row->smallProfitsRate : 0.0;
}

bool CurrentLawTableYear(int year) { return currentLawRowFor(year) != nullptr; }

void ReduceThreshold(int& limit, int numerator, int denominator, CString& text, CXMLVar* node) {
    if (limit == 0) return;
    if (denominator == 0) denominator = 1;
    CXMLVar* reduction = node ? node->AddChild(new CXMLVar("Reduction")) : nullptr;
    text.AppendFormat("%d threshhold ", limit);
    if (reduction) reduction->SetAttr("from", limit);
    limit = clampToInt(static_cast<std::int64_t>(limit) * numerator / denominator);
    if (reduction) reduction->SetAttr("to", limit);
    text.AppendFormat("reduced to %d<br>", limit);
}

CXMLVar* FractionNode(const char* name, int numerator, int denominator) {
    if (denominator == 0) denominator = 1;
    auto* node = new CXMLVar(CString(name));
    node->AddChild("Numerator", fmt(numerator));
    node->AddChild("Denominator", fmt(denominator));
    node->AddChild("Percent", fmt(clampToInt(static_cast<std::int64_t>(numerator) * 100 / denominator)));
    return node;
}

double CTrate(int year, double Profit, double BasicProfit, double& msrr, double& mscr, CString& text,
              CString& margintext, int associates, int days, CXMLVar* node, int type, RateLadder ladder) {
    text.Empty();
    margintext.Empty();
    const CurrentLawRow* current = ladder == RateLadder::CurrentLaw ? currentLawRowFor(year) : nullptr;
    if (type == kOpenEndedInvestmentTrust) {
        text += "<b>Open Ended Investment Trust</b><br/>";
        return kOpenEndedInvestmentTrustRate;
    }
    // Under current law the year's block names the row it was charged by.
    if (current) {
        text += "<i>";
        text += current->source;
        text += "</i><br>";
    }
    if (type == kStandardRateCompany || type == kStandardRateCompanyToo) {
        text += "<b>Standard Rate of Tax</b><br/>";
        // Only this ladder widens a two-digit year; the year slice always
        // hands over four digits, so the two ladders agree in practice. A
        // close investment-holding company pays the main rate whatever its
        // profit (CTA 2010 s18N), so under current law 25% from FY2023.
        const double rate = current ? current->mainRate : rowFor(kStandardLadder, yyyy(year)).rate;
        DoLogF("CTrate(ty=%d) - rate %f", year, rate);
        return rate;
    }

    const LadderRow row = current ? asLadderRow(*current) : rowFor(kFullLadder, year);
    double startingLower = row.startingLower, startingUpper = row.startingUpper;
    double smallLower = row.smallLower, smallUpper = row.smallUpper;

    // Limits are shared between associated companies and scaled down for a
    // short period. The default ladder truncates each to the pound, the second
    // pass working on the first's truncated result; current law holds them
    // exactly, as the Act states them.
    const auto reduce = [&](double& limit, int numerator, int denominator, CXMLVar* reductions) {
        if (current) return reduceExactly(limit, numerator, denominator, text, reductions);
        int pounds = static_cast<int>(limit);
        ReduceThreshold(pounds, numerator, denominator, text, reductions);
        limit = pounds;
    };
    auto reduceLimits = [&](const CString& label, int numerator, int denominator) {
        text += "<br>";
        text += "<b>";
        text += label;
        text += "</b><br>";
        CXMLVar* reductions = nullptr;
        if (node) {
            reductions = node->AddChild(new CXMLVar("Reductions"));
            reductions->SetAttr("desc", label);
        }
        for (double* limit : {&startingLower, &smallLower, &startingUpper, &smallUpper})
            reduce(*limit, numerator, denominator, reductions);
        text += "<br>";
    };
    // Current law from FY2017 to FY2022 has no limits, so nothing to reduce.
    const bool limited = !current || current->upperLimit > 0;
    if (limited && associates > 0)
        reduceLimits(FormatString("%d associated companies", associates), 1,
                     associates < INT_MAX ? associates + 1 : INT_MAX);
    // A year of 366 days raises nothing: only periods short of 365 days scale.
    if (limited && days < 365) reduceLimits(FormatString("<b>short accounting period - %d days", days), days, 365);

    double rate = row.startingRate;
    if (Profit > startingLower) rate = row.smallRate;
    if (Profit > smallLower || BasicProfit == 0) rate = row.mainRate;

    if (row.msrr && startingUpper > 0 && startingLower < Profit && Profit <= startingUpper) {
        msrr = reliefAmount(startingUpper, Profit, BasicProfit, *row.msrr);
        if (msrr > 0) reportRelief("MSRR", startingUpper, Profit, BasicProfit, *row.msrr, msrr, margintext, node);
    }
    if (smallLower < Profit && Profit <= smallUpper) {
        mscr = reliefAmount(smallUpper, Profit, BasicProfit, row.mscr);
        if (mscr > 0) reportRelief("MSCR", smallUpper, Profit, BasicProfit, row.mscr, mscr, margintext, node);
    }
    return rate;
}
