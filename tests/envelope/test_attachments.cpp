// The files named in fileattach1 to fileattach3, placed under AttachedFiles.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "common/library.h"
#include "envelope_support.h"

namespace {

using envtest::compact;

const std::string kPdf = "JVBERi0xLjQKJe++";
const std::string kXhtml = "PGh0bWw+PC9odG1sPg==";  // base64 of "<html></html>"

struct AttachCase {
    const char* what;
    std::vector<std::pair<const char*, const char*>> boxes;
    int result;
    std::string expected;  // the document after the call
};

TEST(AttachFiles, PlacesEachKindOfFile) {
    const AttachCase cases[] = {
        {"nothing named", {}, 0, "Doc"},
        {"only a second file counts for nothing", {{"fileattach2", "accounts.pdf"}}, 0, "Doc"},
        {"a PDF", {{"fileattach1", "notice.pdf"}}, 1,
         "Doc(AttachedFiles(Attachment[Filename=notice.pdf][FileFormat=pdf]=" + kPdf + "))"},
        {"the extension in capitals", {{"fileattach1", "C:\\Files\\Notice.PDF"}}, 1,
         "Doc(AttachedFiles(Attachment[Filename=C:\\Files\\Notice.PDF][FileFormat=pdf]=" + kPdf + "))"},
        {"inline XBRL accounts", {{"fileattach1", "accounts-2017.html"}}, 0,
         "Doc(AttachedFiles(XBRLsubmission(Accounts(Instance(EncodedInlineXBRLDocument=" + kXhtml + ")))))"},
        {"computations by their name", {{"fileattach1", "northwind-ctcomp.xhtml"}}, 0,
         "Doc(AttachedFiles(XBRLsubmission(Computation(Instance(EncodedInlineXBRLDocument=" + kXhtml + ")))))"},
        {"a gap in the keys", {{"fileattach1", "a.pdf"}, {"fileattach3", "b.pdf"}}, 1,
         "Doc(AttachedFiles(Attachment[Filename=a.pdf][FileFormat=pdf]=" + kPdf +
             " Attachment[Filename=b.pdf][FileFormat=pdf]=" + kPdf + "))"},
        {"a fourth key is never read", {{"fileattach1", "a.pdf"}, {"fileattach4", "d.pdf"}}, 1,
         "Doc(AttachedFiles(Attachment[Filename=a.pdf][FileFormat=pdf]=" + kPdf + "))"},
        {"two sets of accounts leave one instance", {{"fileattach1", "acc1.html"}, {"fileattach2", "acc2.html"}}, 0,
         "Doc(AttachedFiles(XBRLsubmission(Accounts(Instance(EncodedInlineXBRLDocument=" + kXhtml + ")))))"},
        {"sorted: submission before attachment, computations before accounts",
         {{"fileattach1", "letter.pdf"}, {"fileattach2", "accounts.html"}, {"fileattach3", "x-ctcomp-y.html"}},
         1,
         "Doc(AttachedFiles(XBRLsubmission(Computation(Instance(EncodedInlineXBRLDocument=" + kXhtml +
             ")) Accounts(Instance(EncodedInlineXBRLDocument=" + kXhtml +
             "))) Attachment[Filename=letter.pdf][FileFormat=pdf]=" + kPdf + "))"},
    };
    for (const AttachCase& c : cases) {
        CMapStringToString boxes = envtest::boxesOf(c.boxes);
        CXMLVar doc("Doc");
        CXMLVar* created = nullptr;
        EXPECT_EQ(attachfiles("", &created, boxes, 0, &doc), c.result) << c.what;
        EXPECT_EQ(created, nullptr) << c.what;
        EXPECT_EQ(compact(&doc), c.expected) << c.what;
    }
}

TEST(AttachFiles, KeepsWhatTheDocumentAlreadyHas) {
    auto doc = parseXml(
        "<Doc><Declaration/><AttachedFiles><Attachment Filename=\"old.pdf\">x</Attachment></AttachedFiles></Doc>");
    CMapStringToString boxes = envtest::boxesOf({{"fileattach1", "accounts.html"}});
    EXPECT_EQ(attachfiles("", nullptr, boxes, 0, doc.get()), 0);
    EXPECT_EQ(compact(doc.get()),
              "Doc(Declaration AttachedFiles(XBRLsubmission(Accounts(Instance(EncodedInlineXBRLDocument=" + kXhtml +
                  "))) Attachment[Filename=old.pdf]=x))");
}

TEST(AttachFiles, ReadingLeavesTheKeysInTheBoxMap) {
    CMapStringToString boxes = envtest::boxesOf({{"fileattach1", "a.pdf"}});
    CXMLVar doc("Doc");
    attachfiles("", nullptr, boxes, 0, &doc);
    EXPECT_NE(boxes.PLookup("fileattach2"), nullptr);
    EXPECT_NE(boxes.PLookup("fileattach3"), nullptr);
    EXPECT_EQ(boxes.PLookup("fileattach4"), nullptr);

    CMapStringToString empty;
    attachfiles("", nullptr, empty, 0, &doc);
    EXPECT_NE(empty.PLookup("fileattach1"), nullptr);
    EXPECT_EQ(empty.PLookup("fileattach2"), nullptr);  // the first empty key ends the call
}

TEST(AttachFiles, WithoutADocumentItUsesOrMakesTheKeptRoot) {
    CMapStringToString boxes = envtest::boxesOf({{"fileattach1", "a.pdf"}});
    CXMLVar* created = nullptr;
    EXPECT_EQ(attachfiles("", &created, boxes, 0, nullptr), 1);
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->name, "xml");
    CXMLVar* first = created;
    EXPECT_EQ(attachfiles("", &created, boxes, 0, nullptr), 1);
    EXPECT_EQ(created, first);  // the same root again
    EXPECT_EQ(created->FindChild("AttachedFiles")->CountChildren("Attachment"), 2);
    delete created;

    // With nowhere to keep a root there is nothing to attach to.
    EXPECT_EQ(attachfiles("", nullptr, boxes, 0, nullptr), 0);
    // Nothing named: no root is made.
    CMapStringToString none;
    CXMLVar* untouched = nullptr;
    EXPECT_EQ(attachfiles("", &untouched, none, 0, nullptr), 0);
    EXPECT_EQ(untouched, nullptr);
}

TEST(AttachFiles, ReadsThePdfWhenAsked) {
    const auto folder = std::filesystem::path(GetTempDir().str()) / "attach";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "real.pdf", std::ios::binary) << "%PDF-1.7";
    CMapStringToString boxes = envtest::boxesOf({{"fileattach1", "real.pdf"}, {"fileattach2", "gone.pdf"}});
    CXMLVar doc("Doc");
    EXPECT_EQ(attachfiles(folder.string().c_str(), nullptr, boxes, 1, &doc), 1);
    const CXMLVar* files = doc.FindChild("AttachedFiles");
    ASSERT_NE(files, nullptr);
    ASSERT_EQ(files->children.size(), 2u);
    EXPECT_EQ(files->children[0]->value, "JVBERi0xLjc=");  // base64 of "%PDF-1.7"
    // A file that cannot be read keeps its attributes and has no body.
    EXPECT_EQ(files->children[1]->GetAttr("Filename"), "gone.pdf");
    EXPECT_EQ(files->children[1]->value, "");
}

}  // namespace
