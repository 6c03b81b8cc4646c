// The worked report: calc.htm to the byte, and ctcharge.xml as a tree.
#include <gtest/gtest.h>

#include "liability/liability.h"
#include "support.h"

namespace {

CMapStringToString chargeFor(const char* from, const char* to, const char* profit, const char* distributions = "") {
    CMapStringToString boxes, results;
    boxes["from"] = from;
    boxes["to"] = to;
    boxes["Q315"] = profit;
    boxes["Q67"] = distributions;
    boxes["name"] = "Example & Co Ltd";
    boxes["tax_reference"] = "1234567890";
    CTcharge_16(&boxes, "", &results);
    return results;
}

TEST(Report, StraddlingPeriodWordForWord) {
    chargeFor("01/01/2014", "31/12/2014", "400000");
    // Each year's block: heading, slice, chargeable profit, tax, then the
    // relief title, CTrate's line and the year's share of it.
    const std::string expected =
        "<H1>Corporation tax chargeable</H1>"
        "<H2>Financial year 2013</H2>01/01/2014 - 31/03/2014 = 90 days<BR>"
        "<B>Chargeable profit</B><BR>90/365 x 400000 = 98630<BR>98630 @ 23% = 22684.90<BR><BR>"
        "<b>Marginal Small companies relief</b><br>(1500000-400000) x  (3 / 400) = 8250.00<BR>\n"
        "90/365 x 8250.00 = 2034.25<BR>\n"
        "<BR/>"
        "<H2>Financial year 2014</H2>01/04/2014 - 31/12/2014 = 275 days<BR>"
        "<B>Chargeable profit</B><BR>275/365 x 400000 = 301370<BR>301370 @ 21% = 63287.70<BR><BR>"
        "<b>Marginal Small companies relief</b><br>(1500000-400000) x  (1 / 400) = 2750.00<BR>\n"
        "275/365 x 2750.00 = 2071.92<BR>\n"
        "<BR/>"
        "<H2>Totals</H2><table><tr><td><b>Tax</b></td></tr>"
        "<tr><td>2013</td><td align=right>22684.90</td></tr>"
        "<tr><td>2014</td><td align=right>63287.70</td></tr>"
        "<tr><td/><td align=right>=====</td></tr><tr><td/><td align=right>85972.60</td></tr>"
        "<tr><td><b>Marginal relief</b></td></tr>"
        "<tr><td>2013</td><td align=right>2034.25</td></tr>"
        "<tr><td>2014</td><td align=right>2071.92</td></tr>"
        "<tr><td/><td align=right>=====</td></tr><tr><td/><td align=right>4106.15</td></tr>"
        "<tr><td/><td/></tr>"
        "<tr><td><b>Tax Chargeable</b></td><td align=right>81866.45</td></tr>"
        "</table>";
    EXPECT_EQ(tempFile("calc.htm"), expected);
}

TEST(Report, DistributionRowsWordForWord) {
    chargeFor("01/04/2004", "31/03/2005", "30000", "10000");
    const std::string expected =
        "<H1>Corporation tax chargeable</H1>"
        "<H2>Financial year 2004</H2>01/04/2004 - 31/03/2005 = 365 days<BR>"
        "<B>Chargeable profit</B><BR>365/365 x 30000 = 30000<BR>30000 @ 19% = 5700.00<BR><BR>"
        "<b>Marginal Starting Rate relief</b><br>(50000-30000) x (19 / 400) = 950.00<BR>\n"
        "365/365 x 950.00 = 950.00<BR>\n"
        "<BR/><BR/>"
        "<H2>Totals</H2><table><tr><td><b>Tax</b></td></tr>"
        "<tr><td>2004</td><td align=right>5700.00</td></tr>"
        "<tr><td/><td align=right>=====</td></tr><tr><td/><td align=right>5700.00</td></tr>"
        "<tr><td><b>Marginal relief</b></td></tr>"
        "<tr><td>2004</td><td align=right>950.00</td></tr>"
        "<tr><td/><td align=right>=====</td></tr><tr><td/><td align=right>950.00</td></tr>"
        "<tr><td>effective rate (4750.00 / 30000.00)</td><td align=right>15.83</td></tr>"
        "<tr><td>tax on non-corporate distributions matched to profits (10000.00 @ 19.00%)</td>"
        "<td align=right>1900.00</td></tr>"
        "<tr><td>tax on remaining profits (20000.00000 @ 15.83000%)</td><td align=right>3166.00</td></tr>"
        "<tr><td/><td/></tr>"
        "<tr><td><b>Tax Chargeable</b></td><td align=right>5066.00</td></tr>"
        "</table>";
    EXPECT_EQ(tempFile("calc.htm"), expected);
}

TEST(Report, TreeFileAndResultTextAgree) {
    const CMapStringToString results = chargeFor("01/01/2014", "31/12/2014", "400000");
    CXMLVar file(""), text("");
    EXPECT_NE(file.Open(CString(tempFile("ctcharge.xml"))), 0);
    EXPECT_NE(text.Open(*results.PLookup("xml/CT/CTchargeable")), 0);
    for (const CXMLVar* tree : {&file, &text}) {
        EXPECT_EQ(tree->name, "CTchargeable");
        const std::pair<const char*, const char*> values[] = {
            {"name", "Example & Co Ltd"}, {"ref", "1234567890"},   {"Type", "Corporation"},
            {"Profit", "400000.00"},      {"FY1/Year", "2013"},    {"FY1/Fraction/Percent", "24"},
            {"FY2/Portion", "301370.00"}, {"FY2/MSCR/m3", "2071.92"}, {"TotalBeforeMRR", "85972.60"},
            {"TotalMRR", "4106.15"},      {"TotalBeforeNCD", "81866.45"}, {"Total", "81866.45"},
        };
        for (const auto& [path, value] : values) EXPECT_EQ(valueAt(*tree, path), value) << path;
        EXPECT_EQ(tree->FindChild("NCDs"), nullptr);
        const char* order[] = {"Year", "From", "To", "Fraction", "Portion", "MSCR", "Rate", "Tax"};
        const CXMLVar* year = tree->FindChild("FY1");
        ASSERT_EQ(year->GetChildCount(), 8);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(year->children[i]->name, order[i]);
        EXPECT_EQ(valueAt(*tree, "FY1/MSCR/m2"), valueAt(*tree, "FY1/MSCR/m3"));
    }
    // A later run replaces both files.
    chargeFor("01/01/2014", "31/12/2014", "0");
    EXPECT_EQ(tempFile("calc.htm"), "x no profit\n");
    EXPECT_NE(file.Open(CString(tempFile("ctcharge.xml"))), 0);
    EXPECT_EQ(file.FindChild("FY1"), nullptr);
}

}  // namespace
