// Trees for the suites: from text and from files, the node at a path, and
// the texts of errors.
#pragma once

#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "common/xmlvar.h"

inline std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline std::unique_ptr<CXMLVar> parseXml(const std::string& xml) {
    auto node = std::make_unique<CXMLVar>();
    node->Open(CString(xml.c_str()));
    return node;
}

// The node at a path of child names separated by "/"; "Loan[2]" is the second
// child named Loan. Null when a step is missing, unless create makes it (with
// any of that name missing before it).
inline CXMLVar* nodeAt(CXMLVar* node, std::string_view path, bool create = false) {
    while (node && !path.empty()) {
        const std::size_t slash = path.find('/');
        std::string name(path.substr(0, slash));
        path = slash == std::string_view::npos ? std::string_view() : path.substr(slash + 1);
        if (name.empty()) continue;
        int nth = 1;
        if (const auto open = name.find('['); open != std::string::npos && name.back() == ']') {
            nth = std::atoi(name.c_str() + open + 1);
            name.erase(open);
        }
        CXMLVar* next = nullptr;
        int seen = 0;
        for (CXMLVar* child : node->children)
            if (child->name == name.c_str() && ++seen == nth) {
                next = child;
                break;
            }
        for (; !next && create && seen < nth; ++seen) {
            CXMLVar* made = node->AddChild(new CXMLVar(name.c_str()), nullptr);
            if (seen + 1 == nth) next = made;
        }
        node = next;
    }
    return node;
}

inline const CXMLVar* nodeAt(const CXMLVar* node, std::string_view path) {
    return nodeAt(const_cast<CXMLVar*>(node), path, false);
}

// The Text of each Error of a tree of errors, in order.
inline std::vector<std::string> errorTexts(const CXMLVar& errors) {
    std::vector<std::string> texts;
    for (const CXMLVar* error : errors.children) {
        const CXMLVar* text = error->FindChild("Text");
        texts.emplace_back(text ? text->value.c_str() : "<no Text>");
    }
    return texts;
}
