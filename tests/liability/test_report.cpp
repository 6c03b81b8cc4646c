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
    EXPECT_EQ(tempFile("calc.htm"), readFile(CT600_SOURCE_DIR "/tests/data/calc_straddle_2014.htm"));
}

TEST(Report, DistributionRowsWordForWord) {
    chargeFor("01/04/2004", "31/03/2005", "30000", "10000");
    EXPECT_EQ(tempFile("calc.htm"), readFile(CT600_SOURCE_DIR "/tests/data/calc_distributions_2004.htm"));
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
