// Filling a template from a box map, and removing what is left empty.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "envelope_support.h"
#include "support/table.h"

namespace {

using envtest::compact;

// Populate then RemoveConditionals, as quick_govtalk does.
std::string fill(const std::string& templ, const CMapStringToString& boxes, const char* prefix = "") {
    const auto t = parseXml(templ);
    const std::unique_ptr<CXMLVar> data(TaxToXML(boxes));
    CXMLVar* out = nullptr;
    CGovTalk filler(out);
    std::unique_ptr<CXMLVar> doc(filler.Populate(t.get(), data.get(), 0, prefix));
    filler.RemoveConditionals(doc.get());
    return compact(doc.get());
}

// The cases of tests/data/populate_cases.tsv: what, template, key=value|...,
// the filled tree.
TEST(Populate, FillsPlaceholdersRepeatsRowsAndDropsWhatIsEmpty) {
    int cases = 0;
    for (const std::vector<std::string>& f : testdata::rows("populate_cases.tsv", 4)) {
        EXPECT_EQ(fill(f[1], envtest::boxesOfText(f[2])), f[3]) << f[0];
        ++cases;
    }
    EXPECT_EQ(cases, 30);
}

TEST(Populate, ThePrefixGoesInFrontOfEveryKey) {
    const char* templ = "<R><A>{Q1:amount}</A><L repeat=\"rows\"><B>{QB.#}</B></L><C>{Q2 or 'd'}</C></R>";
    const CMapStringToString boxes =
        envtest::boxesOf({{"Q1", "1"}, {"SQ1", "2"}, {"QB.1", "plain"}, {"SQB.4", "second run"}});
    EXPECT_EQ(fill(templ, boxes, "S"), "R(A=2.00 L(B=second run) C=d)");
    EXPECT_EQ(fill(templ, boxes, ""), "R(A=1.00 L(B=plain) C=d)");
}

TEST(Populate, LeavesTheTemplateAndDataAloneAndSharesNoNodes) {
    auto templ = parseXml("<R K=\"{Q1}\"><S if=\"filled\"><A>{Q1}</A></S><L repeat=\"rows\"><B>{Q.#}</B></L></R>");
    const std::string before = compact(templ.get());
    std::unique_ptr<CXMLVar> data(TaxToXML(envtest::boxesOf({{"Q1", "one"}, {"Q.1", "row"}})));
    const std::string dataBefore = compact(data.get());
    CXMLVar* seen = nullptr;
    CGovTalk filler(seen);
    std::unique_ptr<CXMLVar> doc(filler.Populate(templ.get(), data.get(), 0, ""));
    EXPECT_EQ(seen, doc.get());
    EXPECT_EQ(compact(templ.get()), before);
    EXPECT_EQ(compact(data.get()), dataBefore);
    // Until RemoveConditionals, the conditional mark-up is still there.
    EXPECT_EQ(compact(doc.get()), "R[K=one](S[if=filled](A[if=filled]=one) L[if=filled](B[if=filled]=row))");
    templ.reset();
    data.reset();
    filler.RemoveConditionals(doc.get());
    EXPECT_EQ(compact(doc.get()), "R[K=one](S(A=one) L(B=row))");
}

TEST(Populate, NeverReturnsNull) {
    CXMLVar* seen = nullptr;
    CGovTalk filler(seen);
    std::unique_ptr<CXMLVar> none(filler.Populate(nullptr, nullptr, 0, ""));
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(compact(none.get()), "");
    // Without data every box is empty.
    auto templ = parseXml("<R><A>{Q1}</A><B>{Q2 or 'b'}</B></R>");
    std::unique_ptr<CXMLVar> doc(filler.Populate(templ.get(), nullptr, 0, ""));
    filler.RemoveConditionals(doc.get());
    EXPECT_EQ(compact(doc.get()), "R(B=b)");
}

TEST(Populate, ADeepTemplateIsCutOffNotCrashedOn) {
    std::string xml;
    for (int i = 0; i < 5000; ++i) xml += "<D if=\"filled\">";
    xml += "{Q1}";
    for (int i = 0; i < 5000; ++i) xml += "</D>";
    auto templ = parseXml(xml);
    std::unique_ptr<CXMLVar> data(TaxToXML(envtest::boxesOf({{"Q1", "x"}})));
    CXMLVar* seen = nullptr;
    CGovTalk filler(seen);
    LogCapture log;
    std::unique_ptr<CXMLVar> doc(filler.Populate(templ.get(), data.get(), 0, ""));
    filler.RemoveConditionals(doc.get());
    // The box lies below the cut, so nothing inside is filled.
    EXPECT_EQ(compact(doc.get()), "D");
    EXPECT_TRUE(log.Has("deeper than")) << log.lines.size();
}

TEST(RemoveConditionals, OnlyMarkedEmptyElementsGo) {
    struct Case {
        const char* what;
        const char* tree;
        const char* expected;
    };
    const Case cases[] = {
        {"unmarked empty elements stay", "<R><A/><B if=\"filled\"/></R>", "R(A)"},
        {"blanks are no content", "<R><A if=\"filled\">   </A></R>", "R"},
        {"an attribute is content", "<R><A if=\"filled\" F=\"x\"/></R>", "R(A[F=x])"},
        {"the root stays, its mark goes", "<R if=\"filled\"/>", "R"},
        {"stray repeat marks are wiped", "<R><A repeat=\"rows\">a</A></R>", "R(A=a)"},
        {"order of the rest is kept", "<R><A>1</A><B if=\"filled\"/><C>3</C><D if=\"filled\"/><E>5</E></R>",
         "R(A=1 C=3 E=5)"},
    };
    CXMLVar* seen = nullptr;
    CGovTalk filler(seen);
    for (const Case& c : cases) {
        auto tree = parseXml(c.tree);
        filler.RemoveConditionals(tree.get());
        EXPECT_EQ(compact(tree.get()), c.expected) << c.what;
    }
    filler.RemoveConditionals(nullptr);  // nothing to do, and no crash
}

TEST(RemoveConditionals, ManyEmptyRowsAreRemovedInOnePass) {
    std::string xml = "<R><L>";
    for (int i = 0; i < 20000; ++i) xml += i == 12345 ? "<X if=\"filled\">kept</X>" : "<X if=\"filled\"/>";
    xml += "</L></R>";
    auto tree = parseXml(xml);
    CXMLVar* seen = nullptr;
    CGovTalk(seen).RemoveConditionals(tree.get());
    EXPECT_EQ(compact(tree.get()), "R(L(X=kept))");
}

TEST(TaxToXML, OneChildPerBoxInKeyOrder) {
    const std::unique_ptr<CXMLVar> tree(TaxToXML(
        envtest::boxesOf({{"to", "31/03/2017"}, {"Q155", "100"}, {"QA10B.1", "5"}, {"xml/CT/CTchargeable", ""}})));
    EXPECT_EQ(compact(tree.get()), "Boxes(Q155=100 QA10B.1=5 to=31/03/2017 xml/CT/CTchargeable)");
    const std::unique_ptr<CXMLVar> empty(TaxToXML(CMapStringToString()));
    EXPECT_EQ(compact(empty.get()), "Boxes");
}

TEST(ListBoxMap, ListsEveryPlaceholderWithItsPathAndReportsBadBraces) {
    auto templ = parseXml(
        "<R T=\"{t or 'new'}\"><A if=\"filled\"><B>{Q1:amount}</B><C>{Q2} and {Q3:date}</C></A>"
        "<L repeat=\"rows\" N=\"{QL.#}\"><D>{QD.#:flag}</D></L><E>{oops:nothing}</E><F>plain</F></R>");
    std::vector<CString> problems;
    const std::vector<BoxMapEntry> entries = ListBoxMap(templ.get(), &problems);
    const std::vector<std::vector<std::string>> expected = {
        {"t or 'new'", "@T", "text"}, {"Q1", "A/B", "amount"},   {"Q2", "A/C", "text"},
        {"Q3", "A/C", "date"},        {"QL.#", "L/@N", "text"}, {"QD.#", "L/D", "flag"},
    };
    ASSERT_EQ(entries.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(entries[i].sources, expected[i][0].c_str()) << i;
        EXPECT_EQ(entries[i].path, expected[i][1].c_str()) << i;
        EXPECT_EQ(entries[i].kind, expected[i][2].c_str()) << i;
    }
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_EQ(problems[0], "E: {oops:nothing}");
    EXPECT_TRUE(ListBoxMap(nullptr).empty());
}

}  // namespace
