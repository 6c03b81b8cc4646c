// Financial years, day counts and the slice of a period in one financial year.
#include <gtest/gtest.h>

#include <memory>

#include "liability/liability.h"
#include "support.h"

namespace {

TEST(Dates, FinancialYearOfADate) {
    const std::pair<const char*, int> cases[] = {{"31/03/2015", 2014}, {"01/04/2015", 2015}, {"01/01/2015", 2014},
                                                 {"1/4/15", 2015},     {"garbage", 0},       {"", 0}};
    for (const auto& [date, year] : cases) EXPECT_EQ(FinancialYear(date), year) << date;
}

TEST(Dates, DaySpanToleratesAnHourEitherWay) {
    const CTime noon(2014, 3, 29, 12, 0, 0, -1);
    const std::pair<CTime, int> cases[] = {{CTime(2014, 3, 30, 11, 0, 0, -1), 1},
                                           {CTime(2014, 3, 30, 13, 0, 0, -1), 1},
                                           {CTime(2014, 3, 31, 12, 0, 0, -1), 2},
                                           {noon, 0}};
    for (const auto& [later, days] : cases) EXPECT_EQ(DaySpan(noon, later), days);
    EXPECT_EQ(DaysBetween("01/01/2014", "31/12/2014"), 364);
    EXPECT_EQ(DaysBetween("01/03/2015", "29/02/2016"), 365);
}

TEST(Dates, CalendarDates) {
    for (const char* good : {"29/02/2016", "31/12/2014", "01/04/2015", "1/4/15"}) EXPECT_TRUE(IsCalendarDate(good));
    for (const char* bad : {"29/02/2015", "31/02/2014", "00/01/2014", "01/13/2014", "", "garbage", "01/01/99999"})
        EXPECT_FALSE(IsCalendarDate(bad)) << bad;
}

// One call of the year function, its outputs kept together.
struct Slice {
    int fy = 0, fydays = 0, totaldays = 0;
    double portion = 0, rate = 0;
    CString html, reliefrows;
    std::unique_ptr<CXMLVar> node;
};

Slice slice(const YearRules& rules, const char* from, const char* to, int first, double basic, int days,
            double& relief, double fy1portion = 0, int associates = 0, int type = 0) {
    Slice s;
    s.node.reset(CTyear(rules, from, to, s.fy, s.fydays, s.totaldays, first, s.html, basic, s.portion, s.rate, basic,
                        relief, associates, days, s.reliefrows, fy1portion, type));
    return s;
}

TEST(CTyear, SliceDatesAndDays) {
    struct Case {
        const char *from, *to;
        int first, days, fy;
        const char *sliceFrom, *sliceTo;
        int fydays;
    };
    const Case cases[] = {
        {"01/01/2014", "31/12/2014", 1, 365, 2013, "01/01/2014", "31/03/2014", 90},
        {"01/01/2014", "31/12/2014", 0, 365, 2014, "01/04/2014", "31/12/2014", 275},
        {"01/04/2014", "31/03/2015", 1, 365, 2014, "01/04/2014", "31/03/2015", 365},
        {"01/01/2015", "31/03/2015", 1, 90, 2014, "01/01/2015", "31/03/2015", 90},
        {"02/04/2015", "01/04/2016", 1, 366, 2015, "02/04/2015", "31/03/2016", 365},
        {"02/04/2015", "01/04/2016", 0, 366, 2016, "01/04/2016", "01/04/2016", 1},
        {"01/03/2015", "29/02/2016", 0, 366, 2015, "01/04/2015", "29/02/2016", 335},
    };
    for (const auto& c : cases) {
        double relief = 0;
        const Slice s = slice(kYearRules16, c.from, c.to, c.first, 100000, c.days, relief);
        EXPECT_EQ(s.fy, c.fy) << c.from;
        EXPECT_EQ(s.fydays, c.fydays) << c.from;
        EXPECT_EQ(s.totaldays, c.days) << c.from;
        EXPECT_EQ(s.node->name, c.first ? "FY1" : "FY2");
        EXPECT_EQ(s.node->GetAttr("fy"), s.node->name);
        EXPECT_EQ(valueAt(*s.node, "From"), c.sliceFrom) << c.from;
        EXPECT_EQ(valueAt(*s.node, "To"), c.sliceTo) << c.from;
    }
}

TEST(CTyear, PortionsAddUpAndOnlyTheFirstIsRounded) {
    struct Case {
        const char *from, *to;
        int days;
        double basic, first, second;
    };
    const Case cases[] = {
        {"01/03/2015", "30/04/2015", 61, 1000, 508, 492},         // 508.19 rounded
        {"01/03/2015", "30/04/2015", 61, 1000.60, 509, 491.60},   // the pence stay in the second year
        {"01/01/2014", "31/12/2014", 365, 400000, 98630, 301370},
    };
    for (const auto& c : cases) {
        double relief = 0;
        const Slice one = slice(kYearRules16, c.from, c.to, 1, c.basic, c.days, relief);
        const Slice two = slice(kYearRules16, c.from, c.to, 0, c.basic, c.days, relief, one.portion);
        EXPECT_EQ(one.portion, c.first);
        EXPECT_NEAR(two.portion, c.second, 1e-9);
    }
    double relief = 0;
    EXPECT_EQ(slice(kYearRules16, "01/04/2014", "31/03/2015", 1, 1234.56, 365, relief).portion, 1235);
}

TEST(CTyear, AssociatedCompaniesShareTheLimits) {
    // Two associates: limits a third each, 100,000 and 500,000. A profit of
    // 200,000 in FY2010 pays 28% less 7/400 x (500,000 - 200,000) = 5,250.
    double relief = 0;
    const Slice s = slice(kYearRules16, "01/04/2010", "31/03/2011", 1, 200000, 365, relief, 0, 2);
    EXPECT_EQ(s.rate, 28);
    EXPECT_DOUBLE_EQ(relief, 5250);
    EXPECT_EQ(s.node->CountChildren("Reductions"), 1);
}

TEST(CTyear, CompanyTypeOneHasNoRelief) {
    double relief = 0;
    const Slice s = slice(kYearRules16, "01/04/2010", "30/09/2010", 1, 400000, 183, relief, 0, 0, 1);
    EXPECT_EQ(s.rate, 20);
    EXPECT_EQ(relief, 0);
    EXPECT_EQ(s.html,
              "<H2>Financial year 2010</H2>01/04/2010 - 30/09/2010 = 183 days<BR>"
              "<b>Open Ended Investment Trust</b><br/><B>Chargeable profit</B><BR>"
              "183/183 x 400000 = 400000<BR>400000 @ 20% = 80000.00<BR><BR>");
}

TEST(CTyear, SecondGenerationApportionsAZeroDayPeriodOverOne) {
    double relief = 0;
    const Slice older = slice(kYearRules05, "01/04/2010", "", 1, 1000, 0, relief);
    EXPECT_EQ(older.totaldays, 1);
    EXPECT_EQ(valueAt(*older.node, "Fraction/Denominator"), "1");
    const Slice newer = slice(kYearRules16, "01/04/2010", "", 1, 1000, 0, relief);
    EXPECT_EQ(newer.totaldays, 0);
    EXPECT_EQ(newer.portion, 0);
    const Slice garbage = slice(kYearRules05, "garbage", "??", 0, 1e300, 0, relief);
    EXPECT_NE(garbage.node, nullptr);
}

}  // namespace
