// Helpers shared by the envelope's tests: trees from text, a compact picture
// of a tree, box maps from the example files and the environment.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "common/basics.h"
#include "common/xmlvar.h"
#include "envelope/envelope.h"
#include "platform/collections.h"
#include "support/capture.h"
#include "support/env.h"
#include "support/tree.h"

namespace envtest {

inline std::string sourcePath(const std::string& relative) { return std::string(CT600_SOURCE_DIR) + "/" + relative; }

inline std::string templateFolder() { return sourcePath("envelope/templates"); }

inline std::unique_ptr<CXMLVar> loadTemplate() {
    auto node = std::make_unique<CXMLVar>();
    node->OpenPath((templateFolder() + "/ctv3_16.xml").c_str());
    return node;
}

// A tree on one line: name, [attributes], =value, (children).
inline void compactInto(const CXMLVar* node, std::string& out) {
    out += node->name.str();
    for (const auto& [k, v] : node->Attributes()) out += "[" + k.str() + "=" + v.str() + "]";
    if (!node->value.IsEmpty()) out += "=" + node->value.str();
    if (node->children.empty()) return;
    out += "(";
    for (std::size_t i = 0; i < node->children.size(); ++i) {
        if (i) out += " ";
        compactInto(node->children[i], out);
    }
    out += ")";
}

inline std::string compact(const CXMLVar* node) {
    std::string out;
    if (node) compactInto(node, out);
    return out;
}

inline CMapStringToString boxesOf(const std::vector<std::pair<const char*, const char*>>& pairs) {
    CMapStringToString boxes;
    for (const auto& [k, v] : pairs) boxes[k] = v;
    return boxes;
}

// Boxes written key=value|key=value.
inline CMapStringToString boxesOfText(const std::string& text) {
    CMapStringToString boxes;
    for (std::size_t at = 0, bar; at < text.size(); at = bar + 1) {
        bar = std::min(text.find('|', at), text.size());
        const std::string pair = text.substr(at, bar - at);
        boxes[pair.substr(0, pair.find('=')).c_str()] = pair.substr(pair.find('=') + 1).c_str();
    }
    return boxes;
}

// The examples are flat JSON objects of text to text without escapes: the
// quoted texts alternate key, value.
inline CMapStringToString boxesFromJsonFile(const std::string& path) {
    CMapStringToString boxes;
    const std::string text = readFile(path);
    std::vector<std::string> quoted;
    for (std::size_t open = text.find('"'); open != std::string::npos; open = text.find('"', open)) {
        const std::size_t close = text.find('"', open + 1);
        if (close == std::string::npos) break;
        quoted.push_back(text.substr(open + 1, close - open - 1));
        open = close + 1;
    }
    for (std::size_t i = 0; i + 1 < quoted.size(); i += 2) boxes[quoted[i].c_str()] = quoted[i + 1].c_str();
    return boxes;
}

using ::EnvGuard;

}  // namespace envtest
