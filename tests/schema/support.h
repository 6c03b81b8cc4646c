// Helpers shared by the schema suites: the texts of the errors a check or a
// walk leaves, documents from text, and edits by path.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/xmlvar.h"
#include "schema/schema.h"

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

// One step of a path: a name with an optional 1-based index, "Line[2]".
inline std::pair<std::string, int> splitStep(const std::string& step) {
    const auto open = step.find('[');
    if (open == std::string::npos || step.back() != ']') return {step, 1};
    return {step.substr(0, open), std::atoi(step.substr(open + 1).c_str())};
}

// The node at a path of steps separated by "/", or null.
inline CXMLVar* at(CXMLVar* node, const std::string& path) {
    std::size_t start = 0;
    while (node && start <= path.size()) {
        const std::size_t slash = path.find('/', start);
        const std::string step = path.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
        if (!step.empty()) {
            auto [name, index] = splitStep(step);
            CXMLVar* found = nullptr;
            int seen = 0;
            for (CXMLVar* c : node->children)
                if (c->name == name.c_str() && ++seen == index) {
                    found = c;
                    break;
                }
            node = found;
        }
        if (slash == std::string::npos) break;
        start = slash + 1;
    }
    return node;
}

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

}  // namespace schematest
