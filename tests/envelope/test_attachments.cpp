// The files named in fileattach1 to fileattach3, placed under AttachedFiles.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "common/library.h"
#include "envelope_support.h"
#include "support/table.h"

namespace {

using envtest::compact;

const std::string kPdf = "JVBERi0xLjQKJe++";
const std::string kXhtml = "PGh0bWw+PC9odG1sPg==";  // base64 of "<html></html>"

// The cases of tests/data/attachment_cases.tsv.
TEST(AttachFiles, PlacesEachKindOfFile) {
    int cases = 0;
    for (const std::vector<std::string>& f : testdata::rows("attachment_cases.tsv", 4)) {
        std::string expected = f[3];
        for (const auto& [token, body] : {std::pair{std::string("{pdf}"), kPdf}, {"{xhtml}", kXhtml}})
            for (std::size_t at; (at = expected.find(token)) != std::string::npos;) expected.replace(at, token.size(), body);
        CMapStringToString boxes = envtest::boxesOfText(f[1]);
        CXMLVar doc("Doc");
        CXMLVar* created = nullptr;
        EXPECT_EQ(attachfiles("", &created, boxes, 0, &doc), std::stoi(f[2])) << f[0];
        EXPECT_EQ(created, nullptr) << f[0];
        EXPECT_EQ(compact(&doc), expected) << f[0];
        ++cases;
    }
    EXPECT_EQ(cases, 10);
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
