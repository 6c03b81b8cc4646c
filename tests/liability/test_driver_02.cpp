// The first-generation driver and its year function: Q33 and the period to
// the rate lines Q39 to Q51 and relief Q60, with calc.htm and nothing else.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "liability/liability.h"
#include "platform/message_box.h"
#include "support.h"

namespace {

struct Inputs {
    const char *From, *To, *q33;
    const char *q35 = "", *q36 = "", *q37 = "", *q38 = "", *q34 = "";
};

CMapStringToString charge02(const Inputs& in, const char* prefix = "", CMapStringToString* boxesOut = nullptr) {
    CMapStringToString boxes, results;
    const CString p(prefix);
    boxes["From"] = in.From;
    boxes["To"] = in.To;
    boxes[p + "Q33"] = in.q33;
    boxes[p + "Q34"] = in.q34;
    boxes[p + "Q35"] = in.q35;
    boxes[p + "Q36"] = in.q36;
    boxes[p + "Q37"] = in.q37;
    boxes[p + "Q38"] = in.q38;
    CTcharge_02(&boxes, p, &results);
    if (boxesOut) *boxesOut = boxes;
    return results;
}

// The figure of the report's last row.
std::string chargeableInReport() {
    const std::string html = tempFile("calc.htm");
    const std::string row = "<tr><td><b>Tax Chargeable</b></td><td align=right>";
    const auto at = html.find(row);
    if (at == std::string::npos) return "<no row>";
    const auto start = at + row.size();
    return html.substr(start, html.find('<', start) - start);
}

// Cases in tests/data/charge02_worked.tsv, each with its working: the inputs,
// then the boxes the driver gives (empty: blank) and the report's last row.
TEST(CTcharge02, ResultsWorkedByHand) {
    const int n = forEachCase("charge02_worked.tsv", 17, "# working",
                              [&](const std::vector<std::string>& f, const std::vector<std::string>& keys) {
        const CMapStringToString r = charge02({f[1].c_str(), f[2].c_str(), f[3].c_str(), f[4].c_str(), f[5].c_str(),
                                               f[6].c_str(), f[7].c_str(), f[8].c_str()});
        for (int k = 9; k < 16; ++k) EXPECT_EQ(result(r, keys[k].c_str()), f[k]) << keys[k] << ": " << f[0];
        EXPECT_EQ(chargeableInReport(), f[16]) << f[0];
        EXPECT_EQ(r.GetCount(), 7) << f[0];  // no tree, no other key
    });
    EXPECT_EQ(n, 10);
}

TEST(CTcharge02, StartingRateYears) {
    // FY2000/2001: 10% up to 10,000, then 20% with 1/40; FY2002 to 2005: 0%,
    // then 19% with 19/400. Relief is taken as it stands, not to the penny below.
    struct Case {
        int fy;
        const char *profit, *rate, *chargeable;
    };
    const Case cases[] = {
        {2000, "10000", "10", "1000.00"},
        {2001, "10040", "20", "1009.00"},  // 2,008.00 - 39,960 / 40 = 999.00
        {2002, "10000", "0", "0.00"},
        {2003, "10001", "19", "0.24"},     // 1,900.19 - 1,899.9525
        {2003, "50000", "19", "9500.00"},
        {2004, "50001", "19", "9500.19"},
        {2005, "30000", "19", "4750.00"},
    };
    for (const auto& c : cases) {
        const std::string from = "01/04/" + std::to_string(c.fy), to = "31/03/" + std::to_string(c.fy + 1);
        const CMapStringToString r = charge02({from.c_str(), to.c_str(), c.profit});
        EXPECT_EQ(result(r, "Q41"), c.rate) << c.fy << " " << c.profit;
        EXPECT_EQ(chargeableInReport(), c.chargeable) << c.fy << " " << c.profit;
    }
}

TEST(CTcharge02, ReportWordForWord) {
    charge02({"01/04/2001", "31/03/2002", "30000"});
    EXPECT_EQ(tempFile("calc.htm"), readFile(CT600_SOURCE_DIR "/tests/data/calc_gen1_2001.htm"));
}

TEST(CTcharge02, WritesNoTreeAndNoTreeFile) {
    const CString treeFile = NativePath(GetTempDir() + "\\ctcharge.xml");
    std::remove(treeFile.c_str());
    const CMapStringToString r = charge02({"01/04/2001", "31/03/2002", "30000"});
    EXPECT_EQ(r.PLookup("xml/CT/CTchargeable"), nullptr);
    EXPECT_FALSE(exists(treeFile));
}

TEST(CTcharge02, CapitalDateFieldsFirst) {
    struct Case {
        const char *From, *from, *To, *to, *q39;
    };
    const Case cases[] = {
        {"01/04/2001", "01/04/2005", "31/03/2002", "31/03/2006", "2001"},
        {"", "01/04/2005", "", "31/03/2006", "2005"},
        {"", "01/04/2002", "31/03/2003", "", "2002"},
    };
    for (const auto& c : cases) {
        CMapStringToString boxes, results;
        boxes["From"] = c.From;
        boxes["from"] = c.from;
        boxes["To"] = c.To;
        boxes["to"] = c.to;
        boxes["Q33"] = "30000";
        CTcharge_02(&boxes, "", &results);
        EXPECT_EQ(result(results, "Q39"), c.q39);
        EXPECT_EQ(result(results, "Q49"), "");
    }
}

TEST(CTcharge02, ReadsBoxesUnderThePrefixAndDatesWithout) {
    CMapStringToString boxes, results;
    boxes["From"] = "01/04/2001";
    boxes["To"] = "31/03/2002";
    boxes["Q33"] = "30000";
    boxes["SQ33"] = "8000";
    boxes["SQ35"] = "2001";
    boxes["SQ36"] = "1";  // limits 5,000 / 25,000: 8,000 at 20% = 1,600 less (25,000 - 8,000) / 40 = 425
    CTcharge_02(&boxes, "S", &results);
    expectResults(results, {{"Q40", "8000"}, {"Q60", "425.00"}, {"SQ40", "<unset>"}});
    EXPECT_EQ(chargeableInReport(), "1175.00");
}

TEST(CTcharge02, BadInputDoesNotBreakTheRun) {
    const Inputs cases[] = {{"", "", "1000"},
                            {"garbage", "31/03/2002", "1000"},
                            {"01/04/2002", "01/04/2001", "1000"},
                            {"01/04/2001", "31/03/2002", "1e300", "2001", "99999999999"}};
    for (const auto& in : cases) {
        const CMapStringToString r = charge02(in);
        EXPECT_NE(r.PLookup("Q60"), nullptr) << in.From << " " << in.To;
    }
    CTcharge_02(nullptr, "", nullptr);
}

// One call of the year function.
struct Slice02 {
    int fy = 0, fydays = 0, totaldays = 0;
    double portion = 0, rate = 0, tax = 0;
    CString html, reliefrows;
};

Slice02 slice02(const char* from, const char* to, int first, double profit, int days, double& relief,
                const CMapStringToString& associates) {
    Slice02 s;
    s.tax = CTyear_02(from, to, s.fy, s.fydays, s.totaldays, first, s.html, profit, s.portion, s.rate, profit, relief,
                      associates, days, s.reliefrows, 0);
    return s;
}

TEST(CTyear02, TaxAndReliefShareUnrounded) {
    CMapStringToString associates;
    associates["2001"] = "1";
    double relief = 0;
    // 182/365 x 20,000 = 9,972.60 -> 9,973 at 20%; relief 125 x 182/365 = 62.3287...
    const Slice02 one = slice02("01/10/2001", "30/09/2002", 1, 20000, 365, relief, associates);
    EXPECT_EQ(one.fy, 2001);
    EXPECT_EQ(one.fydays, 182);
    EXPECT_EQ(one.portion, 9973);
    EXPECT_EQ(one.rate, 20);
    EXPECT_DOUBLE_EQ(one.tax, 1994.6);
    EXPECT_DOUBLE_EQ(relief, 125.0 * 182 / 365);
    EXPECT_NE(one.html.Find("<B>Marginal Starting Rate relief</B><BR>"), -1);
    EXPECT_NE(one.html.Find("1 associated companies"), -1);
    EXPECT_EQ(one.reliefrows, "<tr><td>2001</td><td align=right>62.33</td></tr>");
    // The second year is rounded by itself and has no associates in the map.
    const Slice02 two = slice02("01/10/2001", "30/09/2002", 0, 20000, 365, relief, associates);
    EXPECT_EQ(two.fy, 2002);
    EXPECT_EQ(two.portion, 10027);
    EXPECT_DOUBLE_EQ(two.tax, 19 * 10027 * 0.01);
    EXPECT_EQ(two.html.Find("associated"), -1);
    EXPECT_NEAR(relief, 125.0 * 182 / 365 + 1425.0 * 183 / 365, 1e-9);
}

TEST(CTyear02, AssociatesByYear) {
    CMapStringToString map;
    map["2003"] = "2";
    map["2004"] = "junk";
    EXPECT_EQ(AssociatesInYear(map, 2003), 2);
    EXPECT_EQ(AssociatesInYear(map, 2004), 0);
    EXPECT_EQ(AssociatesInYear(map, 2005), 0);
    EXPECT_EQ(map.GetCount(), 2);  // looking up adds nothing
}

}  // namespace
