// The second-generation driver: Q37 and the period to the rate lines, the
// small company box Q42, relief Q64 and the distribution boxes Q66 to Q69.
// Every figure is worked by hand from HMRC's rates for the year.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "liability/liability.h"
#include "platform/message_box.h"
#include "support.h"

namespace {

struct Inputs {
    const char *from, *to, *q37;
    const char *q67 = "", *coType = "", *force = "", *q39 = "", *q40 = "", *q41 = "", *q38 = "";
};

CMapStringToString charge05(const Inputs& in, const char* prefix = "") {
    CMapStringToString boxes, results;
    const CString p(prefix);
    boxes["from"] = in.from;
    boxes["to"] = in.to;
    boxes[p + "Q37"] = in.q37;
    boxes[p + "Q38"] = in.q38;
    boxes[p + "Q67"] = in.q67;
    boxes[p + "Q39"] = in.q39;
    boxes[p + "Q40"] = in.q40;
    boxes[p + "Q41"] = in.q41;
    boxes["co_type"] = in.coType;
    boxes["forcestandardrate"] = in.force;
    CTcharge_05(&boxes, p, &results);
    return results;
}

std::string total(const CMapStringToString& results) {
    CXMLVar tree("");
    const CString* text = results.PLookup("xml/CT/CTchargeable");
    if (!text || !tree.Open(*text)) return "<no tree>";
    return valueAt(tree, "Total");
}

// Cases in tests/data/charge05_worked.tsv, each with its working: the inputs,
// then the boxes the driver gives (empty: blank) and the tree's Total.
TEST(CTcharge05, ResultsWorkedByHand) {
    const int n = forEachCase("charge05_worked.tsv", 23, "# working",
                              [&](const std::vector<std::string>& f, const std::vector<std::string>& keys) {
        const Inputs input{f[1].c_str(), f[2].c_str(), f[3].c_str(), f[4].c_str(), f[5].c_str(),
                           f[6].c_str(), f[7].c_str(), f[8].c_str(), f[9].c_str(), f[10].c_str()};
        const CMapStringToString r = charge05(input);
        for (int k = 11; k < 22; ++k) EXPECT_EQ(result(r, keys[k].c_str()), f[k]) << keys[k] << ": " << f[0];
        EXPECT_EQ(total(r), f[22]) << f[0];
        for (const char* unset : {"Q70", "Q330", "Q46"}) EXPECT_EQ(result(r, unset), "<unset>") << f[0];
    });
    EXPECT_EQ(n, 18);
}

TEST(CTcharge05, StartingRateYearsAndTheirBoundaries) {
    // FY2000/2001: 10% up to 10,000, 20% above with 1/40 relief up to 50,000.
    // FY2002 to 2005: 0% up to 10,000, 19% above with 19/400 relief up to 50,000.
    // FY2006: the band is gone: 19% from the first pound.
    struct Case {
        int fy;
        const char* profit;
        const char *rate, *chargeable;
    };
    const Case cases[] = {
        {2000, "10000", "10", "1000.00"},  // exactly the lower limit: starting rate
        {2000, "10001", "20", "1000.23"},  // 2,000.20 - (39,999 / 40 = 999.975, to the penny below 999.97)
        {2001, "50000", "20", "10000.00"},  // the upper limit: relief of 0
        {2001, "50001", "20", "10000.20"},
        {2002, "10000", "0", "0.00"},
        {2002, "10001", "19", "0.24"},     // 1,900.19 - 19/400 x 39,999 = 1,899.95 (1,899.9525 down)
        {2003, "30000", "19", "4750.00"},
        {2004, "50000", "19", "9500.00"},
        {2005, "20000", "19", "2375.00"},  // 3,800 - 19/400 x 30,000 = 1,425
        {2006, "10000", "19", "1900.00"},
        {1999, "10000", "20", "2000.00"},  // before the starting rate
    };
    for (const auto& c : cases) {
        const std::string from = "01/04/" + std::to_string(c.fy), to = "31/03/" + std::to_string(c.fy + 1);
        const CMapStringToString r = charge05({from.c_str(), to.c_str(), c.profit});
        EXPECT_EQ(result(r, "Q45"), c.rate) << c.fy << " " << c.profit;
        EXPECT_EQ(total(r), c.chargeable) << c.fy << " " << c.profit;
    }
}

TEST(CTcharge05, AMissingDateStandsForTheEdgeOfTheOtherDatesYear) {
    MessageCapture messages;
    struct Case {
        Inputs in;
        const char *q43, *q44, *q53, *q54, *q55, *chargeable;
    };
    const Case cases[] = {
        // Only the second-year call runs, over 01/04/2004 to 31/03/2005: 365 days, full relief.
        {{"", "31/03/2005", "30000"}, "0", "0", "2004", "30000", "19", "4750.00"},
        {{"31/02/2005", "31/03/2005", "30000"}, "0", "0", "2004", "30000", "19", "4750.00"},
        // 01/10/2004 to 31/03/2005: 182 days; the upper starting limit 50,000 x 182/365 = 24,931
        // is below 30,000, so 19% without relief.
        {{"01/10/2004", "", "30000"}, "2004", "30000", "", "", "", "5700.00"},
        // Nothing known: no year is charged.
        {{"", "", "30000"}, "0", "0", "", "", "", "0.00"},
    };
    for (const auto& c : cases) {
        const CMapStringToString r = charge05(c.in);
        const std::string why = std::string(c.in.from) + "-" + c.in.to;
        expectResults(r, {{"Q43", c.q43}, {"Q44", c.q44}, {"Q53", c.q53}, {"Q54", c.q54}, {"Q55", c.q55}}, why);
        EXPECT_EQ(total(r), c.chargeable) << why;
    }
    EXPECT_TRUE(messages.lines.empty());
}

TEST(CTcharge05, LogsItsWorking) {
    LogCapture log;
    charge05({"01/04/2004", "31/03/2005", "30000"}, "S");
    const std::vector<std::string> expected = {
        "s2=", "Ct600_05 prefix=S profit=30000.000000", "doing ct comp",
        "scr=1 ctcharge=4750.000000 setting Q42 to y", "marginal=950.000000 setting Q42 to y"};
    EXPECT_EQ(log.lines, expected);
}

TEST(CTcharge05, ReadsUnderThePrefixAndLeavesTheTree) {
    const CMapStringToString r = charge05({"01/04/2008", "31/03/2009", "200000", "", "", "", "1"}, "S");
    EXPECT_EQ(result(r, "Q64"), "9625.00");
    CXMLVar tree("");
    ASSERT_NE(tree.Open(*r.PLookup("xml/CT/CTchargeable")), 0);
    EXPECT_EQ(valueAt(tree, "BasicProfit"), "200000.00");
    EXPECT_EQ(tree.FindChild("FY1")->CountChildren("Reductions"), 1);
    EXPECT_EQ(valueAt(tree, "FY1/MSCR/m1"), "9625.00");
    EXPECT_NE(tempFile("ctcharge.xml").find("<Total>46375.00</Total>"), std::string::npos);
    CTcharge_05(nullptr, "", nullptr);
}

}  // namespace
