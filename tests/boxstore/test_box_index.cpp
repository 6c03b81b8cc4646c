// The run's index over the box map must answer as the map itself would: for
// keys the store wrote, keys made behind its back, keys too long to index,
// a table that fills up, and numbers kept from before the run.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

#include "boxstore/calcbase.h"

namespace {

class ScriptCalc : public CBaseCalc {
public:
    std::function<void(ScriptCalc&)> script;
    void Calc() override {
        if (script) script(*this);
    }
};

void quietErrors(const CObList&, const CStringList*, void*) {}

class BoxIndexTest : public testing::Test {
protected:
    void SetUp() override { SetErrorSink(quietErrors, nullptr); }
    void TearDown() override { SetErrorSink(nullptr, nullptr); }

    static void run(ScriptCalc& calc, CMapStringToString& boxes, const char* prefix) {
        CString p(prefix);
        CMapStringToString out;
        Helper(&calc, &boxes, &p, &out);
    }
};

// A number set before the run (nothing written, m_NoWrite still 1) and again
// inside it is one entry of m_Values, holding the later number, 7.
TEST_F(BoxIndexTest, ANumberKeptFromBeforeTheRunIsReplacedNotRepeated) {
    CMapStringToString boxes;
    ScriptCalc calc;
    calc.m_pBoxes = &boxes;
    calc.SetBox("Q5", 5);
    calc.script = [](ScriptCalc& c) {
        EXPECT_EQ(c.GetValue("Q5"), 5.0);
        c.SetBox("Q5", 7);
        EXPECT_EQ(c.GetValue("Q5"), 7.0);
    };
    run(calc, boxes, "");
    EXPECT_EQ(calc.GetValue("Q5"), 7.0);
    int entries = 0;
    for (const auto& [key, value] : calc.m_Values) entries += key == "Q5";
    EXPECT_EQ(entries, 1);
    EXPECT_EQ(boxes["Q5"], "7.000000");
}

// A text put straight into the map during the run (as a driver handed the
// map would) is read, though the key was looked up as missing before.
TEST_F(BoxIndexTest, AnEntryMadeBehindTheStoresBackIsRead) {
    CMapStringToString boxes;
    boxes["Q1"] = "1";
    ScriptCalc calc;
    calc.script = [](ScriptCalc& c) {
        EXPECT_EQ(c.GetBox("Q9"), 0.0);
        EXPECT_EQ(c.FindBox("Q9"), nullptr);
        (*c.m_pBoxes)["Q9"] = "12";
        EXPECT_EQ(c.GetBox("Q9"), 12.0);
        c.SetBox("Q10", c.GetBox("Q9") + c.GetBox("Q1"));
    };
    run(calc, boxes, "");
    EXPECT_EQ(boxes["Q10"], "13.000000");
}

// Keys longer than the index holds, under a prefix, read back what was
// written: 2.5 + 0.25 = 2.75.
TEST_F(BoxIndexTest, LongKeysUnderAPrefixGoToTheMap) {
    CMapStringToString boxes;
    boxes["SQA10B.123456789"] = "2.5";
    ScriptCalc calc;
    calc.script = [](ScriptCalc& c) {
        c.SetBox("QA10B.1234567890", c.GetBox("QA10B.123456789") + 0.25);
        EXPECT_EQ(c.GetBox("QA10B.1234567890"), 2.75);
        EXPECT_EQ(c.GetValue("QA10B.1234567890"), 2.75);
    };
    run(calc, boxes, "S");
    EXPECT_EQ(boxes["SQA10B.1234567890"], "2.750000");
    EXPECT_EQ(boxes.PLookup("QA10B.1234567890"), nullptr);
}

// Far more new keys than the index has room for: every one is written once,
// reads back its own number n, and the row sum of 1..3000 is 3000*3001/2.
TEST_F(BoxIndexTest, AFullIndexLeavesTheRestToTheMap) {
    CMapStringToString boxes;
    ScriptCalc calc;
    calc.script = [](ScriptCalc& c) {
        for (int n = 1; n <= 3000; ++n) c.SetBox(CBaseCalc::BoxKey("QR%d", n), n);
        for (int n = 1; n <= 3000; n += 299) {
            EXPECT_EQ(c.GetBox(CBaseCalc::BoxKey("QR%d", n)), n);
            EXPECT_EQ(c.GetValue(CBaseCalc::BoxKey("QR%d", n)), n);
        }
        c.SetBox("Q1", c.SumBoxes("QR%d", 1, 3000));
    };
    run(calc, boxes, "");
    EXPECT_EQ(boxes["Q1"], "4501500.000000");
    EXPECT_EQ(boxes["QR3000"], "3000.000000");
    std::set<std::string> keys;
    for (const auto& [key, value] : calc.m_Values) keys.insert(key.str());
    EXPECT_EQ(keys.size(), calc.m_Values.size());
    EXPECT_EQ(keys.size(), 3001u);
}

}  // namespace
