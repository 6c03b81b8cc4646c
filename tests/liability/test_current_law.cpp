// Current law, chosen per return (box `rates`) or per process (CT600_RATES).
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

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

// Cases in tests/data/current_law_cases.tsv, each with its working.
TEST_F(CurrentLaw, ReturnsWorkedByHand) {
    const int n = forEachCase("current_law_cases.tsv", 16, "# why",
                              [&](const std::vector<std::string>& f, const std::vector<std::string>& keys) {
        boxes.RemoveAll();
        out.RemoveAll();
        boxes["rates"] = "current";
        std::stringstream extra(f[4]);
        for (std::string kv; extra >> kv;) boxes[kv.substr(0, kv.find('=')).c_str()] = kv.substr(kv.find('=') + 1).c_str();
        run(f[1].c_str(), f[2].c_str(), f[3].c_str());
        Texts expected;
        for (int k = 5; k < 16; ++k) expected.push_back({keys[k].c_str(), f[k].c_str()});
        expectResults(boxes, expected, f[0]);
    });
    EXPECT_EQ(n, 19);
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
    // Limits / 2: 25,000 and 125,000; x 275/365: 18,835.616 and 94,178.082,
    // held exactly and shown to the penny. 60,000 x 25% = 15,000.00;
    // 3/200 x (94,178.082 - 60,000) = 512.671 -> 512.67; 14,487.33.
    boxes["rates"] = "current";
    boxes["Q326"] = "1";
    run("01/04/2023", "31/12/2023", "60000");
    const std::string html = tempFile("calc.htm");
    for (const char* piece :
         {"<H1>Corporation tax chargeable</H1><p><b>Rates: current law</b>", "CTA 2010 ss18A-18N",
          "<b>1 associated companies</b><br>50000 threshhold reduced to 25000<br>"
          "250000 threshhold reduced to 125000<br>",
          "<b><b>short accounting period - 275 days</b><br>25000 threshhold reduced to 18835.62<br>"
          "125000 threshhold reduced to 94178.08<br>",
          "60000 @ 25% = 15000.00<BR>", "<b>Marginal relief</b><br>(94178.08-60000) x  (3 / 200) = 512.67<BR>\n",
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
    EXPECT_EQ(attr("Reductions[2]/Reduction[2]", "to"), "94178.08");
    for (const auto& [path, value] : Texts{{"FY1/MSCR/M", "94178.08"}, {"FY1/MSCR/m1", "512.67"},
                                           {"FY1/Rate", "25.00"}, {"TotalMRR", "512.67"}, {"Total", "14487.33"}})
        EXPECT_EQ(valueAt(*tree, path), value) << path;
}

TEST(CurrentLawRates, SmallProfitsRateOnlyFromFY2023) {
    for (const auto& [year, rate] : std::initializer_list<std::pair<int, double>>{
             {2010, 0}, {2022, 0}, {2023, 19}, {2026, 19}, {2040, 19}})
        EXPECT_EQ(SmallProfitsRate(year), rate) << year;
}

}  // namespace
