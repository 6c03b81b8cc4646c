// The box map is kept twice: as the template the code fills, and as the table
// in docs/box-map.md that a tax person reads. These tests hold them together,
// and hold the table's form boxes to HMRC's own annotation of the schema.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "envelope_support.h"
#include "support/table.h"

namespace {

struct Row {
    std::string key, element, kind, formBox;
    int line = 0;
};

// The cells of a table line, without backquotes and the blanks around them.
std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> out;
    std::stringstream in(line.substr(1));
    for (std::string part; std::getline(in, part, '|');) {
        std::erase(part, '`');
        const auto first = part.find_first_not_of(' ');
        out.push_back(first == std::string::npos ? "" : part.substr(first, part.find_last_not_of(' ') - first + 1));
    }
    if (!out.empty() && out.back().empty()) out.pop_back();
    out.resize(std::max<std::size_t>(out.size(), 4));
    return out;
}

// Rows of every table whose header begins Key, Element, Kind.
std::vector<Row> documentedRows() {
    std::vector<Row> rows;
    std::istringstream in(readFile(envtest::sourcePath("docs/box-map.md")));
    std::string line;
    bool inTable = false;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (line.empty() || line[0] != '|') {
            inTable = false;
            continue;
        }
        const std::vector<std::string> c = cells(line);
        if (c[0] == "Key" && c[1] == "Element" && c[2] == "Kind") {
            inTable = true;
            continue;
        }
        if (!inTable || c[0].find("---") == 0) continue;
        rows.push_back({c[0], c[1], c[2], c[3], number});
    }
    return rows;
}

TEST(BoxMapDocument, TheTableSaysWhatTheTemplateDoes) {
    const auto templ = envtest::loadTemplate();
    std::vector<CString> problems;
    const std::vector<BoxMapEntry> entries = ListBoxMap(templ.get(), &problems);
    const std::vector<Row> rows = documentedRows();
    for (const CString& p : problems) ADD_FAILURE() << "not a placeholder: " << p;
    ASSERT_GT(entries.size(), 300u);

    const std::size_t n = std::min(entries.size(), rows.size());
    for (std::size_t i = 0; i < n; ++i) {
        const BoxMapEntry& e = entries[i];
        const Row& r = rows[i];
        if (r.key == e.sources.str() && r.element == e.path.str() && r.kind == e.kind.str()) continue;
        FAIL() << "docs/box-map.md line " << r.line << " says " << r.key << " | " << r.element << " | " << r.kind
               << "\n  the template has " << e.sources << " | " << e.path << " | " << e.kind;
    }
    for (std::size_t i = n; i < entries.size(); ++i)
        ADD_FAILURE() << "not in docs/box-map.md: " << entries[i].sources << " | " << entries[i].path;
    for (std::size_t i = n; i < rows.size(); ++i)
        ADD_FAILURE() << "docs/box-map.md line " << rows[i].line << " has no placeholder: " << rows[i].key;
}

// HMRC's annotation names each box's element from the root, or from a
// supplementary page's root written [CTA] and so on; "..." cuts a path short.
std::multimap<std::string, std::string> hmrcBoxes() {
    const std::map<std::string, std::string> pages = {
        {"[CTA]", "LoansByCloseCompanies"}, {"[CTB]", "ControlledForeignCompanies"}, {"[CTC]", "GroupAndConsortium"},
        {"[CTE]", "Charity"},               {"[CTF]", "TonnageTax"},                 {"[CTH]", "CrossBorderRoyalties"},
        {"[CTI]", "RingFenceTrade"},        {"[CTJ]", "TaxAvoidanceSchemes"},
    };
    std::multimap<std::string, std::string> out;
    for (auto f : testdata::rows("../envelope/hmrc-ct600-box-map.tsv", 2)) {
        if (f[0] == "box") continue;
        for (const auto& [mark, root] : pages)
            if (f[1].rfind(mark, 0) == 0) f[1] = root + f[1].substr(mark.size());
        std::stringstream each(f[0]);
        for (std::string box; std::getline(each, box, '/');) out.emplace(box, f[1]);
    }
    return out;
}

bool samePlace(const std::string& hmrc, const std::string& element) {
    const auto cut = hmrc.find("...");
    if (cut != std::string::npos) return element.compare(0, cut, hmrc, 0, cut) == 0;
    return element == hmrc || element.rfind(hmrc + "/", 0) == 0;
}

TEST(BoxMapDocument, FormBoxesAgreeWithHmrcsAnnotation) {
    const auto hmrc = hmrcBoxes();
    if (hmrc.empty()) GTEST_SKIP() << "HMRC's box map is not at hand";
    // Where this version of the document differs from the later schema that
    // HMRC annotated, the document holds.
    const std::map<std::string, std::string> laterSchema = {
        {"C30",
         "GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/AuthorisationForSimplifiedArrangements/CompanyName"},
        {"790", "LossesDeficitsAndExcess/AmountArising/LossesOfTradesOutsideUK"},
    };
    int checked = 0;
    for (const Row& r : documentedRows()) {
        if (r.formBox.empty() || r.formBox == "\xE2\x80\x94") continue;  // an em dash: no box on the form
        const auto [first, last] = hmrc.equal_range(r.formBox);
        if (first == last) continue;  // a box HMRC's annotation does not name
        ++checked;
        bool found = false;
        for (auto it = first; it != last; ++it) found = found || samePlace(it->second, r.element);
        if (!found) {
            const auto known = laterSchema.find(r.formBox);
            found = known != laterSchema.end() && known->second == r.element;
        }
        EXPECT_TRUE(found) << "docs/box-map.md line " << r.line << ": box " << r.formBox << " is "
                           << first->second << " in HMRC's annotation, not " << r.element;
    }
    EXPECT_GT(checked, 250);
}

TEST(BoxMapDocument, EveryKeyHasTheFormOfABoxKeyOrAWord) {
    const auto templ = envtest::loadTemplate();
    for (const BoxMapEntry& e : ListBoxMap(templ.get())) {
        Placeholder p;
        ASSERT_TRUE(ParsePlaceholder(e.sources.view(), p)) << e.path;
        for (const PlaceholderSource& s : p.sources) {
            if (s.literal) continue;
            const std::string key = s.text.str();
            const bool box = key.size() > 1 && key[0] == 'Q' &&
                             key.find_first_not_of("QABCDEFGHIJ0123456789.#") == std::string::npos;
            const bool word =
                key[0] != 'Q' && key.find_first_not_of("abcdefghijklmnopqrstuvwxyz_"
                                                       "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789") == std::string::npos;
            EXPECT_TRUE(box || word) << key << " at " << e.path;
            // A row mark only ever stands after the column and the dot.
            if (key.find('#') != std::string::npos) {
                EXPECT_EQ(key.substr(key.size() - 2), ".#") << key;
            }
        }
    }
}

}  // namespace
