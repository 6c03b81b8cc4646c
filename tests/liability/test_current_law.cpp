// Current law, chosen per return (box `rates`) or per process (CT600_RATES):
// whole third-generation returns through ctv3_16, every figure worked by hand
// with the engine's rounding. From FY2023: main rate 25%, small profits rate
// 19%, limits 50,000 and 250,000 of augmented profits A, relief
// 3/200 x (U - A) x N / A; limits divided by 1 + associated companies, then
// scaled by days/365 for a short period, each time truncated to the pound;
// the first year's share of the profit rounded to the pound, each year's tax
// to the penny, each year's share of the relief (days/period days) to the
// penny below.
#include <gtest/gtest.h>

#include <cstdlib>

#include "common/current_law.h"
#include "entry/exports.h"
#include "liability/liability.h"
#include "support.h"

namespace {

// CT600_RATES as a test sets it, put back afterwards.
class RatesEnv {
public:
    explicit RatesEnv(const char* value) {
        if (const char* old = std::getenv("CT600_RATES")) saved_ = old, had_ = true;
        if (value) setenv("CT600_RATES", value, 1);
        else unsetenv("CT600_RATES");
    }
    ~RatesEnv() {
        if (had_) setenv("CT600_RATES", saved_.c_str(), 1);
        else unsetenv("CT600_RATES");
    }

private:
    std::string saved_;
    bool had_ = false;
};

struct Case {
    const char* what;
    const char *from, *to, *q155;
    Texts extra;  // further boxes of the return
    // Expected boxes after the run.
    const char *q330, *q335, *q340, *q380, *q385, *q390, *q430, *q435, *q440, *q329, *q70;
};

const Case kCases[] = {
    // 01/04/2023-31/03/2024 is one year of 366 days: no short-period scaling.
    {"FY2023 under the lower limit", "01/04/2023", "31/03/2024", "40000", {},
     // A 40,000 <= 50,000: small profits rate. 40,000 x 19% = 7,600.00.
     "2023", "40000", "19", "", "", "", "7600.000000", "", "7600.000000", "yes", "7600.00"},
    {"FY2023 at the lower limit", "01/04/2023", "31/03/2024", "50000", {},
     // At the limit still 19%: 9,500.00.
     "2023", "50000", "19", "", "", "", "9500.000000", "", "9500.000000", "yes", "9500.00"},
    {"FY2023 a pound above the lower limit", "01/04/2023", "31/03/2024", "50001", {},
     // 50,001 x 25% = 12,500.25; relief 3/200 x (250,000 - 50,001) = 2,999.985,
     // 366/366 of it to the penny below 2,999.98; 12,500.25 - 2,999.98 = 9,500.27.
     "2023", "50001", "25", "", "", "", "12500.250000", "2999.98", "9500.270000", "yes", "9500.27"},
    {"FY2023 between the limits (ACCA 49,250)", "01/04/2023", "31/03/2024", "200000", {},
     // 200,000 x 25% = 50,000.00; 3/200 x (250,000 - 200,000) = 750.00; 49,250.00.
     "2023", "200000", "25", "", "", "", "50000.000000", "750.00", "49250.000000", "yes", "49250.00"},
    {"FY2023 at the upper limit", "01/04/2023", "31/03/2024", "250000", {},
     // Relief 3/200 x 0 = 0: main rate, no tick. 62,500.00.
     "2023", "250000", "25", "", "", "", "62500.000000", "", "62500.000000", "", "62500.00"},
    {"FY2023 above the upper limit", "01/04/2023", "31/03/2024", "300000", {},
     // 300,000 x 25% = 75,000.00.
     "2023", "300000", "25", "", "", "", "75000.000000", "", "75000.000000", "", "75000.00"},
    {"one associated company", "01/04/2023", "31/03/2024", "100000", {{"Q326", "1"}},
     // Limits / 2: 25,000 and 125,000. 100,000 x 25% = 25,000.00;
     // 3/200 x (125,000 - 100,000) = 375.00; 24,625.00.
     "2023", "100000", "25", "", "", "", "25000.000000", "375.00", "24625.000000", "yes", "24625.00"},
    {"nine months (CTM03930)", "01/04/2023", "31/12/2023", "100000", {},
     // 275 days: 50,000 x 275/365 = 37,671.23 -> 37,671; 250,000 x 275/365 =
     // 188,356.16 -> 188,356. 100,000 x 25% = 25,000.00;
     // 3/200 x (188,356 - 100,000) = 1,325.34; 23,674.66.
     "2023", "100000", "25", "", "", "", "25000.000000", "1325.34", "23674.660000", "yes", "23674.66"},
    {"over 1 April 2024, two associated companies (CTM03956: 13,325)", "01/01/2024", "31/12/2024", "55000",
     {{"Q326", "2"}},
     // 366 days, 91 in FY2023, 275 in FY2024. Limits / 3: 16,666 and 83,333.
     // 91/366 x 55,000 = 13,674.86 -> 13,675; FY2024 41,325. Both at 25%:
     // 3,418.75 + 10,331.25 = 13,750.00. Relief 3/200 x (83,333 - 55,000) =
     // 424.995: 91/366 of it 105.668 -> 105.66, 275/366 of it 319.327 -> 319.32;
     // 424.98. 13,750.00 - 424.98 = 13,325.02: HMRC's 13,325 works the limit
     // as 83,333.33 and the relief once; the engine truncates the limit to the
     // pound and takes each year's share to the penny below.
     "2023", "13675", "25", "2024", "41325", "25", "13750.000000", "424.98", "13325.020000", "yes", "13325.02"},
    {"over 1 April 2023", "01/01/2023", "31/12/2023", "100000", {},
     // 365 days, 90 in FY2022 (19% flat, no limits), 275 in FY2023.
     // 90/365 x 100,000 = 24,657.53 -> 24,658; FY2023 75,342.
     // 24,658 x 19% = 4,685.02; 75,342 x 25% = 18,835.50; 23,520.52.
     // FY2023 relief 3/200 x (250,000 - 100,000) = 2,250 x 275/365 = 1,695.205 -> 1,695.20.
     // 23,520.52 - 1,695.20 = 21,825.32.
     "2022", "24658", "19", "2023", "75342", "25", "23520.520000", "1695.20", "21825.320000", "yes", "21825.32"},
    {"over 1 April 2023 above the upper limit", "01/01/2023", "31/12/2023", "300000", {},
     // 90/365 x 300,000 = 73,972.60 -> 73,973; FY2023 226,027.
     // 73,973 x 19% = 14,054.87; 226,027 x 25% = 56,506.75; 70,561.62.
     // FY2022's 19% is no small profits rate: no tick.
     "2022", "73973", "19", "2023", "226027", "25", "70561.620000", "", "70561.620000", "", "70561.62"},
    {"associated companies by financial year", "01/01/2024", "31/12/2024", "100000",
     {{"Q326", "5"}, {"Q327", "0"}, {"Q328", "1"}},
     // Q327 and Q328 are filled, so Q326 is not read. 91/366 x 100,000 =
     // 24,863.39 -> 24,863; FY2024 75,137. 6,215.75 + 18,784.25 = 25,000.00.
     // FY2023, none associated: 3/200 x 150,000 = 2,250 x 91/366 = 559.426 -> 559.42.
     // FY2024, one: limits 25,000 and 125,000; 3/200 x 25,000 = 375 x 275/366 =
     // 281.762 -> 281.76. Relief 841.18; 25,000.00 - 841.18 = 24,158.82.
     "2023", "24863", "25", "2024", "75137", "25", "25000.000000", "841.18", "24158.820000", "yes", "24158.82"},
    {"close investment-holding company", "01/04/2023", "31/03/2024", "40000", {{"co_type", "2"}},
     // The main rate whatever the profit: 40,000 x 25% = 10,000.00.
     "2023", "40000", "25", "", "", "", "10000.000000", "", "10000.000000", "", "10000.00"},
    {"open ended investment company", "01/04/2023", "31/03/2024", "40000", {{"co_type", "1"}},
     // 20% as before: 8,000.00.
     "2023", "40000", "20", "", "", "", "8000.000000", "", "8000.000000", "", "8000.00"},
    {"augmented profits above taxable profits", "01/04/2023", "31/03/2024", "40000", {{"Q620", "20000"}},
     // A = 40,000 + 20,000 = 60,000 > 50,000: 25% on N = 40,000 = 10,000.00.
     // 3/200 x (250,000 - 60,000) x 40,000 / 60,000 = 1,900.00; 8,100.00.
     "2023", "40000", "25", "", "", "", "10000.000000", "1900.00", "8100.000000", "yes", "8100.00"},
    {"FY2026, the last year of the table", "01/04/2026", "31/03/2027", "200000", {},
     // As FY2023: 50,000.00 - 750.00.
     "2026", "200000", "25", "", "", "", "50000.000000", "750.00", "49250.000000", "yes", "49250.00"},
    {"FY2022 short, with an associate: no limits", "01/04/2022", "31/12/2022", "100000", {{"Q326", "1"}},
     // 19% on all profits, nothing to reduce: 19,000.00.
     "2022", "100000", "19", "", "", "", "19000.000000", "", "19000.000000", "", "19000.00"},
    {"FY2015: the years before the table as by default", "01/04/2015", "31/03/2016", "300000", {},
     // 20% main rate, relief fraction 0/100: 60,000.00.
     "2015", "300000", "20", "", "", "", "60000.000000", "", "60000.000000", "", "60000.00"},
};

class CurrentLaw : public testing::Test {
protected:
    QuietErrors quiet;
    RatesEnv env{nullptr};
    CMapStringToString boxes, out;
    void run(const char* from, const char* to, const char* profit) {
        boxes["from"] = from;
        boxes["to"] = to;
        boxes["Q155"] = profit;
        CString prefix;
        EXPECT_EQ(ctv3_16(&boxes, &prefix, &out), 1);
    }
};

TEST_F(CurrentLaw, ReturnsWorkedByHand) {
    for (const Case& c : kCases) {
        boxes.RemoveAll();
        out.RemoveAll();
        boxes["rates"] = "current";
        for (const auto& [key, value] : c.extra) boxes[key] = value;
        run(c.from, c.to, c.q155);
        expectResults(boxes, {{"Q330", c.q330}, {"Q335", c.q335}, {"Q340", c.q340}, {"Q380", c.q380},
                              {"Q385", c.q385}, {"Q390", c.q390}, {"Q430", c.q430}, {"Q435", c.q435},
                              {"Q440", c.q440}, {"Q329", c.q329}, {"Q70", c.q70}},
                      c.what);
    }
}

TEST_F(CurrentLaw, ByDefaultNothingChanges) {
    // FY2023 at 200,000 with an associate: the default ladder's 19% on all
    // profits, 38,000.00; Q326, Q329 and Q620 are not touched.
    boxes["Q326"] = "1";
    boxes["Q620"] = "70000";
    run("01/04/2023", "31/03/2024", "200000");
    expectResults(boxes, {{"Q340", "19"}, {"Q430", "38000.000000"}, {"Q435", ""}, {"Q440", "38000.000000"},
                          {"Q70", "38000.00"}, {"Q326", "1"}, {"Q329", "<unset>"}, {"Q620", "70000"}});
    EXPECT_EQ(valueAt(*parseXml(result(boxes, "xml/CT/CTchargeable")), "Rates"), "<missing>");
    EXPECT_EQ(tempFile("calc.htm").find("current law"), std::string::npos);
}

TEST_F(CurrentLaw, TheTickIsComputedUnlessOverridden) {
    boxes["rates"] = "current";
    boxes["Q329"] = "no!";
    run("01/04/2023", "31/03/2024", "40000");
    EXPECT_EQ(result(boxes, "Q329"), "no!");
    // A stale tick goes when the profit no longer earns it.
    boxes["Q329"] = "yes";
    run("01/04/2023", "31/03/2024", "300000");
    EXPECT_EQ(result(boxes, "Q329"), "");
    // No profit: no tick, no relief left from the run before.
    boxes["Q435"] = "750.00";
    run("01/04/2023", "31/03/2024", "0");
    expectResults(boxes, {{"Q329", ""}, {"Q435", ""}, {"Q440", "zero"}});
}

TEST_F(CurrentLaw, ChosenByTheBoxOrTheEnvironment) {
    struct Choice {
        const char* box;  // null: no box
        const char* env;  // null: unset
        RateLadder expected;
    };
    const Choice choices[] = {
        {nullptr, nullptr, RateLadder::Default},
        {"current", nullptr, RateLadder::CurrentLaw},
        {" Current ", nullptr, RateLadder::CurrentLaw},
        {nullptr, "current", RateLadder::CurrentLaw},
        {"", "current", RateLadder::CurrentLaw},         // an empty box says nothing
        {"default", "current", RateLadder::Default},     // the box wins
        {"current", "default", RateLadder::CurrentLaw},  // either way
        {"currentlaw", nullptr, RateLadder::Default},    // anything else is the default
        {nullptr, "2023", RateLadder::Default},
    };
    for (const Choice& c : choices) {
        RatesEnv env(c.env);
        CMapStringToString map;
        if (c.box) map["rates"] = c.box;
        EXPECT_EQ(ChosenLadder(map), c.expected) << (c.box ? c.box : "-") << " / " << (c.env ? c.env : "-");
        EXPECT_EQ(map.GetCount(), c.box ? 1 : 0);
    }
    // The process-wide choice reaches a whole return.
    RatesEnv current("current");
    run("01/04/2023", "31/03/2024", "200000");
    EXPECT_EQ(result(boxes, "Q440"), "49250.000000");
}

TEST_F(CurrentLaw, TheReportShowsLawLimitsReductionsAndRelief) {
    // 01/04/2023-31/12/2023, 275 days, one associated company, 60,000.
    // Limits / 2: 25,000 and 125,000; x 275/365: 18,835.62 -> 18,835 and
    // 94,178.08 -> 94,178. 60,000 x 25% = 15,000.00;
    // 3/200 x (94,178 - 60,000) = 512.67; 14,487.33.
    boxes["rates"] = "current";
    boxes["Q326"] = "1";
    run("01/04/2023", "31/12/2023", "60000");
    const std::string html = tempFile("calc.htm");
    for (const char* piece :
         {"<H1>Corporation tax chargeable</H1><p><b>Rates: current law</b>", "CTA 2010 ss18A-18N",
          "<b>1 associated companies</b><br>50000 threshhold reduced to 25000<br>"
          "250000 threshhold reduced to 125000<br>",
          "<b><b>short accounting period - 275 days</b><br>25000 threshhold reduced to 18835<br>"
          "125000 threshhold reduced to 94178<br>",
          "60000 @ 25% = 15000.00<BR>", "<b>Marginal relief</b><br>(94178-60000) x  (3 / 200) = 512.67<BR>\n",
          "275/275 x 512.67 = 512.67<BR>", "<b>Tax Chargeable</b></td><td align=right>14487.33</td>"})
        EXPECT_NE(html.find(piece), std::string::npos) << piece << "\n" << html;

    const auto tree = parseXml(tempFile("ctcharge.xml"));
    CXMLVar* fy1 = nodeAt(tree.get(), "FY1");
    ASSERT_NE(fy1, nullptr);
    EXPECT_EQ(valueAt(*tree, "Rates"), "current");
    const auto attr = [fy1](const char* path, const char* name) {
        const CXMLVar* node = nodeAt(fy1, path);
        return node ? node->GetAttr(name).str() : std::string("<missing>");
    };
    EXPECT_EQ(attr("Reductions[1]", "desc"), "1 associated companies");
    EXPECT_EQ(attr("Reductions[2]/Reduction[2]", "to"), "94178");
    for (const auto& [path, value] : Texts{{"FY1/MSCR/M", "94178.00"}, {"FY1/MSCR/m1", "512.67"},
                                           {"FY1/Rate", "25.00"}, {"TotalMRR", "512.67"}, {"Total", "14487.33"}})
        EXPECT_EQ(valueAt(*tree, path), value) << path;
}

TEST(CurrentLawRates, SmallProfitsRateOnlyFromFY2023) {
    for (const auto& [year, rate] : std::initializer_list<std::pair<int, double>>{
             {2010, 0}, {2022, 0}, {2023, 19}, {2026, 19}, {2040, 19}})
        EXPECT_EQ(SmallProfitsRate(year), rate) << year;
}

}  // namespace
