// The catalogue: for every rule code, a return on which it reports its
// published text and a neighbouring one on which it stays silent (cases in
// tests/data/rule_cases.tsv); every message against the published table of
// codes (tests/data/rule_messages.tsv); a clean return on which nothing
// reports.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "rules/catalogue/catalogue.h"
#include "support.h"
#include "support/capture.h"
#include "support/table.h"

namespace {

using namespace rulestest;

constexpr const char* kCleanReturn = "clean_return.xml";
constexpr const char* kAllPages = "clean_return_all_pages.xml";

// The published message of each code.
const std::map<std::string, std::string>& published() {
    static const auto table = [] {
        std::map<std::string, std::string> m;
        for (const auto& row : testdata::rows("rule_messages.tsv")) m[row.at(0)] = row.size() > 1 ? row[1] : "";
        return m;
    }();
    return table;
}

// An edit as the cases file writes it: -PATH drops, PATH+=VALUE[@NAME=V...]
// appends, PATH@NAME=VALUE sets an attribute, PATH=VALUE sets a value.
Edit decode(const std::string& token) {
    if (token[0] == '-') return drop(token.c_str() + 1);
    if (const auto plus = token.find("+="); plus != std::string::npos) {
        std::stringstream rest(token.substr(plus + 2));
        std::string value, pair;
        std::getline(rest, value, '@');
        std::vector<std::pair<std::string, std::string>> attrs;
        while (std::getline(rest, pair, '@')) attrs.emplace_back(pair.substr(0, pair.find('=')), pair.substr(pair.find('=') + 1));
        return add(token.substr(0, plus).c_str(), value.c_str(), attrs);
    }
    const auto eq = token.find('=');
    const std::string left = token.substr(0, eq), value = token.substr(eq + 1);
    if (const auto at = left.find('@'); at != std::string::npos)
        return attr(left.substr(0, at).c_str(), left.substr(at + 1).c_str(), value.c_str());
    return set(left.c_str(), value.c_str());
}

// Edits separated by " | "; "..." stands for the edits that fire the rule.
Edits decodeAll(const std::string& text, const Edits& fire = {}) {
    Edits edits;
    std::size_t from = 0;
    while (from <= text.size()) {
        std::size_t to = text.find(" | ", from);
        if (to == std::string::npos) to = text.size();
        const std::string token = text.substr(from, to - from);
        if (token == "...") edits.insert(edits.end(), fire.begin(), fire.end());
        else if (!token.empty()) edits.push_back(decode(token));
        from = to + 3;
    }
    return edits;
}

std::unique_ptr<CXMLVar> cleanReturn(const std::string& file) {
    static std::map<std::string, std::string> texts;
    if (!texts.count(file)) texts[file] = readFile(CT600_SOURCE_DIR "/tests/data/" + file);
    return parseXml(texts[file]);
}

std::vector<std::string> runWith(const Edits& edits, const char* base = kCleanReturn) {
    auto message = cleanReturn(base);
    for (const Edit& edit : edits) apply(message.get(), edit);
    return runRules(message.get());
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const auto& t : texts) all += "\n  " + t;
    return all;
}

class Catalogue : public ::testing::Test {
protected:
    void SetUp() override { fixToday(); }
};

TEST_F(Catalogue, CleanReturnsRaiseNothing) {
    for (const char* file : {kCleanReturn, kAllPages}) {
        const auto errors = runWith({}, file);
        EXPECT_TRUE(errors.empty()) << file << joined(errors);
    }
}

TEST_F(Catalogue, EachRuleReportsItsPublishedTextAndItsNeighbourDoesNot) {
    std::set<std::string> covered;
    for (const auto& row : testdata::rows("rule_cases.tsv")) {
        const std::string& code = row.at(0);
        SCOPED_TRACE("rule " + code);
        covered.insert(code);
        const char* base = row.at(2) == "all" ? kAllPages : kCleanReturn;
        const Edits fire = decodeAll(row.at(3));
        const std::string text = code + ":" + published().at(code);
        const auto fired = runWith(fire, base);
        EXPECT_EQ(std::count(fired.begin(), fired.end(), text), std::stoi(row.at(1))) << "fired:" << joined(fired);
        const auto quiet = runWith(decodeAll(row.size() > 4 ? row[4] : "", fire), base);
        for (const auto& error : quiet) EXPECT_NE(error.rfind(code + ":", 0), 0u) << "quiet:" << joined(quiet);
    }
    EXPECT_EQ(covered.size(), published().size()) << "every published code has its case";
}

// 186 groups of 1 to 6 rules, 284 rules, each code with its published text;
// a code stands in one group only, but for the six that several groups share.
TEST_F(Catalogue, ShapeOfTheCatalogueAndItsMessages) {
    const std::map<std::string, int> shared = {{"9952", 5}, {"9953", 5}, {"9970", 4},
                                               {"9900", 2}, {"9901", 2}, {"9902", 2}};
    std::map<std::string, int> groupsOfCode;
    int rules = 0, previous = 0;
    for (const RuleGroup& group : RuleCatalogue()) {
        EXPECT_EQ(group.number, ++previous);
        EXPECT_STREQ(group.table[1], "GovTalkMessage") << group.number;
        EXPECT_TRUE(group.rules.size() >= 1 && group.rules.size() <= 6) << group.number;
        for (const RuleRow& rule : group.rules) {
            ++rules;
            ++groupsOfCode[rule.code];
            const auto it = published().find(rule.code);
            ASSERT_NE(it, published().end()) << rule.code;
            EXPECT_EQ(rule.message, it->second) << rule.code;
        }
    }
    EXPECT_EQ(previous, 186);
    EXPECT_EQ(rules, 284);
    EXPECT_EQ(groupsOfCode.size(), published().size());
    for (const auto& [code, n] : groupsOfCode) EXPECT_EQ(n, shared.count(code) ? shared.at(code) : 1) << code;
}

// The rules marked with a dagger test completion through the logging or: one
// line each time the test gets that far, and no line when it stops before.
TEST_F(Catalogue, DaggerRulesLogWhenTheyReachTheirTest) {
    const auto runs = testdata::cases("rule_dagger_runs.txt");  // "base<TAB>edits", "code<TAB>log line"s
    ASSERT_EQ(runs.size(), 4u);
    for (const auto& run : runs) {
        std::vector<std::string> lines;
        for (const auto& line : run.expected) lines.push_back(line.substr(line.find('\t') + 1));
        const std::size_t tab = run.what.find('\t');
        LogCapture log;
        runWith(decodeAll(tab == std::string::npos ? "" : run.what.substr(tab + 1)),
                run.what.substr(0, tab) == "all" ? kAllPages : kCleanReturn);
        EXPECT_EQ(log.lines, lines) << run.what;
    }
}

std::vector<std::string> codesOf(const std::vector<std::string>& texts) {
    std::vector<std::string> codes;
    for (const auto& t : texts) codes.push_back(t.substr(0, t.find(':')));
    return codes;
}

TEST_F(Catalogue, OddDocumentsDoNotStopTheRun) {
    const auto cases = testdata::cases("rule_odd_documents.txt");
    for (const auto& c : cases) {
        std::unique_ptr<CXMLVar> message(parse(c.body.at(0).c_str()));
        std::string got;
        for (const auto& code : codesOf(runRules(message.get()))) got += (got.empty() ? "" : " ") + code;
        EXPECT_EQ(got, c.expected.at(0)) << c.what;
    }
    EXPECT_EQ(cases.size(), 6u);
}

}  // namespace
