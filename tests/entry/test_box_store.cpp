// The reading and writing rules of the box store, on a small calculator whose
// Calc runs whatever the test hands it.
#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "boxstore/calcbase.h"
#include "support/capture.h"

namespace {

class ScriptCalc : public CBaseCalc {
public:
    std::function<void(ScriptCalc&)> script;
    void Calc() override {
        if (script) script(*this);
    }
};

class BoxStore : public testing::Test {
protected:
    const QuietErrors quiet;

    // Runs the script over the boxes with the prefix; returns the result map.
    CMapStringToString run(CMapStringToString& boxes, const char* prefix, std::function<void(ScriptCalc&)> script) {
        ScriptCalc calc;
        calc.script = std::move(script);
        return run(calc, boxes, prefix);
    }
    static CMapStringToString run(ScriptCalc& calc, CMapStringToString& boxes, const char* prefix) {
        CString p(prefix);
        CMapStringToString out;
        Helper(&calc, &boxes, &p, &out);
        return out;
    }
};

// A row sum walks only the rows present; it must equal adding every row in
// turn, to the last bit, and ignore keys that merely look like rows.
TEST_F(BoxStore, RowSumsEqualAddingEveryRowInTurn) {
    CMapStringToString boxes;
    unsigned seed = 12345;
    auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
    for (int n = 0; n < 400; ++n) {
        const int row = static_cast<int>(next() % 230) - 10;
        boxes[CBaseCalc::BoxKey("P/QB5F.%d", row)] = FormatString("%.2f", (static_cast<int>(next() % 2000001) - 1000000) / 100.0);
    }
    // Near misses: leading zeros, signs, a suffix, another column, the stem alone.
    for (const char* key : {"P/QB5F.01", "P/QB5F.+3", "P/QB5F.-0", "P/QB5F.7x", "P/QB5F.", "P/QB5F", "P/QB5FF.3",
                            "P/QB5F.99999999999", "QB5F.4"})
        boxes[key] = "1000000";
    for (const char* prefix : {"P/", ""})
        run(boxes, prefix, [](ScriptCalc& c) {
            for (const auto& [first, last] : {std::pair{1, 200}, std::pair{-10, 230}, std::pair{5, 5}, std::pair{9, 2}}) {
                double expected = 0.0;
                for (int n = first; n <= last; ++n) expected += c.GetBox(CBaseCalc::BoxKey("QB5F.%d", n));
                EXPECT_EQ(c.SumBoxes("QB5F.%d", first, last), expected) << first << ".." << last;
            }
        });
}

TEST_F(BoxStore, BoxKeysAreWhatPrintfMakes) {
    for (const char* format : {"Q%d", "QB5F.%d", "%d", "x%dy", "no number"})
        for (const int n : {0, 7, -3, 330, 2147483647, -2147483647 - 1})
            EXPECT_EQ(CBaseCalc::BoxKey(format, n), FormatString(format, n)) << format << n;
}

TEST_F(BoxStore, ReadsNumbersFromEveryKindOfText) {
    CMapStringToString boxes;
    boxes["A"] = "1000.00!";
    boxes["B"] = "zero";
    boxes["C"] = "";
    boxes["D"] = "12.5";
    boxes["E"] = "free text";
    run(boxes, "", [](ScriptCalc& c) {
        EXPECT_EQ(c.GetBox("A"), 1000.0);
        EXPECT_EQ(c.GetBox("B"), 0.0);
        EXPECT_EQ(c.GetBox("C"), 0.0);
        EXPECT_EQ(c.GetBox("missing"), 0.0);
        EXPECT_EQ(c.GetBox("D"), 12.5);
        EXPECT_EQ(c.GetBox("E"), 0.0);
        EXPECT_EQ(c.BoxLength("B"), 4.0);
        EXPECT_EQ(c.BoxLength("missing"), 0.0);
    });
    EXPECT_EQ(boxes.GetCount(), 5);  // reading added no entry
}

TEST_F(BoxStore, AnOverrideSurvivesAWriteAndFeedsLaterRows) {
    CMapStringToString boxes;
    boxes["Q165"] = "1000.00!";
    run(boxes, "", [](ScriptCalc& c) {
        c.SetBox("Q165", 5);
        EXPECT_EQ(c.GetBox("Q165"), 1000.0);
        EXPECT_EQ(c.GetValue("Q165"), 5.0);
        c.SetBox("Q235", c.GetBox("Q165") * 2);
    });
    EXPECT_EQ(boxes["Q165"], "1000.00!");
    EXPECT_EQ(boxes["Q235"], "2000.000000");
}

TEST_F(BoxStore, WritesNothingWhileNoWriteIsSet) {
    CMapStringToString boxes;
    boxes["Q1"] = "7";
    ScriptCalc calc;
    calc.m_pBoxes = &boxes;
    ASSERT_EQ(calc.m_NoWrite, 1);
    calc.SetBox("Q1", 9);
    calc.SetBox("Q2", 9);
    EXPECT_EQ(boxes["Q1"], "7");
    EXPECT_EQ(boxes.PLookup("Q2"), nullptr);
    EXPECT_EQ(calc.GetValue("Q2"), 9.0);
}

TEST_F(BoxStore, APrefixAppliesToEveryReadAndWrite) {
    CMapStringToString boxes;
    boxes["Q3"] = "1";
    boxes["SQ3"] = "2";
    run(boxes, "S", [](ScriptCalc& c) {
        EXPECT_EQ(c.GetBox("Q3"), 2.0);
        c.SetBox("Q4", c.GetBox("Q3") + 1);
        c.MarkZero("Q5");
    });
    EXPECT_EQ(boxes["SQ4"], "3.000000");
    EXPECT_EQ(boxes["SQ5"], "zero");
    EXPECT_EQ(boxes.PLookup("Q4"), nullptr);
    EXPECT_EQ(boxes["Q3"], "1");
}

TEST_F(BoxStore, SumBoxesOverNumberedKeys) {
    CMapStringToString boxes;
    boxes["QA10B.1"] = "100";
    boxes["QA10B.3"] = "250.5!";
    boxes["QA10B.6"] = "zero";
    boxes["QA10B.7"] = "1000";  // outside the run
    run(boxes, "", [](ScriptCalc& c) {
        EXPECT_EQ(c.SumBoxes("QA10B.%d", 1, 6), 350.5);
        EXPECT_EQ(c.SumBoxes("QA10B.%d", 7, 6), 0.0);
        EXPECT_EQ(c.Sum({"QA10B.1", "QA10B.7"}), 1100.0);
        EXPECT_EQ(CBaseCalc::BoxKey("QF10G.%d", 8), "QF10G.8");
    });
}

TEST_F(BoxStore, MarkZeroAndResultsIgnoreTheOverrideMark) {
    CMapStringToString boxes;
    boxes["Q525"] = "0.00!";
    boxes["Q70"] = "999!";
    boxes["Q430"] = "12";
    CMapStringToString results;
    results["Q70"] = "1234.56";
    results["Q42"] = "";
    const CMapStringToString out = run(boxes, "", [&](ScriptCalc& c) {
        c.MarkZero("Q525");
        c.MarkZero("Q430");  // not nought: left alone
        c.TakeOverResults(results);
    });
    EXPECT_EQ(boxes["Q525"], "zero");
    EXPECT_EQ(boxes["Q430"], "12");
    EXPECT_EQ(boxes["Q70"], "1234.56");
    EXPECT_EQ(boxes["Q42"], "");
    // What reached the box map outside SetBox comes back in the result map.
    EXPECT_EQ(*out.PLookup("Q525"), "zero");
    EXPECT_EQ(*out.PLookup("Q70"), "1234.56");
    EXPECT_EQ(out.PLookup("Q430"), nullptr);
}

TEST_F(BoxStore, BoxDateOkChecksFormAndRanges) {
    struct Case {
        const char* text;
        double ok;
    };
    const Case cases[] = {
        {"", 1},          {"05/04/2016", 1}, {"31/04/2016", 1},  // month length is not checked
        {"1/1/16", 1},    {"00/04/2016", 0}, {"32/01/2016", 0},  {"01/13/2016", 0},
        {"01/00/2016", 0}, {"yesterday", 0}, {"2016", 0},
    };
    for (const auto& c : cases) {
        CMapStringToString boxes;
        boxes["QA15"] = c.text;
        run(boxes, "", [&](ScriptCalc& calc) { EXPECT_EQ(calc.BoxDateOk("QA15"), c.ok) << c.text; });
    }
}

TEST_F(BoxStore, AddErrorRecordsOnlyFailures) {
    CMapStringToString boxes;
    ScriptCalc calc;
    calc.script = [](ScriptCalc& c) {
        EXPECT_EQ(c.AddError(0, "QA15", 1, "not recorded"), 1.0);
        EXPECT_EQ(c.AddError(0, "QA15", 0, "Invalid date"), 0.0);
        EXPECT_EQ(c.AddError(0, "QB5", 0, nullptr), 0.0);
    };
    CString prefix;
    Helper(&calc, &boxes, &prefix, nullptr);
    ASSERT_EQ(calc.m_Errors.GetCount(), 2);
    POSITION pos = calc.m_Errors.GetHeadPosition();
    auto* first = static_cast<CError*>(calc.m_Errors.GetNext(pos));
    auto* second = static_cast<CError*>(calc.m_Errors.GetNext(pos));
    EXPECT_EQ(first->m_Field, "QA15");
    EXPECT_EQ(first->m_Message, "Invalid date");
    EXPECT_EQ(second->m_Field, "QB5");
    EXPECT_EQ(second->m_Message, CError::Lookup(0));
}

TEST_F(BoxStore, TearDownShowsTheErrorsOnce) {
    struct Seen {
        int calls = 0;
        int errors = 0;
    } seen;
    SetErrorSink(
        [](const CObList& errors, const CStringList*, void* ctx) {
            auto* s = static_cast<Seen*>(ctx);
            ++s->calls;
            s->errors += errors.GetCount();
        },
        &seen);
    {
        ScriptCalc calc;
        calc.AddError(0, "QA15", 0, "Invalid date");
    }
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.errors, 1);
    {
        ScriptCalc calc;
        calc.m_ShowErrors = 0;
        calc.AddError(0, "QA15", 0, "Invalid date");
    }
    EXPECT_EQ(seen.calls, 1);
}

// The run's index over the box map must answer as the map itself would: for
// keys the store wrote, keys made behind its back, keys too long to index,
// a table that fills up, and numbers kept from before the run.

// A number set before the run (nothing written, m_NoWrite still 1) and again
// inside it is one entry of m_Values, holding the later number, 7.
TEST_F(BoxStore, ANumberKeptFromBeforeTheRunIsReplacedNotRepeated) {
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
TEST_F(BoxStore, AnEntryMadeBehindTheStoresBackIsRead) {
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
// Keys of every length from 1 to 20 bytes, in pairs that differ in one byte
// only, at every place: each reads back what was stored under it, the one
// from the host's map, the other from the run's own write.
TEST_F(BoxStore, KeysThatDifferInOneByteStayApart) {
    CMapStringToString boxes;
    std::vector<std::pair<std::string, int>> keys;
    for (std::size_t length = 1; length <= 20; ++length)
        for (std::size_t at = 0; at < length; ++at)
            for (const char differing : {'a', 'b'}) {
                std::string key(length, 'k');
                key[at] = differing;
                keys.emplace_back(key, static_cast<int>(keys.size()) + 1);
            }
    for (const auto& [key, n] : keys)
        if (n % 2) boxes[CString(key)] = CString(std::to_string(n));
    run(boxes, "", [&keys](ScriptCalc& c) {
        for (const auto& [key, n] : keys)
            if (n % 2 == 0) c.SetBox(key.c_str(), n);
        for (const auto& [key, n] : keys) EXPECT_EQ(c.GetBox(key.c_str()), n) << key;
    });
    for (const auto& [key, n] : keys) EXPECT_EQ(myatof(boxes[CString(key)]), n) << key;
}

TEST_F(BoxStore, LongKeysUnderAPrefixGoToTheMap) {
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
TEST_F(BoxStore, AFullIndexLeavesTheRestToTheMap) {
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
