// The case files under tests/data: tables of tab-separated rows, and files of
// blocks, each "= what", its body lines and its "> expected" lines.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace testdata {

// The rows of a table cut at tabs, each of at least `width` cells (missing
// ones empty); blank lines and '#' lines are left out.
inline std::vector<std::vector<std::string>> rows(const std::string& name, std::size_t width = 0) {
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/" + name, std::ios::binary);
    std::vector<std::vector<std::string>> out;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::stringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) f.push_back(cell);
        if (f.size() < width) f.resize(width);
        out.push_back(std::move(f));
    }
    return out;
}

// Text of a case file with each \xNN made its byte.
inline std::string unescape(std::string text) {
    for (std::size_t at = 0; (at = text.find("\\x", at)) != std::string::npos; ++at)
        text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
    return text;
}

// A line cut at its first tab: the key, and the rest (empty without a tab).
inline std::pair<std::string, std::string> cut(const std::string& line) {
    const std::size_t tab = line.find('\t');
    return {line.substr(0, tab), tab == std::string::npos ? "" : line.substr(tab + 1)};
}

struct Case {
    std::string what;
    std::vector<std::string> body, expected;  // ">" alone expects the empty text
};

inline std::vector<Case> cases(const std::string& name) {
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/" + name, std::ios::binary);
    std::vector<Case> out;
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("= ", 0) == 0) out.push_back({line.substr(2), {}, {}});
        else if (line.empty() || line[0] == '#' || out.empty()) continue;
        else if (line[0] == '>') out.back().expected.push_back(line.substr(line.size() > 1 ? 2 : 1));
        else out.back().body.push_back(line);
    }
    return out;
}

}  // namespace testdata
