// Helpers shared by the schema suites: the texts of the errors a check or a
// walk leaves, documents from text, and edits by path.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <memory>
#include <string>
#include <utility>
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

// The node at a path of steps separated by "/", or null.
inline CXMLVar* at(CXMLVar* node, const std::string& path) { return nodeAt(node, path); }

// Edits on a document; every path is from the root.
struct Edit {
    enum Kind { Set, Add, Drop, Rename, Attr } kind;
    std::string path;
    std::string name;  // Add: the new child; Rename: the new name; Attr: the attribute
    std::string value;
};
using Edits = std::vector<Edit>;

inline Edit set(std::string path, std::string value) { return {Edit::Set, std::move(path), "", std::move(value)}; }
inline Edit add(std::string parent, std::string name, std::string value = "") {
    return {Edit::Add, std::move(parent), std::move(name), std::move(value)};
}
inline Edit drop(std::string path) { return {Edit::Drop, std::move(path), "", ""}; }
inline Edit renameTo(std::string path, std::string name) { return {Edit::Rename, std::move(path), std::move(name), ""}; }
inline Edit attr(std::string path, std::string name, std::string value) {
    return {Edit::Attr, std::move(path), std::move(name), std::move(value)};
}

inline void apply(CXMLVar* root, const Edit& e) {
    CXMLVar* node = at(root, e.path);
    ASSERT_NE(node, nullptr) << e.path;
    switch (e.kind) {
        case Edit::Set: node->value = e.value; break;
        case Edit::Add: node->AddChild(new CXMLVar(e.name.c_str(), e.value.c_str()), nullptr); break;
        case Edit::Drop: node->parent->DeleteChild(node); break;
        case Edit::Rename: node->name = e.name; break;
        case Edit::Attr: node->SetAttr(e.name.c_str(), e.value.c_str()); break;
    }
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
            if (f[0] == "copy") {
                CXMLVar* node = at(doc.get(), f[1]);
                ASSERT_NE(node, nullptr) << c.what;
                for (int i = std::stoi(f[2]); i > 0; --i)
                    node->parent->AddChild(new CXMLVar(node->name, node->value), node)->CloneChildren(node);
                continue;
            }
            const Edit::Kind kind = f[0] == "set" ? Edit::Set : f[0] == "add" ? Edit::Add : f[0] == "drop" ? Edit::Drop
                                  : f[0] == "rename" ? Edit::Rename : Edit::Attr;
            apply(doc.get(), {kind, f[1], f[2], untab(f[3])});
        }
        std::vector<std::string> expected;
        for (const std::string& e : c.expected) expected.push_back(untab(e));
        EXPECT_EQ(walk(doc.get()), expected) << c.what;
    }
}

}  // namespace schematest
