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

// The rows of a tab-separated file of cases under the source tree, "#" lines
// left out; each must have the number of fields given.
inline std::vector<std::vector<std::string>> tableRows(const std::string& relative, std::size_t fields) {
    std::vector<std::vector<std::string>> rows;
    std::istringstream in(readFile(sourcePath(relative)));
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        for (std::size_t at = 0, tab; at <= line.size(); at = tab + 1) {
            tab = std::min(line.find('\t', at), line.size());
            f.push_back(line.substr(at, tab - at));
        }
        f.resize(fields);
        rows.push_back(std::move(f));
    }
    return rows;
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

// Sets an environment variable for the length of a scope.
class EnvGuard {
public:
    EnvGuard(const char* name, const std::string& value) : name_(name) {
        if (const char* old = std::getenv(name)) {
            had_ = true;
            old_ = old;
        }
        setenv(name, value.c_str(), 1);
    }
    ~EnvGuard() {
        if (had_)
            setenv(name_.c_str(), old_.c_str(), 1);
        else
            unsetenv(name_.c_str());
    }
    EnvGuard(const EnvGuard&) = delete;
    EnvGuard& operator=(const EnvGuard&) = delete;

private:
    std::string name_, old_;
    bool had_ = false;
};

}  // namespace envtest
