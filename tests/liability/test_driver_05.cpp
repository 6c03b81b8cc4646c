// The second-generation driver: Q37 and the period to the rate lines, the
// small company box Q42, relief Q64 and the distribution boxes Q66 to Q69.
// Every figure is worked by hand from HMRC's rates for the year.
#include <gtest/gtest.h>

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

TEST(CTcharge05, ResultsWorkedByHand) {
    struct Case {
        const char* working;
        Inputs in;
        const char *q43, *q44, *q45, *q53, *q54, *q55, *q42, *q64, *q66, *q68, *q69, *chargeable;
    };
    const Case cases[] = {
        {"FY2004: 30,000 x 19% = 5,700; starting rate relief (50,000 - 30,000) x 19/400 = 950",
         {"01/04/2004", "31/03/2005", "30000"},
         "2004", "30000", "19", "", "", "", "y", "950.00", "", "", "", "4750.00"},
        {"FY2004: 8,000 is within the starting limit of 10,000: 0%",
         {"01/04/2004", "31/03/2005", "8000"},
         "2004", "8000", "0", "", "", "", "", "", "", "", "", "0.00"},
        {"FY2001: 8,000 at the 10% starting rate = 800",
         {"01/04/2001", "31/03/2002", "8000"},
         "2001", "8000", "10", "", "", "", "", "", "", "", "", "800.00"},
        {"FY2001: 30,000 x 20% = 6,000 less 1/40 x (50,000 - 30,000) = 500",
         {"01/04/2001", "31/03/2002", "30000"},
         "2001", "30000", "20", "", "", "", "y", "500.00", "", "", "", "5500.00"},
        {"FY2008, one associate in Q39: limits 150,000 and 750,000; 200,000 x 28% = 56,000 "
         "less 7/400 x (750,000 - 200,000) = 9,625",
         {"01/04/2008", "31/03/2009", "200000", "", "", "", "1"},
         "2008", "200000", "28", "", "", "", "y", "9625.00", "", "", "", "46375.00"},
        {"FY2008, two associates in Q39 beat Q40 and Q41 of 0: limits 100,000 and 500,000; "
         "120,000 x 28% = 33,600 less 7/400 x 380,000 = 6,650",
         {"01/04/2008", "31/03/2009", "120000", "", "", "", "2", "0", "0"},
         "2008", "120000", "28", "", "", "", "y", "6650.00", "", "", "", "26950.00"},
        {"FY2008, Q40 and Q41 of 0 alone: 120,000 at the small companies rate 21% = 25,200",
         {"01/04/2008", "31/03/2009", "120000", "", "", "", "", "0", "0"},
         "2008", "120000", "21", "", "", "", "y", "", "", "", "", "25200.00"},
        {"01/10/2008-30/09/2009, 1 associate in FY2008 (Q40), 3 in FY2009 (Q41): 182/365 x 100,000 = "
         "49,863 at 21% = 10,471.23; 50,137 at 28% (limits 75,000/375,000) = 14,038.36; relief "
         "7/400 x 275,000 = 4,812.50 x 183/365 = 2,412.84",
         {"01/10/2008", "30/09/2009", "100000", "", "", "", "", "1", "3"},
         "2008", "49863", "21", "2009", "50137", "28", "y", "2412.84", "", "", "", "22096.75"},
        {"FY2012: the main rate of 24% ticks the box too; 2,000,000 x 24% = 480,000",
         {"01/04/2012", "31/03/2013", "2000000"},
         "2012", "2000000", "24", "", "", "", "y", "", "", "", "", "480000.00"},
        {"FY2008: the main rate of 28% doesn't tick; 2,000,000 x 28% = 560,000",
         {"01/04/2008", "31/03/2009", "2000000"},
         "2008", "2000000", "28", "", "", "", "", "", "", "", "", "560000.00"},
        {"open ended investment trust: 20% ticks, then the type clears it",
         {"01/04/2012", "31/03/2013", "100000", "", "1"},
         "2012", "100000", "20", "", "", "", "", "", "", "", "", "20000.00"},
        {"forced standard rate FY2005: 30% and no relief for a small profit",
         {"01/04/2005", "31/03/2006", "30000", "", "", "T"},
         "2005", "30000", "30", "", "", "", "", "", "", "", "", "9000.00"},
        {"FY2004 with distributions of 10,000: effective 4,750 / 30,000 = 15.83; 10,000 x 19% = 1,900; "
         "20,000 x 15.83% = 3,166; 5,066 exceeds 4,750",
         {"01/04/2004", "31/03/2005", "30000", "10000"},
         "2004", "30000", "19", "", "", "", "y", "950.00", "15.83", "1900.00", "3166.00", "5066.00"},
        {"distributions of 0.005: matched at 0.00, no tax on the rest",
         {"01/04/2004", "31/03/2005", "30000", "0.005"},
         "2004", "30000", "19", "", "", "", "y", "950.00", "15.83", "0.00", "0.00", "4750.00"},
        {"an effective rate of exactly 0 shows as zero; 5,000 x 19% = 950",
         {"01/04/2004", "31/03/2005", "8000", "5000"},
         "2004", "8000", "0", "", "", "", "", "", "zero", "950.00", "0.00", "950.00"},
        {"effective rate of 19 or more: no matching",
         {"01/04/2004", "31/03/2005", "200000", "50000"},
         "2004", "200000", "19", "", "", "", "y", "", "", "", "", "38000.00"},
        {"other profit counts for the limits only: 350,000 against them, FY2010 28% on 100,000 = 28,000 "
         "less 7/400 x 1,150,000 x 100,000 / 350,000 = 5,750",
         {"01/04/2010", "31/03/2011", "100000", "", "", "", "", "", "", "250000"},
         "2010", "100000", "28", "", "", "", "y", "5750.00", "", "", "", "22250.00"},
        {"2005/2006 straddle: 90/365 x 30,000 = 7,397 at 19% = 1,405.43; 22,603 at 19% = 4,294.57; "
         "relief 19/400 x 20,000 = 950 x 90/365 = 234.24; effective (1,405.43 - 234.24) / 7,397 = 15.83; "
         "1,900.00 + 15.83% x (7,397 - 10,000) = -412.05, + 4,294.57",
         {"01/01/2006", "31/12/2006", "30000", "10000"},
         "2005", "7397", "19", "2006", "22603", "19", "y", "234.24", "15.83", "1900.00", "-412.05", "5782.52"},
    };
    for (const auto& c : cases) {
        const CMapStringToString r = charge05(c.in);
        const std::pair<const char*, const char*> expected[] = {
            {"Q43", c.q43}, {"Q44", c.q44}, {"Q45", c.q45}, {"Q53", c.q53}, {"Q54", c.q54}, {"Q55", c.q55},
            {"Q42", c.q42}, {"Q64", c.q64}, {"Q66", c.q66}, {"Q68", c.q68}, {"Q69", c.q69}};
        for (const auto& [key, value] : expected) EXPECT_EQ(result(r, key), value) << key << ": " << c.working;
        EXPECT_EQ(total(r), c.chargeable) << c.working;
        for (const char* unset : {"Q70", "Q330", "Q46"}) EXPECT_EQ(result(r, unset), "<unset>") << c.working;
    }
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
