// Small helpers shared by the liability suites.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "common/library.h"
#include "common/xmlvar.h"

// Value at a path of child names ("FY1/MSCR/m2"), or "<missing>".
inline std::string valueAt(const CXMLVar& root, const char* path) {
    const CXMLVar* node = &root;
    std::stringstream parts(path);
    std::string name;
    while (node && std::getline(parts, name, '/')) node = node->FindChild(name.c_str());
    return node ? std::string(node->value.c_str()) : "<missing>";
}

inline std::string tempFile(const char* name) {
    std::ifstream in(NativePath(GetTempDir() + "\\" + name).c_str(), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

inline std::string result(const CMapStringToString& map, const char* key) {
    const CString* text = map.PLookup(key);
    return text ? std::string(text->c_str()) : "<unset>";
}
