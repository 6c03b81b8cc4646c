// Rates, limits and relief by financial year.
#include <gtest/gtest.h>

#include <memory>

#include "liability/liability.h"
#include "support.h"

namespace {

struct RateCase {
    const char* why;
    int year;
    double profit, basic;
    int associates, days, type;
    double rate, msrr, mscr;
};

TEST(CTrate, LadderBoundaries) {
    const RateCase cases[] = {
        {"profit at the lower limit: small rate, no relief", 2010, 300000, 300000, 0, 365, 0, 21, 0, 0},
        {"a pound above: main rate with relief", 2010, 300001, 300001, 0, 365, 0, 28, 0, 1199999 * 7 / 400.0},
        {"at the upper limit: in the band, relief 0", 2010, 1500000, 1500000, 0, 365, 0, 28, 0, 0},
        {"above the upper limit", 2010, 1500001, 1500001, 0, 365, 0, 28, 0, 0},
        {"at the starting lower limit, 2000", 2000, 10000, 10000, 0, 365, 0, 10, 0, 0},
        {"at the starting lower limit, 2003: nil rate", 2003, 10000, 10000, 0, 365, 0, 0, 0, 0},
        {"starting rate relief 1/40", 2001, 10001, 10001, 0, 365, 0, 20, 39999 / 40.0, 0},
        {"starting rate relief 19/400", 2004, 30000, 30000, 0, 365, 0, 19, 950, 0},
        {"at the starting upper limit: relief 0", 2002, 50000, 50000, 0, 365, 0, 19, 0, 0},
        {"no starting rate relief from 2006", 2006, 20000, 20000, 0, 365, 0, 19, 0, 0},
        {"apportioned profit of 0: main rate", 2010, 100000, 0, 0, 365, 0, 28, 0, 0},
        {"2015 fraction 0/100", 2015, 400000, 400000, 0, 365, 0, 20, 0, 0},
        {"3/200 in 2011", 2011, 400000, 400000, 0, 365, 0, 26, 0, 16500},
        {"floor of the ladder", 1950, 2000000, 2000000, 0, 365, 0, 31, 0, 0},
        {"ceiling of the ladder", 2100, 2000000, 2000000, 0, 365, 0, 19, 0, 0},
        {"reduced lower limit 74794 holds", 2008, 74794, 74794, 1, 182, 0, 21, 0, 0},
        {"a pound above it", 2008, 74795, 74795, 1, 182, 0, 28, 0, (373972 - 74795) * 7 / 400.0},
        {"364 days scale the limits", 2010, 299179, 299179, 0, 364, 0, 28, 0, (1495890 - 299179) * 7 / 400.0},
        {"365 days don't", 2010, 299179, 299179, 0, 365, 0, 21, 0, 0},
        {"open ended investment trust, 2017", 2017, 100000, 100000, 0, 365, 1, 20, 0, 0},
        {"open ended investment trust, 1990", 1990, 100000, 100000, 0, 365, 1, 20, 0, 0},
        {"standard rate ladder, small profit", 2010, 1000, 1000, 0, 100, 2, 28, 0, 0},
        {"standard rate ladder has no 31", 1998, 100000, 100000, 0, 365, 3, 30, 0, 0},
        {"standard rate ladder ceiling", 2017, 100000, 100000, 0, 365, 2, 19, 0, 0},
    };
    for (const auto& c : cases) {
        double msrr = 0, mscr = 0;
        CString text, margin;
        const double rate =
            CTrate(c.year, c.profit, c.basic, msrr, mscr, text, margin, c.associates, c.days, nullptr, c.type);
        EXPECT_EQ(rate, c.rate) << c.why;
        EXPECT_NEAR(msrr, c.msrr, 1e-6) << c.why;
        EXPECT_NEAR(mscr, c.mscr, 1e-6) << c.why;
        if (c.msrr == 0 && c.mscr == 0) {
            EXPECT_EQ(margin, "") << c.why;
        }
    }
}

TEST(CTrate, PublishedMainAndSmallCompaniesRates) {
    struct Year {
        int year;
        double main, small;
    };
    const Year years[] = {{1998, 31, 21}, {1999, 30, 20}, {2000, 30, 20}, {2002, 30, 19}, {2005, 30, 19},
                          {2006, 30, 19}, {2007, 30, 20}, {2008, 28, 21}, {2010, 28, 21}, {2011, 26, 20},
                          {2012, 24, 20}, {2013, 23, 20}, {2014, 21, 20}, {2016, 20, 20}, {2017, 19, 19}};
    for (const auto& y : years) {
        double msrr = 0, mscr = 0;
        CString text, margin;
        EXPECT_EQ(CTrate(y.year, 2e6, 2e6, msrr, mscr, text, margin, 0, 365, nullptr, 0), y.main) << y.year;
        EXPECT_EQ(CTrate(y.year, 2e5, 2e5, msrr, mscr, text, margin, 0, 365, nullptr, 0), y.small) << y.year;
    }
}

TEST(CTrate, AssociatedCompaniesThenShortPeriodWorkedExample) {
    CXMLVar year("FY1");
    double msrr = 0, mscr = 0;
    CString text = "stale", margin = "stale";
    EXPECT_EQ(CTrate(2008, 100000, 100000, msrr, mscr, text, margin, 1, 182, &year, 0), 28);
    EXPECT_EQ(text,
              "<br><b>1 associated companies</b><br>"
              "300000 threshhold reduced to 150000<br>50000 threshhold reduced to 25000<br>"
              "1500000 threshhold reduced to 750000<br><br>"
              "<br><b><b>short accounting period - 182 days</b><br>"
              "150000 threshhold reduced to 74794<br>25000 threshhold reduced to 12465<br>"
              "750000 threshhold reduced to 373972<br><br>");
    EXPECT_EQ(margin, "(373972-100000) x  (7 / 400) = 4794.51<BR>\n");
    ASSERT_EQ(year.CountChildren("Reductions"), 2);
    const CXMLVar* shortPeriod = year.children[1];
    EXPECT_EQ(year.children[0]->GetAttr("desc"), "1 associated companies");
    EXPECT_EQ(shortPeriod->GetAttr("desc"), "<b>short accounting period - 182 days");
    ASSERT_EQ(shortPeriod->GetChildCount(), 3);  // StartingLower is 0: no line
    EXPECT_EQ(shortPeriod->children[2]->GetAttr("from"), "750000");
    EXPECT_EQ(shortPeriod->children[2]->GetAttr("to"), "373972");
    EXPECT_EQ(valueAt(year, "MSCR/Fraction/Percent"), "1");
    EXPECT_EQ(valueAt(year, "MSCR/M"), "373972.00");
    EXPECT_EQ(valueAt(year, "MSCR/P"), "100000.00");
    EXPECT_EQ(valueAt(year, "MSCR/I"), "<missing>");
}

TEST(CTrate, ReliefWording) {
    struct Case {
        int year;
        double profit, basic;
        const char* margin;
        const char* income;  // the I element
    };
    const Case cases[] = {
        {2004, 30000, 30000, "(50000-30000) x (19 / 400) = 950.00<BR>\n", "<missing>"},
        {2010, 400000, 400000, "(1500000-400000) x  (7 / 400) = 19250.00<BR>\n", "<missing>"},
        {2010, 400000, 300000, "(1500000-400000) x (300000 / 400000) x (7 / 400) = 14437.50<BR>\n", "300000.00"},
    };
    for (const auto& c : cases) {
        CXMLVar year("FY1");
        double msrr = 0, mscr = 0;
        CString text, margin;
        CTrate(c.year, c.profit, c.basic, msrr, mscr, text, margin, 0, 365, &year, 0);
        EXPECT_EQ(margin, c.margin);
        EXPECT_EQ(valueAt(year, c.year == 2004 ? "MSRR/I" : "MSCR/I"), c.income);
        EXPECT_EQ(text, "");
    }
}

TEST(CTrate, CompanyTypeLines) {
    double msrr = 0, mscr = 0;
    CString text, margin;
    CTrate(2012, 1000, 1000, msrr, mscr, text, margin, 3, 100, nullptr, 1);
    EXPECT_EQ(text, "<b>Open Ended Investment Trust</b><br/>");
    CTrate(2012, 1000, 1000, msrr, mscr, text, margin, 3, 100, nullptr, 3);
    EXPECT_EQ(text, "<b>Standard Rate of Tax</b><br/>");
    EXPECT_EQ(msrr + mscr, 0);
}

TEST(ReduceThreshold, ZeroLimitsZeroDenominatorsAndTruncation) {
    struct Case {
        int limit, numerator, denominator, after;
        const char* text;
    };
    const Case cases[] = {
        {0, 1, 2, 0, ""},
        {300000, 364, 365, 299178, "300000 threshhold reduced to 299178<br>"},
        {50000, 1, 0, 50000, "50000 threshhold reduced to 50000<br>"},
        {1500000, 1, 3, 500000, "1500000 threshhold reduced to 500000<br>"},
    };
    for (const auto& c : cases) {
        CXMLVar parent("Reductions");
        CString text;
        int limit = c.limit;
        ReduceThreshold(limit, c.numerator, c.denominator, text, &parent);
        EXPECT_EQ(limit, c.after);
        EXPECT_EQ(text, c.text);
        EXPECT_EQ(parent.GetChildCount(), c.limit ? 1 : 0);
    }
}

TEST(FractionNode, PercentTruncatesAndDenominatorZeroCountsAsOne) {
    struct Case {
        int numerator, denominator;
        const char *shownDenominator, *percent;
    };
    const Case cases[] = {{19, 400, "400", "4"}, {3, 400, "400", "0"}, {3, 200, "200", "1"},
                          {90, 365, "365", "24"}, {5, 0, "1", "500"}};
    for (const auto& c : cases) {
        std::unique_ptr<CXMLVar> node(FractionNode("Fraction", c.numerator, c.denominator));
        ASSERT_EQ(node->GetChildCount(), 3);
        EXPECT_EQ(node->children[0]->name, "Numerator");
        EXPECT_EQ(valueAt(*node, "Numerator"), std::to_string(c.numerator));
        EXPECT_EQ(valueAt(*node, "Denominator"), c.shownDenominator);
        EXPECT_EQ(valueAt(*node, "Percent"), c.percent);
    }
}

}  // namespace
