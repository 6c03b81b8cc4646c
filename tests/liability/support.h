// Small helpers shared by the liability suites.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "common/library.h"
#include "common/xmlvar.h"
#include "platform/message_box.h"
#include "support/capture.h"
#include "support/tree.h"

// Value at a path of child names ("FY1/MSCR/m2"), or "<missing>".
inline std::string valueAt(const CXMLVar& root, const char* path) {
    const CXMLVar* node = nodeAt(&root, path);
    return node ? std::string(node->value.c_str()) : "<missing>";
}

// A file of the temporary folder.
inline std::string tempFile(const char* name) { return readFile(NativePath(GetTempDir() + "\\" + name).c_str()); }

inline std::string result(const CMapStringToString& map, const char* key) {
    const CString* text = map.PLookup(key);
    return text ? std::string(text->c_str()) : "<unset>";
}

using Texts = std::vector<std::pair<const char*, const char*>>;

// Each key of a result map against its expected text ("<unset>" for no key).
inline void expectResults(const CMapStringToString& map, const Texts& rows, const std::string& why = "") {
    for (const auto& [key, value] : rows) EXPECT_EQ(result(map, key), value) << key << " " << why;
}

// The rows of a case file in tests/data, each cut into `width` tab-separated
// cells. Lines starting '#' are comments, but the one starting `header` names
// the columns. Returns how many rows were handed to `each`.
template <class Each>
int forEachCase(const char* name, std::size_t width, const char* header, Each each) {
    std::ifstream in(std::string(CT600_SOURCE_DIR "/tests/data/") + name);
    std::vector<std::string> keys;
    int n = 0;
    for (std::string line; std::getline(in, line);) {
        std::vector<std::string> f;
        std::stringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) f.push_back(cell);
        f.resize(width);
        if (line.rfind(header, 0) == 0) keys = f;
        if (line.empty() || line[0] == '#') continue;
        each(f, keys);
        ++n;
    }
    return n;
}
