// The third-generation driver: from Q315 and the period to Q70 and the rate lines.
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
    const char *from, *to, *q315, *q38 = "", *q67 = "", *coType = "", *force = "", *q39 = "";
};

CMapStringToString charge(const Inputs& in, CMapStringToString* boxesOut = nullptr) {
    CMapStringToString boxes, results;
    boxes["from"] = in.from;
    boxes["to"] = in.to;
    boxes["Q315"] = in.q315;
    boxes["Q38"] = in.q38;
    boxes["Q67"] = in.q67;
    boxes["co_type"] = in.coType;
    boxes["forcestandardrate"] = in.force;
    boxes["Q39"] = in.q39;
    CTcharge_16(&boxes, "", &results);
    if (boxesOut) *boxesOut = boxes;
    return results;
}

// Cases in tests/data/charge16_cases.tsv, with the working where it isn't plain.
TEST(CTcharge16, ResultsByScenario) {
    const int n = forEachCase("charge16_cases.tsv", 16, "# why",
                              [&](const std::vector<std::string>& f, const std::vector<std::string>& keys) {
        const CMapStringToString r = charge({f[1].c_str(), f[2].c_str(), f[3].c_str(), f[4].c_str(), f[5].c_str(),
                                             f[6].c_str(), f[7].c_str(), f[8].c_str()});
        Texts expected = {{"Q42", ""}, {"Q435", ""}, {"Q66", ""}, {"Q68", ""}, {"Q69", ""}, {"Q345", "<unset>"}};
        for (int k = 9; k < 16; ++k) expected.push_back({keys[k].c_str(), f[k].c_str()});
        expectResults(r, expected, f[0].c_str());
    });
    EXPECT_EQ(n, 15);
}

TEST(CTcharge16, MatchingLeavesItsWorkingInTheTree) {
    CXMLVar tree("");
    tree.Open(charge({"01/04/2004", "31/03/2005", "30000", "", "10000"})["xml/CT/CTchargeable"]);
    const char* order[] = {"name", "year", "ref", "Type", "BasicProfit", "OtherProfit", "Profit", "FY1",
                           "TotalBeforeMRR", "TotalMRR", "TotalAfterMRR", "TotalBeforeNCD", "NCDs", "Total"};
    ASSERT_EQ(tree.GetChildCount(), 14);
    for (int i = 0; i < 14; ++i) EXPECT_EQ(tree.children[i]->name, order[i]);
    const std::pair<const char*, const char*> values[] = {
        {"TotalMRR", "950.00"},          {"TotalAfterMRR", "4750.00"}, {"NCDs/ncd", "10000.00"},
        {"NCDs/ncdrate", "19.00"},       {"NCDs/effectiverate", "15.83"}, {"NCDs/ncdtax", "1900.00"},
        {"NCDs/nonncd", "20000.00"},     {"NCDs/nonncd_tax", "3166.00"},  {"FY1/MSRR/m1", "950.00"},
        {"Total", "5066.00"},
    };
    for (const auto& [path, value] : values) EXPECT_EQ(valueAt(tree, path), value) << path;

    tree.Open(charge({"01/04/2004", "31/03/2005", "30000", "", "0.005"})["xml/CT/CTchargeable"]);
    ASSERT_NE(tree.FindChild("NCDs"), nullptr);
    EXPECT_EQ(tree.FindChild("NCDs")->GetChildCount(), 0);
}

TEST(CTcharge16, MissingOrBadDatesEndSilently) {
    const Inputs cases[] = {{"", "31/03/2011", "1000"},         {"01/04/2010", "", "1000"},
                            {"01/04/2011", "31/03/2011", "1000"}, {"31/02/2010", "31/03/2011", "1000"},
                            {"garbage", "more garbage", "1000"}};
    for (const auto& in : cases) {
        CMapStringToString boxes;
        EXPECT_EQ(charge(in, &boxes).GetCount(), 0) << in.from << " " << in.to;
        EXPECT_EQ(boxes.PLookup("name"), nullptr);
    }
    CTcharge_16(nullptr, "", nullptr);
}

TEST(CTcharge16, HugeFiguresDoNotBreakTheRun) {
    for (const char* profit : {"1e300", "99999999999999999999", "-1e300"}) {
        const CMapStringToString r = charge({"01/01/2014", "31/12/2014", profit, "1e300", "1e300"});
        EXPECT_NE(r.PLookup("xml/CT/CTchargeable"), nullptr) << profit;
    }
}

// What the three generations' drivers share, with each one's own keys: the
// no-profit way, and a period above twelve months that is shown and charged.
struct Driver {
    void (*charge)(CMapStringToString*, CString, CMapStringToString*);
    const char *from, *to, *profit;             // the keys read
    const char *leapFrom, *leapTo;              // 366 days, accepted
    const char *longFrom, *longTo;              // 367 days
    std::vector<const char*> blanked, unset;  // without profit
    const char *noProfitReport, *tooLong;
    Texts longResults;
    int noProfitTree;  // children of the short tree; 0 for no tree
};

const Driver kDrivers[] = {
    // 367 days: FY2010 365 days at 21%, FY2011 2 days at 20%.
    // 365/367 x 100,000 = 99,455.04 -> 99,455 x 21% = 20,885.55; 545 x 20% = 109.00.
    {&CTcharge_16, "from", "to", "Q315", "01/04/2011", "31/03/2012", "01/04/2010", "02/04/2011",
     {"Q330", "Q335", "Q340", "Q345"}, {"Q70", "Q380"}, "x no profit\n", "Error: return period cannot exceed 12 months",
     {{"Q380", "2011"}, {"Q70", "20994.55"}}, 7},
    {&CTcharge_05, "from", "to", "Q37", "01/04/2003", "31/03/2004", "01/04/2004", "02/04/2005",
     {"Q43", "Q44", "Q45", "Q46"}, {"Q42", "Q53", "Q64"}, "x no profit\n",
     "Error: return period cannot exceed 12 months", {{"Q53", "2005"}}, 7},
    {&CTcharge_02, "From", "To", "Q33", "01/04/2003", "31/03/2004", "01/04/2001", "02/04/2002",
     {"Q39", "Q40", "Q49", "Q50"}, {"Q41", "Q51", "Q60"}, "no profit\n",
     "Error: accounting period cannot exceed 12 months", {{"Q49", "2002"}}, 0},
};

CMapStringToString chargeBy(const Driver& d, const char* from, const char* to, const char* profit) {
    CMapStringToString boxes, results;
    boxes[d.from] = from;
    boxes[d.to] = to;
    boxes[d.profit] = profit;
    d.charge(&boxes, "", &results);
    return results;
}

TEST(AllDrivers, NoProfitBlanksTheFirstYearOnly) {
    for (const Driver& d : kDrivers)
        for (const char* profit : {"0", "-500", "garbage"}) {
            const std::string why = std::string(d.profit) + " = " + profit;
            const CMapStringToString r = chargeBy(d, d.leapFrom, d.leapTo, profit);
            for (const char* key : d.blanked) EXPECT_EQ(result(r, key), "") << key << ", " << why;
            for (const char* key : d.unset) EXPECT_EQ(result(r, key), "<unset>") << key << ", " << why;
            EXPECT_EQ(tempFile("calc.htm"), d.noProfitReport) << why;
            CXMLVar tree("");
            if (const CString* text = r.PLookup("xml/CT/CTchargeable")) tree.Open(*text);
            EXPECT_EQ(tree.GetChildCount(), d.noProfitTree) << why;
        }
}

TEST(AllDrivers, PeriodAboveTwelveMonthsIsShownOnceAndTheRunGoesOn) {
    for (const Driver& d : kDrivers) {
        const MessageCapture messages;
        chargeBy(d, d.leapFrom, d.leapTo, "100000");
        EXPECT_TRUE(messages.lines.empty()) << d.profit;
        const CMapStringToString r = chargeBy(d, d.longFrom, d.longTo, "100000");
        EXPECT_EQ(messages.lines, std::vector<std::string>{d.tooLong});
        expectResults(r, d.longResults, d.profit);
        const std::string heading = "<H2>" + std::string(d.tooLong) + "</H2><H1>Corporation tax chargeable</H1>" +
                                    "<H2>Financial year " + std::string(d.longFrom).substr(6) + "</H2>";
        EXPECT_EQ(tempFile("calc.htm").rfind(heading, 0), 0u) << d.profit;
    }
}

}  // namespace
