#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "common/library.h"
#include "common/xmlvar.h"
#include "support/table.h"

namespace {

CString saved(const CXMLVar& node, int declaration = 1) {
    CString text;
    node.Save(text, declaration);
    return text;
}

int countNodes(CXMLVar& root) {
    int n = 0;
    root.foreach([](CXMLVar*, void* c) { ++*static_cast<int*>(c); }, &n);
    return n;
}

std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += "<a>";
    for (int i = 0; i < depth; ++i) text += "</a>";
    return text;
}

int depthOf(const CXMLVar* node) {
    int depth = 0;
    for (; node; node = node->FirstChild()) ++depth;
    return depth;
}

}  // namespace

TEST(XmlSave, WritesTheDocumentLayout) {
    CXMLVar root("Return");
    root.SetAttr("type", "CT600");
    root.AddChild("Empty", "");
    root.AddChild("Leaf", "  a  ");
    root.GetChild("Group")->AddChild("Inner", "1");
    EXPECT_EQ(saved(root),
              "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
              "<Return type=\"CT600\">\n  <Empty/>\n  <Leaf>  a  </Leaf>\n"
              "  <Group>\n    <Inner>1</Inner>\n  </Group>\n</Return>");
    EXPECT_EQ(saved(*root.children[1], 0), "<Leaf>  a  </Leaf>");

    root.AddStyle("C:\\forms\\ctcharge.xsl");
    EXPECT_TRUE(StartsWith(saved(root),
                           "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
                           "<?xml-stylesheet type=\"text/xsl\" href=\"C:/forms/ctcharge.xsl\"?>\n<Return"));

    std::ostringstream stream;
    root.Save(stream, 1, 0, 0);
    EXPECT_EQ(stream.str(), saved(root).str());

    CString text("previous content");
    CXMLVar("A", "b").Save(text, 0);
    EXPECT_EQ(text, "<A>b</A>");
}

// The cases of tests/data/xml_cases.tsv of a kind, their texts made bytes.
static std::vector<std::vector<std::string>> xmlCases(const std::string& kind) {
    std::vector<std::vector<std::string>> rows;
    for (auto row : testdata::rows("xml_cases.tsv", 4))
        if (row[0] == kind) {
            for (auto& cell : row) cell = testdata::unescape(cell);
            rows.push_back(row);
        }
    return rows;
}

TEST(XmlSave, ValuesAndAttributesRoundTrip) {
    const auto values = xmlCases("value");
    EXPECT_EQ(values.size(), 12u);
    for (const auto& row : values) {
        const char* v = row[1].c_str();
        CXMLVar root("Root");
        root.AddChild("Leaf", v);
        root.GetChild("Group")->AddChild("Deep", v);
        root.SetAttr("a", v);
        CXMLVar back;
        ASSERT_EQ(back.Open(saved(root)), 1) << v;
        EXPECT_EQ(back.GetChild("Leaf")->value, v);
        EXPECT_EQ(back.FromPath("Group/Deep")->value, v);
        EXPECT_EQ(back.GetAttr("a"), v);
        EXPECT_EQ(saved(back), saved(root));
    }
}

TEST(XmlSave, EveryAllowedByteRoundTrips) {
    std::string all;
    for (int b = 1; b < 256; ++b) all += static_cast<char>(b);
    CXMLVar root("Root");
    root.AddChild("Leaf", all.c_str());
    root.SetAttr("a", all.c_str());
    CXMLVar back;
    ASSERT_EQ(back.Open(saved(root)), 1);
    std::string allowed;
    for (char c : all)
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n' || c == '\r') allowed += c;
    EXPECT_EQ(back.FindChild("Leaf")->value.str(), allowed);
    EXPECT_EQ(back.GetAttr("a").str(), allowed);
}

TEST(XmlSave, ContainerValueSurvivesTheLayout) {
    for (const char* v : {"abc", "abc\n", "abc\n  ", " x "}) {
        CXMLVar root("Root", v);
        root.AddChild("Child", "1");
        CXMLVar back;
        ASSERT_EQ(back.Open(saved(root)), 1);
        EXPECT_EQ(back.value, v);
        EXPECT_EQ(back.FindChild("Child")->value, "1");
    }
}

TEST(XmlSave, NamesXmlCannotCarryRoundTrip) {
    for (const char* name : {"xml/CT/CTchargeable", "1abc", "_x", "a b", "\xA3name"}) {
        CXMLVar root("Boxes");
        CXMLVar* box = root.AddChild(name, "30000");
        box->SetAttr("kind", "box");
        CXMLVar back;
        ASSERT_EQ(back.Open(saved(root)), 1) << name;
        ASSERT_EQ(back.GetChildCount(), 1);
        EXPECT_EQ(back.children[0]->name, name);
        EXPECT_EQ(back.children[0]->value, "30000");
        EXPECT_EQ(back.children[0]->GetAttr("kind"), "box");
        EXPECT_TRUE(back.children[0]->GetAttr("xname").IsEmpty());
    }
    CXMLVar root("Boxes");
    root.GetChild("xml/CT/CTchargeable");
    EXPECT_EQ(root.GetChildCount(), 1);  // one name, not a path
}

TEST(XmlSave, NamelessNodes) {
    CXMLVar empty("");
    EXPECT_EQ(saved(empty), "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n");
    CXMLVar back("Old");
    EXPECT_EQ(back.Open(saved(empty)), 0);
    EXPECT_TRUE(back.name.IsEmpty());
    EXPECT_EQ(back.GetChildCount(), 0);

    CXMLVar withChild("");
    withChild.AddChild("A", "1");
    ASSERT_EQ(back.Open(saved(withChild)), 1);
    EXPECT_TRUE(back.name.IsEmpty());
    EXPECT_EQ(back.FindChild("A")->value, "1");
}

TEST(XmlOpen, ReadsDocumentsInTheirEncoding) {
    const auto reads = xmlCases("read");
    EXPECT_EQ(reads.size(), 6u);
    for (const auto& c : reads) {
        CXMLVar node;
        EXPECT_EQ(node.Open(c[1].c_str()), 1) << c[1];
        EXPECT_EQ(node.value, c[2].c_str()) << c[1];
    }
}

TEST(XmlOpen, MalformedTextLeavesAUsableTree) {
    const auto bad = xmlCases("bad");
    EXPECT_EQ(bad.size(), 11u);
    for (const auto& c : bad) {
        CXMLVar node("Old", "old");
        node.AddChild("OldChild", "x");
        EXPECT_EQ(node.Open(c[1].c_str()), 0) << c[1];
        EXPECT_EQ(node.name, c[2].c_str()) << c[1];
        EXPECT_EQ(node.GetChildCount(), std::stoi(c[3])) << c[1];
        EXPECT_FALSE(saved(node).IsEmpty());
        CXMLVar copy;
        copy.CloneChildren(&node);
    }
    CXMLVar partial;
    partial.Open("<a><b>kept</b><c>cut");
    EXPECT_EQ(partial.FindChild("b")->value, "kept");
    EXPECT_EQ(partial.FindChild("c")->value, "cut");
}

TEST(XmlOpen, RefusesVeryDeepNesting) {
    CXMLVar node;
    EXPECT_EQ(node.Open(CString(nested(200000))), 0);
    EXPECT_EQ(depthOf(&node), 10000);
    EXPECT_EQ(node.Open(CString(nested(10000))), 1);
}

TEST(XmlOpen, EntityExpansionIsBounded) {
    std::string doc = "<!DOCTYPE lolz [<!ENTITY lol0 \"lollollollollollollollollollol\">";
    for (int i = 1; i <= 9; ++i)
        doc += "<!ENTITY lol" + std::to_string(i) + " \"" + [&] {
            std::string refs;
            for (int k = 0; k < 10; ++k) refs += "&lol" + std::to_string(i - 1) + ";";
            return refs;
        }() + "\">";
    doc += "]><lolz>&lol9;</lolz>";
    CXMLVar node;
    EXPECT_EQ(node.Open(CString(doc)), 0);
    EXPECT_LT(node.value.GetLength(), 64 * 1024 * 1024);
}

TEST(XmlOpen, ExternalEntitiesAreNotLoaded) {
    CXMLVar node;
    node.Open("<!DOCTYPE a [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><a>&e;</a>");
    EXPECT_EQ(node.value.Find("root"), -1);
}

TEST(XmlOpen, FilesAndMissingFiles) {
    CXMLVar node("Keep", "v");
    EXPECT_EQ(node.OpenPath((GetTempDir() + "\\no such file.xml").c_str()), 0);
    EXPECT_TRUE(node.name.IsEmpty());
    EXPECT_TRUE(node.value.IsEmpty());
    EXPECT_EQ(node.OpenPath(nullptr), 0);

    const CString path = GetTempDir() + "/xmlvar_file.xml";
    CXMLVar root("Boxes");
    root.AddChild("Q1", "\xA3" "1");
    {
        std::ofstream out(path.c_str(), std::ios::binary);
        root.Save(out);
    }
    EXPECT_EQ(node.OpenPath(GetTempDir() + "\\\\xmlvar_file.xml"), 1);
    EXPECT_EQ(node.FindChild("Q1")->value, "\xA3" "1");
}

TEST(XmlTree, ChildLookups) {
    CXMLVar root("");
    ASSERT_EQ(root.Open("<Boxes prefix=\"p\"><Loan>1</Loan><Loans>2</Loans><Loan>3</Loan></Boxes>"), 1);
    EXPECT_EQ(root.name, "Boxes");
    EXPECT_EQ(root.parent, nullptr);
    EXPECT_EQ(root.children[0]->parent, &root);
    EXPECT_EQ(root.CountChildren("Loan"), 2);
    EXPECT_EQ(root.CountChildren("Loans"), 1);
    EXPECT_EQ(root.CountChildren("Lo"), 0);

    CXMLVar* first = root.GetChild("Extra");
    EXPECT_EQ(root.GetChild("Extra"), first);
    EXPECT_EQ(root.CountChildren("Extra"), 1);
    EXPECT_EQ(root.FindChild("Missing"), nullptr);
    EXPECT_EQ(root.GetChildCount(), 4);

    std::string names;
    POSITION pos = root.GetFirstChildPosition();
    while (pos) names += root.GetNextChild(pos)->name.str() + ",";
    EXPECT_EQ(names, "Loan,Loans,Loan,Extra,");
    EXPECT_EQ(root.GetNextChild(pos), nullptr);
    EXPECT_EQ(CXMLVar().GetFirstChildPosition(), nullptr);
}

TEST(XmlTree, FromPathCreatesOnce) {
    CXMLVar root("Envelope");
    CXMLVar* leaf = root.FromPath("Header/MessageDetails/Class");
    EXPECT_EQ(leaf->name, "Class");
    EXPECT_EQ(leaf->parent->name, "MessageDetails");
    EXPECT_EQ(leaf->parent->parent->parent, &root);
    EXPECT_EQ(root.FromPath("/Header//MessageDetails/Class/"), leaf);
    EXPECT_EQ(countNodes(root), 4);
    EXPECT_EQ(root.FromPath(""), &root);
}

TEST(XmlTree, AddDeleteAndValues) {
    CXMLVar root("R");
    CXMLVar* a = root.AddChild("A", "1");
    CXMLVar* b = root.AddChild(new CXMLVar("B"), a);
    EXPECT_EQ(root.children.back(), b);
    EXPECT_EQ(b->parent, &root);
    root.SetChildValue("A", "2");
    root.SetChildValue("C", "3");
    EXPECT_EQ(a->value, "2");
    EXPECT_EQ(root.FindChild("C")->value, "3");

    CXMLVar other("O");
    CXMLVar* foreign = other.AddChild("F", "");
    root.DeleteChild(foreign);
    root.DeleteChild(nullptr);
    EXPECT_EQ(root.GetChildCount(), 3);
    EXPECT_EQ(other.GetChildCount(), 1);
    root.DeleteChild(a);
    EXPECT_EQ(root.FindChild("A"), nullptr);
    EXPECT_EQ(root.GetChildCount(), 2);

    EXPECT_EQ(root.AddChild(foreign), foreign);  // moves: owned once
    EXPECT_EQ(other.GetChildCount(), 0);
    EXPECT_EQ(foreign->parent, &root);
    CXMLVar* inner = b->AddChild("Inner", "");
    EXPECT_EQ(inner->AddChild(b), nullptr);  // no cycles
    EXPECT_EQ(root.AddChild(&root), nullptr);
    EXPECT_EQ(b->parent, &root);

    root.SetAttr("x", "1");
    root.Clear();
    EXPECT_EQ(saved(root, 0), "<R/>");
}

TEST(XmlTree, Attributes) {
    CXMLVar node("N");
    node.SetAttr("b", "1");
    node.SetAttr("a", "2");
    node.SetAttr("b", 42);
    node.SetAttr("c", -7);
    EXPECT_EQ(node.GetAttr("b"), "42");
    EXPECT_EQ(node.GetAttr("c"), "-7");
    EXPECT_TRUE(node.GetAttr("missing").IsEmpty());
    ASSERT_EQ(node.Attributes().size(), 3u);
    EXPECT_EQ(node.Attributes()[0].first, "b");
    EXPECT_EQ(saved(node, 0), "<N b=\"42\" a=\"2\" c=\"-7\"/>");
}

TEST(XmlTree, CloneChildrenIsDeep) {
    CXMLVar copy("Copy");
    {
        CXMLVar source("S");
        CXMLVar* child = source.AddChild("Child", "c");
        child->SetAttr("k", "v");
        child->AddChild("Grand", "g");
        copy.CloneChildren(&source);
    }
    CXMLVar* child = copy.FindChild("Child");
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->parent, &copy);
    EXPECT_EQ(child->GetAttr("k"), "v");
    ASSERT_NE(child->FindChild("Grand"), nullptr);
    EXPECT_EQ(child->FindChild("Grand")->value, "g");
    EXPECT_EQ(child->FindChild("Grand")->parent, child);

    copy.CloneChildren(&copy);  // into itself: copies what was there
    EXPECT_EQ(copy.CountChildren("Child"), 2);
    EXPECT_EQ(countNodes(copy), 5);
}

TEST(XmlTree, SortDescendingByName) {
    CXMLVar root("Body");
    root.AddChild("Attachment", "1");
    root.AddChild("XBRLsubmission", "");
    root.AddChild("Attachment", "2");
    root.AddChild("IRmark", "");
    root.Sort("#name", xmlcompareR);
    std::string order;
    for (const CXMLVar* c : root.children) order += c->name.str() + c->value.str() + ",";
    EXPECT_EQ(order, "XBRLsubmission,IRmark,Attachment1,Attachment2,");
}

TEST(XmlTree, VeryDeepTreesNeedNoDeepStack) {
    constexpr int kDepth = 100000;
    auto* root = new CXMLVar("R");
    CXMLVar* node = root;
    for (int i = 0; i < kDepth; ++i) node = node->AddChild("a", i == kDepth - 1 ? "end" : "");
    EXPECT_EQ(countNodes(*root), kDepth + 1);
    CString text;
    root->Save(text, 0);
    EXPECT_LT(text.GetLength(), 300 * kDepth);  // indentation stops growing
    CXMLVar copy("C");
    copy.CloneChildren(root);
    EXPECT_EQ(depthOf(&copy), kDepth + 1);
    delete root;
}
