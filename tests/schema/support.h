// Helpers shared by the schema suites: the texts of the errors a check or a
// walk leaves, documents from text, and the case files of edits.
#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <memory>
#include <string>
#include <vector>

#include "common/xmlvar.h"
#include "schema/schema.h"
#include "support/table.h"
#include "support/tree.h"

namespace schematest {

// The Text of every Error, in order. Each error must be an Error with an
// empty value and exactly one child, its Text.
inline std::vector<std::string> texts(const CXMLVar& errors) {
    std::vector<std::string> out;
    for (const CXMLVar* e : errors.children) {
        EXPECT_EQ(e->name, "Error");
        EXPECT_EQ(e->value, "");
        EXPECT_EQ(e->children.size(), 1u);
        if (e->children.size() != 1) continue;
        EXPECT_EQ(e->children[0]->name, "Text");
        out.push_back(e->children[0]->value.str());
    }
    return out;
}

inline std::unique_ptr<CXMLVar> parse(const std::string& xml) {
    auto root = std::make_unique<CXMLVar>();
    EXPECT_TRUE(root->Open(xml.c_str())) << xml;
    return root;
}

// The errors of a schema walk over the document.
inline std::vector<std::string> walk(CXMLVar* root) {
    CXMLVar errors("Errors");
    schemawalk(root, &errors);
    return texts(errors);
}

// The failure text of a pattern, as the checks report it.
inline std::string fails(const std::string& pattern) { return "does not match the pattern " + pattern; }


// The cases of a file under tests/data/ (see schema_model_cases.txt), each
// run on a fresh copy of the document: the walk gives exactly its errors.
inline void runCaseFile(const std::string& document, const char* file) {
    const auto untab = [](std::string text) {
        for (std::size_t i; (i = text.find("\\t")) != std::string::npos;) text.replace(i, 2, "\t");
        return text;
    };
    const auto cases = testdata::cases(file);
    ASSERT_FALSE(cases.empty()) << file;
    for (const testdata::Case& c : cases) {
        auto doc = parse(document);
        for (const std::string& line : c.body) {
            std::vector<std::string> f;
            std::stringstream cells(line);
            for (std::string cell; std::getline(cells, cell, '\t');) f.push_back(cell);
            f.resize(4);
            CXMLVar* node = nodeAt(doc.get(), f[1]);
            ASSERT_NE(node, nullptr) << c.what << ": " << f[1];
            if (f[0] == "copy")
                for (int i = std::stoi(f[2]); i > 0; --i)
                    node->parent->AddChild(new CXMLVar(node->name, node->value), node)->CloneChildren(node);
            else if (f[0] == "set") node->value = untab(f[3]);
            else if (f[0] == "add") node->AddChild(new CXMLVar(f[2].c_str(), untab(f[3]).c_str()), nullptr);
            else if (f[0] == "drop") node->parent->DeleteChild(node);
            else if (f[0] == "rename") node->name = f[2];
            else node->SetAttr(f[2].c_str(), untab(f[3]).c_str());
        }
        std::vector<std::string> expected;
        for (const std::string& e : c.expected) expected.push_back(untab(e));
        EXPECT_EQ(walk(doc.get()), expected) << c.what;
    }
}

}  // namespace schematest
