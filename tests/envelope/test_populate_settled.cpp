// PopulateSettled, the one pass quick_govtalk makes: the same documents as
// Populate followed by RemoveConditionals.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "envelope_support.h"
#include "support/table.h"

namespace {

std::unique_ptr<CXMLVar> settled(const CXMLVar* templ, const CMapStringToString& boxes) {
    CXMLVar* seen = nullptr;
    CGovTalk filler(seen);
    std::unique_ptr<CXMLVar> doc(filler.PopulateSettled(const_cast<CXMLVar*>(templ), boxes));
    EXPECT_EQ(seen, doc.get());
    return doc;
}

std::string twoPasses(CXMLVar* templ, const CMapStringToString& boxes) {
    const std::unique_ptr<CXMLVar> data(TaxToXML(boxes));
    CXMLVar* seen = nullptr;
    CGovTalk filler(seen);
    std::unique_ptr<CXMLVar> doc(filler.Populate(templ, data.get(), 0, ""));
    filler.RemoveConditionals(doc.get());
    CString text;
    doc->Save(text, 1);
    return text.str();
}

// The worked cases of the two-pass filling, each tree written by hand.
TEST(PopulateSettled, GivesTheWorkedTreesOfTheTwoPasses) {
    int cases = 0;
    for (const std::vector<std::string>& f : testdata::rows("populate_cases.tsv", 4)) {
        const auto templ = parseXml(f[1]);
        EXPECT_EQ(envtest::compact(settled(templ.get(), envtest::boxesOfText(f[2])).get()), f[3]) << f[0];
        ++cases;
    }
    EXPECT_EQ(cases, 30);
    // T and U are not marked (an empty if is no mark), so they stay though
    // empty, and S with T; W is marked by its own if and V by its placeholder.
    const auto templ =
        parseXml("<R a=\"{Q9}\" if=\"\"><S if=\"x\"><T if=\"\"/></S><U/><V if=\"\">{Q8}</V><W if=\"x\"/></R>");
    EXPECT_EQ(envtest::compact(settled(templ.get(), CMapStringToString()).get()), "R(S(T) U)");
    // A marked element with nothing but an attribute filled stays.
    const auto attributeOnly = parseXml("<R><S if=\"x\" a=\"{Q1}\"/><T repeat=\"r\" b=\"{Q.#}\"/></R>");
    EXPECT_EQ(envtest::compact(settled(attributeOnly.get(), envtest::boxesOf({{"Q1", "v"}, {"Q.2", "w"}})).get()),
              "R(S[a=v] T[b=w])");
}

// The form's own template, byte for byte, over the example returns and none.
TEST(PopulateSettled, TheFormsTemplateComesOutAsFromTheTwoPasses) {
    const auto templ = envtest::loadTemplate();
    for (const char* example : {"examples/full-return.json", "examples/sample-return.json", ""}) {
        const CMapStringToString boxes =
            *example ? envtest::boxesFromJsonFile(envtest::sourcePath(example)) : CMapStringToString();
        CString text;
        settled(templ.get(), boxes)->Save(text, 1);
        EXPECT_EQ(text.str(), twoPasses(templ.get(), boxes)) << example;
        EXPECT_GT(text.GetLength(), *example ? 1000 : 100) << example;  // something was filled
    }
}

}  // namespace
