#include "box_labels.h"

#include <cctype>

#include "box_map_text.h"
#include "common/library.h"

namespace cli {

namespace {

std::string_view trim(std::string_view s) {
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
    while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
    return s;
}

std::vector<std::string_view> cells(std::string_view line) {
    std::vector<std::string_view> out;
    line = trim(line);
    if (line.empty() || line.front() != '|') return out;
    line.remove_prefix(1);
    while (!line.empty()) {
        const auto bar = line.find('|');
        out.push_back(trim(line.substr(0, bar)));
        if (bar == std::string_view::npos) break;
        line.remove_prefix(bar + 1);
    }
    if (!out.empty() && out.back().empty()) out.pop_back();
    return out;
}

std::string withoutTicks(std::string_view s) {
    std::string out;
    for (char c : s)
        if (c != '`') out += c;
    return out;
}

// The box keys of a key cell: `name` or `Q1`, `Q4` or `'0'` (a quoted text is no key).
std::vector<std::string> keysOf(std::string_view cell) {
    std::vector<std::string> keys;
    std::size_t at = 0;
    while ((at = cell.find('`', at)) != std::string_view::npos) {
        const auto end = cell.find('`', at + 1);
        if (end == std::string_view::npos) break;
        const std::string_view key = cell.substr(at + 1, end - at - 1);
        if (!key.empty() && key.front() != '\'') keys.emplace_back(key);
        at = end + 1;
    }
    return keys;
}

bool isRepeated(const std::string& key) { return key.size() > 2 && key.compare(key.size() - 2, 2, ".#") == 0; }

// Where the map gives no meaning, the element's own name says it: Total.
std::string meaningOf(std::string_view meaning, const std::string& element) {
    if (!meaning.empty() && meaning != "NODESC") return std::string(meaning);
    const auto slash = element.find_last_of("/@");
    const std::string last = slash == std::string::npos ? element : element.substr(slash + 1);
    return InsertSpaces(last.c_str()).str();
}

}  // namespace

BoxLabels::BoxLabels(std::string_view markdown) {
    std::string heading;
    bool inTable = false;
    int order = 0, family = -1;
    while (!markdown.empty()) {
        const auto end = markdown.find('\n');
        const std::string_view line = markdown.substr(0, end);
        markdown.remove_prefix(end == std::string_view::npos ? markdown.size() : end + 1);

        if (line.rfind("## ", 0) == 0) {
            heading = std::string(trim(line.substr(3)));
            inTable = false;
            continue;
        }
        const auto row = cells(line);
        if (row.size() == 5 && row[0] == "Key" && row[1] == "Element" && row[3] == "Form box") {
            inTable = true;
            sections_.push_back(heading);
            family = -1;
            continue;
        }
        if (!inTable) continue;
        if (row.size() != 5) {
            if (row.empty()) inTable = false;
            continue;
        }
        BoxKind kind;
        if (!ParseBoxKind(withoutTicks(row[2]), kind)) continue;  // the |---| line
        const std::vector<std::string> keys = keysOf(row[0]);
        if (keys.empty()) continue;
        const bool repeated = isRepeated(keys.front());
        if (!repeated || family < 0) family = order;
        BoxLabel label;
        label.section = static_cast<int>(sections_.size()) - 1;
        label.formBox = row[3] == "\xE2\x80\x94" || row[3] == "-" ? std::string() : std::string(row[3]);
        label.meaning = meaningOf(row[4], withoutTicks(row[1]));
        label.kind = kind;
        label.order = order++;
        label.family = family;
        if (!repeated) family = -1;
        for (const std::string& key : keys) {
            auto [it, added] = labels_.try_emplace(key, label);
            if (!added && it->second.kind == BoxKind::Signed) it->second = label;
        }
    }
}

const BoxLabels& BoxLabels::ThirdGeneration() {
    static const BoxLabels labels(kBoxMapText);
    return labels;
}

FoundLabel BoxLabels::Find(const std::string& key) const {
    if (const auto it = labels_.find(key); it != labels_.end()) return {&it->second, 0};
    // QA10B.2 is row 2 of QA10B.#.
    const auto dot = key.rfind('.');
    if (dot == std::string::npos || dot + 1 == key.size() || key.size() - dot > 6) return {};
    int row = 0;
    for (std::size_t i = dot + 1; i < key.size(); ++i) {
        if (!std::isdigit(static_cast<unsigned char>(key[i]))) return {};
        row = row * 10 + (key[i] - '0');
    }
    if (row == 0) return {};
    const auto it = labels_.find(key.substr(0, dot) + ".#");
    return it == labels_.end() ? FoundLabel{} : FoundLabel{&it->second, row};
}

}  // namespace cli
