// do_calc and do_calc2: the choice of calculator, the rebuilt Boxes node and
// the dropping of noughts; and, over generated returns of all three
// generations, what a recalculation and a validation may change in a return.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "calculators/calculators.h"
#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "envelope/envelope.h"
#include "liability/liability.h"
#include "platform/message_box.h"
#include "support/capture.h"

namespace {

class RoundTrip : public testing::Test {
protected:
    const QuietErrors quiet;
    const MessageCapture messages;
    LogCapture capture;
    std::vector<std::string>& log = capture.lines;
    bool logged(const char* line) const { return std::find(log.begin(), log.end(), line) != log.end(); }

    static CXMLVar* returnTree(const char* rootName, const char* form, const char* type) {
        auto* tree = new CXMLVar(rootName);
        if (type) tree->SetAttr("type", type);
        CXMLVar* boxes = tree->GetChild("Boxes");
        if (form) boxes->SetChildValue("form", form);
        boxes->SetChildValue("Q155", "1000");
        return tree;
    }
};

TEST_F(RoundTrip, FormAndTypeChooseTheCalculator) {
    struct Case {
        const char* root;
        const char* form;
        const char* type;
        bool thirdGeneration;
        bool anyCalculation;
    };
    const Case cases[] = {
        {"Return", "CTV3 2016", nullptr, true, true},  // the test comes after lower-casing
        {"Return", "ctv3", "CTA", true, true},         // the form wins over the type
        {"TF", "ct600", "CTA", false, true},
        {"TF", "ct600", nullptr, false, true},         // TF with no type: second generation
        {"TF", "ct600", "CTB", false, false},
        {"Return", "ct600", nullptr, false, false},
        {"Return", nullptr, "CTA", false, true},
    };
    for (const auto& c : cases) {
        log.clear();
        std::unique_ptr<CXMLVar> tree(returnTree(c.root, c.form, c.type));
        do_calc(tree.get());
        const CXMLVar* boxes = tree->FindChild("Boxes");
        ASSERT_NE(boxes, nullptr);
        EXPECT_EQ(logged("CCT600_16Calc::Calc()"), c.thirdGeneration) << c.root << " " << (c.form ? c.form : "");
        EXPECT_EQ(std::count(log.begin(), log.end(), "ctv3_16"), c.thirdGeneration ? 1 : 0) << "the frame logs once";
        EXPECT_EQ(boxes->FindChild("Q165") != nullptr, c.thirdGeneration);
        EXPECT_EQ(tree->FindChild(kCalcErrorsRoot) != nullptr, c.anyCalculation);
        EXPECT_EQ(boxes->FindChild("validation"), nullptr);
        EXPECT_EQ(tree->CountChildren("Boxes"), 1);
    }
}

TEST_F(RoundTrip, NoughtsVanishWordsAndOverridesStay) {
    CXMLVar tree("Return");
    CXMLVar* boxes = tree.GetChild("Boxes");
    const char* kept[][2] = {{"Q1", "Example Ltd"}, {"Q6", "zero"}, {"Q7", "0.00!"}, {"Q8", "12.5"}};
    for (const auto& kv : kept) boxes->SetChildValue(kv[0], kv[1]);
    for (const char* nought : {"0", "0.000000", "", "-0"}) boxes->SetChildValue(CString("N") + nought, nought);
    do_calc(&tree);  // no form: no calculation, Boxes rebuilt all the same
    const CXMLVar* rebuilt = tree.FindChild("Boxes");
    ASSERT_NE(rebuilt, nullptr);
    for (const auto& kv : kept) {
        const CXMLVar* box = rebuilt->FindChild(kv[0]);
        ASSERT_NE(box, nullptr) << kv[0];
        EXPECT_EQ(box->value, kv[1]);
    }
    EXPECT_EQ(rebuilt->GetChildCount(), 4);
}

TEST_F(RoundTrip, ThePrefixAttributeIsRestoredAndNotApplied) {
    CXMLVar tree("Return");
    tree.SetAttr("prefix", "S");
    CXMLVar* boxes = tree.GetChild("Boxes");
    boxes->SetChildValue("form", "ctv3");
    boxes->SetChildValue("Q155", "300");
    do_calc(&tree);
    EXPECT_EQ(tree.GetAttr("prefix"), "S");
    const CXMLVar* q165 = tree.FindChild("Boxes")->FindChild("Q165");
    ASSERT_NE(q165, nullptr);
    EXPECT_EQ(q165->value, "300.000000");
}

TEST_F(RoundTrip, ANewErrorDocumentReplacesTheFormerOne) {
    CXMLVar tree("Return");
    tree.GetChild("Boxes")->SetChildValue("form", "ctv3");
    tree.AddChild(new CXMLVar(kCalcErrorsRoot))->AddChild("Error", "stale");
    do_calc(&tree);
    EXPECT_EQ(tree.CountChildren(kCalcErrorsRoot), 1);
    EXPECT_EQ(tree.FindChild(kCalcErrorsRoot)->FindChild("Error"), nullptr);
}

TEST_F(RoundTrip, DoCalc2WorksOnTextAndSurvivesBadText) {
    struct Case {
        const char* zxml;
        bool hasQ165;
    };
    const Case cases[] = {
        {"<Return><Boxes><form>ctv3</form><Q155>250</Q155><Q9>0</Q9></Boxes></Return>", true},
        {"", false},
        {"<Return><Boxes><Q155>5", false},  // cut short before any form: no calculation
        {"not xml at all \x01\xff", false},
    };
    for (const auto& c : cases) {
        CMapStringToString map;
        map["zxml"] = c.zxml;
        EXPECT_EQ(do_calc2(&map, nullptr, &map), 1);
        CXMLVar back("");
        back.Open(map["zxml"]);
        const CXMLVar* boxes = back.FindChild("Boxes");
        ASSERT_NE(boxes, nullptr) << c.zxml;
        EXPECT_EQ(boxes->FindChild("Q9"), nullptr);
        EXPECT_EQ(boxes->FindChild("Q165") != nullptr, c.hasQ165) << c.zxml;
    }
    // Cut short: what Open kept is the return, prefix and all. Its boxes are
    // read with the prefix blanked, so "validation" is a box like any other.
    CMapStringToString map;
    map["zxml"] = "<TF type=\"CT)A\" prefix=\"P\"><Boxes><form>ct600</form><Q5>0.000000</Q5>"
                  "<validation>v</valiax=\"P\x1c>T0</Q5><s></TF>";
    do_calc2(&map, nullptr, &map);
    CXMLVar back("");
    back.Open(map["zxml"]);
    EXPECT_EQ(back.GetAttr("prefix"), "P");
    std::string boxes;
    for (const CXMLVar* box : back.GetChild("Boxes")->children) boxes += std::string(box->name) + "=" + box->value.c_str() + ";";
    EXPECT_EQ(boxes, "form=ct600;validation=v;");
}

// A recalculated return recalculates to itself, an override keeps its text
// in every generation, and validation changes no box.
TEST_F(RoundTrip, RecalculationSettlesAndKeepsOverrides) {
    const char* returns[] = {
        "<Return><Boxes><form>ctv3</form><from>01/04/2015</from><to>31/03/2016</to><Q155>185000</Q155>"
        "<Q160>12500</Q160><Q165>100!</Q165><Q5>zero</Q5></Boxes></Return>",
        "<TF><Boxes><from>01/04/2004</from><to>31/03/2005</to><Q3>30000</Q3><Q5>29000!</Q5></Boxes></TF>",
    };
    for (const char* xml : returns) {
        CMapStringToString map;
        map["zxml"] = xml;
        do_calc2(&map, nullptr, &map);
        const CString once = map["zxml"];
        do_calc2(&map, nullptr, &map);
        EXPECT_EQ(map["zxml"], once) << xml;
        CXMLVar tree("");
        tree.Open(once);
        CMapStringToString boxes;
        CStringArray names;
        SubformFromXML(&tree, boxes, names);
        EXPECT_TRUE(boxes["Q165"] == "100!" || boxes["Q5"] == "29000!") << once.c_str();
        const CMapStringToString before = boxes;
        CXMLVar errors("Errors");
        do_validate(&boxes, &errors);
        for (const auto& [key, text] : before.items()) EXPECT_EQ(boxes[key], text) << key.c_str();
    }
}

// The full sample return is consistent with its own figures: a recalculation
// keeps every box that is not a nought (numbers may gain decimals, not change).
TEST_F(RoundTrip, TheFullSampleReturnKeepsEveryBox) {
    CXMLVar tree("");
    ASSERT_EQ(tree.OpenPath(CT600_SOURCE_DIR "/examples/full-return.xml"), 1);
    std::unique_ptr<CXMLVar> before(new CXMLVar(""));
    before->OpenPath(CT600_SOURCE_DIR "/examples/full-return.xml");
    do_calc(&tree);
    const CXMLVar* boxes = tree.FindChild("Boxes");
    ASSERT_NE(boxes, nullptr);
    for (const CXMLVar* box : before->FindChild("Boxes")->children) {
        char* end = nullptr;
        if (std::strtod(box->value, &end) == 0 && *end == '\0') continue;  // noughts drop out
        const CXMLVar* kept = boxes->FindChild(box->name);
        ASSERT_NE(kept, nullptr) << box->name.c_str();
        if (kept->value != box->value) {
            EXPECT_EQ(myatof(kept->value), myatof(box->value)) << box->name.c_str() << " " << kept->value.c_str();
        }
    }
    EXPECT_EQ(tree.FindChild(kCalcErrorsRoot)->GetChildCount(), 0);
}

}  // namespace
