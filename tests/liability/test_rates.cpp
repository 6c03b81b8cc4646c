// Rates, limits and relief by financial year.
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>

#include "liability/liability.h"
#include "support.h"

namespace {

// Cases in tests/data/rate_ladder_cases.tsv.
TEST(CTrate, LadderBoundaries) {
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/rate_ladder_cases.tsv");
    int n = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::stringstream row(line);
        std::string why;
        std::getline(row, why, '\t');
        int year, associates, days, type;
        double profit, basic, rate, msrr0, mscr0, msrr = 0, mscr = 0;
        ASSERT_TRUE(row >> year >> profit >> basic >> associates >> days >> type >> rate >> msrr0 >> mscr0) << line;
        CString text, margin;
        EXPECT_EQ(CTrate(year, profit, basic, msrr, mscr, text, margin, associates, days, nullptr, type), rate) << why;
        EXPECT_NEAR(msrr, msrr0, 1e-6) << why;
        EXPECT_NEAR(mscr, mscr0, 1e-6) << why;
        if (msrr0 == 0 && mscr0 == 0) {
            EXPECT_EQ(margin, "") << why;
        }
        ++n;
    }
    EXPECT_EQ(n, 24);
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
