// The frames of the form entries: the line each writes to the log, the key
// "validation" in the result map, and the profit block of the third generation.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "entry/module.h"
#include "support/capture.h"

namespace {

class Frames : public testing::Test {
protected:
    const QuietErrors quiet;
    LogCapture capture;
    std::vector<std::string>& log = capture.lines;
};

TEST_F(Frames, EachFrameKindWritesItsOwnLogLine) {
    struct Case {
        const char* entry;
        const char* firstLine;  // null: the frame logs nothing of its own
    };
    const Case cases[] = {
        {"_cta_22", "aa"},         {"_cta_21", nullptr},      {"ct600_05", nullptr},
        {"ctv3_22", "ctv3_22 *******"}, {"_ctav3_22", "ctv3_21"}, {"ctv2_18", "ctv3_18"},
        {"ctv3_18", "ctv3_21"},    {"ctv3_15", "ctv3_15"},    {"_ctgv3_17", "ctv3_17"},
        {"_ctlv3_18", "ctv3_21"},  {"_ctcv3_19", "ctv3_21"},  {"ctv2_20", "ctv3_20"},
    };
    for (const auto& c : cases) {
        log.clear();
        CMapStringToString boxes, result;
        CString prefix;
        FormEntry entry = FindFormEntry(c.entry);
        ASSERT_NE(entry, nullptr) << c.entry;
        EXPECT_EQ(entry(&boxes, &prefix, &result), 1);
        if (c.firstLine) {
            ASSERT_FALSE(log.empty()) << c.entry;
            EXPECT_EQ(log.front(), c.firstLine) << c.entry;
        } else {
            EXPECT_TRUE(log.empty() || log.front() != "aa") << c.entry;
        }
    }
}

TEST_F(Frames, EveryEntryReturnsOneAndLeavesValidation) {
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    ASSERT_EQ(count, 232);
    for (int i = 0; i < count; ++i) {
        CMapStringToString boxes, result;
        CString prefix;
        EXPECT_EQ(entries[i].entry(&boxes, &prefix, &result), 1) << entries[i].name;
        ASSERT_NE(result.PLookup("validation"), nullptr) << entries[i].name;
        CXMLVar doc("");
        doc.Open(*result.PLookup("validation"));
        EXPECT_EQ(doc.name, kCalcErrorsRoot) << entries[i].name;
    }
}

// Made at load, with its start-up run, before any entry is called.
TEST(Module, TheApplicationObjectStandsFromLoad) { EXPECT_EQ(theApp.ProfileName(), "ardent.ini"); }

TEST_F(Frames, NullArgumentsDoNotCrash) {
    EXPECT_EQ(ctv3_21(nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(ct600_02(nullptr, nullptr, nullptr), 1);
}

class ProfitBlock : public Frames {
protected:
    CMapStringToString boxes, result;
    void run(const char* prefix = "") {
        CString p(prefix);
        ctv3_16(&boxes, &p, &result);
    }
};

TEST_F(ProfitBlock, TradingProfitFlowsDownToChargeableProfits) {
    boxes["Q155"] = "100000";
    boxes["Q160"] = "40000";
    run();
    for (const char* key : {"Q165", "Q235", "Q300", "Q315"}) EXPECT_EQ(boxes[key], "60000.000000") << key;
    EXPECT_NE(result.PLookup("validation"), nullptr);
}

TEST_F(ProfitBlock, EveryTermOfTheBlockCounts) {
    // Each input set to a distinct power of two, so a missing or doubled term shows.
    const char* added[] = {"Q170", "Q175", "Q180", "Q185", "Q190", "Q195", "Q200", "Q205"};
    const char* deducted[] = {"Q240", "Q245", "Q250", "Q255", "Q260", "Q265", "Q270", "Q275", "Q285", "Q290"};
    double expected235 = 0, expected295 = 0, bit = 1;
    for (const char* key : added) { boxes[key] = fmt0(bit); expected235 += bit; bit *= 2; }
    boxes["Q155"] = fmt0(bit); boxes["Q160"] = "0"; expected235 += bit; bit *= 2;   // Q165
    boxes["Q210"] = fmt0(bit * 3); boxes["Q215"] = fmt0(bit); expected235 += 2 * bit; bit *= 4;  // Q220
    boxes["Q225"] = fmt0(bit); expected235 -= bit; bit *= 2;
    boxes["Q230"] = fmt0(bit); expected235 -= bit; bit *= 2;
    for (const char* key : deducted) { boxes[key] = fmt0(bit); expected295 += bit; bit *= 2; }
    boxes["Q305"] = "1"; boxes["Q310"] = "2"; boxes["Q312"] = "4";
    run();
    EXPECT_EQ(myatof(boxes["Q235"]), expected235);
    EXPECT_EQ(myatof(boxes["Q295"]), expected295);
    EXPECT_EQ(myatof(boxes["Q300"]), expected235 - expected295);
    EXPECT_EQ(myatof(boxes["Q315"]), expected235 - expected295 - 7);
}

TEST_F(ProfitBlock, NoFloorOverridesAndClearing) {
    boxes["Q155"] = "10000";
    boxes["Q160"] = "25000";
    boxes["Q220"] = "5000!";
    boxes["Q210"] = "1";
    boxes["Q350"] = "123";
    boxes["Q360"] = "77!";
    run();
    EXPECT_EQ(boxes["Q165"], "-15000.000000");  // no floor
    EXPECT_EQ(boxes["Q220"], "5000!");
    EXPECT_EQ(boxes["Q235"], "-10000.000000");  // the override's 5000 is used
    EXPECT_EQ(boxes["Q350"], "0.000000");
    EXPECT_EQ(boxes["Q360"], "77!");
}

TEST_F(ProfitBlock, APrefixedRunTouchesOnlyPrefixedKeys) {
    boxes["SQ155"] = "500";
    boxes["Q155"] = "100";
    run("S");
    EXPECT_EQ(boxes["SQ165"], "500.000000");
    EXPECT_EQ(boxes["SQ315"], "500.000000");
    EXPECT_EQ(boxes.PLookup("Q165"), nullptr);
    EXPECT_EQ(boxes["Q155"], "100");
}

}  // namespace
