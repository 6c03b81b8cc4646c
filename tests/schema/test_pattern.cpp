// The pattern matcher: each pattern of the type catalogue on values it must
// accept and reject, the dialect itself, patterns outside it, and texts and
// patterns that would hurt a backtracking matcher.
#include <gtest/gtest.h>

// std::regex serves here only as an oracle to compare with; under the
// sanitizers its libstdc++ internals set off false maybe-uninitialized warnings.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"

#include <fstream>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "schema/model/model.h"
#include "schema/pattern.h"
#include "support.h"

namespace {

struct PatternCase {
    std::string pattern;
    std::vector<std::string> accepted;
    std::vector<std::string> rejected;
    bool plainAscii;  // std::regex can stand as a second opinion
};

std::vector<PatternCase> readCases(const std::string& file) {
        std::vector<PatternCase> read;
        std::ifstream in(CT600_SOURCE_DIR "/tests/data/" + file, std::ios::binary);
        for (std::string line; std::getline(in, line);) {
            std::string value;
            for (std::size_t i = 2; i < line.size(); ++i) {
                if (line[i] != '\\' || i + 1 == line.size()) value += line[i];
                else value += line[++i] == 't' ? '\t' : line[i] == 'n' ? '\n' : line[i];
            }
            if (line.rfind("= ", 0) == 0) read.push_back({line.substr(2), {}, {}, false});
            else if (line == "*") read.back().plainAscii = true;
            else if (line.rfind("+ ", 0) == 0) read.back().accepted.push_back(value);
            else if (line.rfind("- ", 0) == 0) read.back().rejected.push_back(value);
        }
        return read;
}

// The eighteen patterns of the catalogue.
const std::vector<PatternCase>& catalogueCases() {
    static const std::vector<PatternCase> cases = readCases("pattern_cases.txt");
    return cases;
}

TEST(Pattern, EachCataloguePatternAcceptsAndRejects) {
    for (const PatternCase& c : catalogueCases()) {
        const CSchemaPattern* p = knownPattern(c.pattern);
        ASSERT_NE(p, nullptr) << c.pattern;
        EXPECT_TRUE(p->IsValid()) << c.pattern;
        for (const std::string& v : c.accepted) {
            EXPECT_TRUE(p->Matches(v)) << c.pattern << " on \"" << v << "\"";
            CString message = "untouched";
            EXPECT_EQ(patternvalidate(c.pattern.c_str(), v.c_str(), message), 1) << c.pattern << " on \"" << v << "\"";
            EXPECT_EQ(message, "untouched");
        }
        for (const std::string& v : c.rejected) {
            EXPECT_FALSE(p->Matches(v)) << c.pattern << " on \"" << v << "\"";
            CString message;
            EXPECT_EQ(patternvalidate(c.pattern.c_str(), v.c_str(), message), 0) << c.pattern << " on \"" << v << "\"";
            EXPECT_EQ(message.str(), schematest::fails(c.pattern));
        }
    }
}

// The tests above cover exactly the catalogue's patterns, and there are eighteen.
TEST(Pattern, TheCatalogueHoldsTheEighteenTestedPatterns) {
    std::set<std::string> catalogue, tested;
    for (const char* p : schemamodel::cataloguePatterns()) catalogue.insert(p);
    for (const PatternCase& c : catalogueCases()) tested.insert(c.pattern);
    EXPECT_EQ(catalogue.size(), 18u);
    EXPECT_EQ(catalogue, tested);
}

TEST(Pattern, CompiledOnceAndShared) {
    const CSchemaPattern* a = knownPattern("[0-9]{10}");
    EXPECT_EQ(a, knownPattern(std::string("[0-9]{1") + "0}"));
    EXPECT_EQ(knownPattern("[0-9]{11}"), nullptr);
    // Every catalogue pattern is small enough for the table-driven automaton.
    for (const char* p : schemamodel::cataloguePatterns()) EXPECT_GT(knownPattern(p)->DfaStates(), 0) << p;
}

// The pound sign, 0x82 and 0xAC are single bytes inside classes, and a range
// may run through bytes above 127.
TEST(Pattern, BytesAbove127AreSingleBytes) {
    struct Case {
        const char* pattern;
        const char* text;
        bool matches;
    };
    const Case cases[] = {
        {"[\xA3]", "\xA3", true},         {"[\xA3]", "\xC2\xA3", false},  {"[^\xA3]", "\x82", true},
        {"[\x80-\xFF]+", "\x80\xA3\xFF", true}, {"[\x80-\xFF]+", "\x7F", false}, {".", "\xFF", true},
        {"\xA3[0-9]+", "\xA3" "12", true}, {"[^\xA3]*", "12\xA3", false},  {"[a\xAC]{2}", "a\xAC", true},
    };
    for (const Case& c : cases) {
        CString message;
        EXPECT_EQ(patternvalidate(c.pattern, c.text, message), c.matches ? 1 : 0) << c.pattern << " / " << c.text;
    }
}

// Cases in tests/data/pattern_dialect.txt.
TEST(Pattern, TheDialect) {
    std::size_t n = 0;
    for (const PatternCase& c : readCases("pattern_dialect.txt")) {
        const CSchemaPattern p(c.pattern);
        EXPECT_TRUE(p.IsValid()) << c.pattern;
        for (const std::string& v : c.accepted) EXPECT_TRUE(p.Matches(v)) << c.pattern << " / " << v;
        for (const std::string& v : c.rejected) EXPECT_FALSE(p.Matches(v)) << c.pattern << " / " << v;
        n += c.accepted.size() + c.rejected.size();
    }
    EXPECT_EQ(n, 59u);
}

TEST(Pattern, OutsideTheDialectMatchesNothingAndSaysSo) {
    const char* invalid[] = {
        "(", ")", "a)", "[", "[]", "[^]", "[a", "a{2,1}", "a**", "a+*", "\\q", "\\", "a{1001}", "a{1,1001}",
        "[z-a]", "[a-c-e]", "[a-\\d]", "{1}", "*", "+a", "?", "a{", "a{x}", "a{1", "a{,2}", "]", "}", "[a[b]]",
        "\\w", "\\s", "\\p{L}",
    };
    for (const char* p : invalid) {
        const CSchemaPattern compiled(p);
        EXPECT_FALSE(compiled.IsValid()) << p;
        EXPECT_FALSE(compiled.Matches("")) << p;
        EXPECT_FALSE(compiled.Matches("a")) << p;
        CString message;
        EXPECT_EQ(patternvalidate(p, "a", message), 0) << p;
        EXPECT_EQ(message.str(), std::string("cannot be checked: the pattern ") + p + " is not valid");
    }
    // Nesting is bounded; within the bound it compiles.
    const std::string deep = std::string(64, '(') + "a" + std::string(64, ')');
    EXPECT_TRUE(CSchemaPattern(deep).Matches("a"));
    const std::string deeper = std::string(1000, '(') + "a" + std::string(1000, ')');
    EXPECT_FALSE(CSchemaPattern(deeper).IsValid());
    // Repeats of repeats are bounded in size and in time.
    EXPECT_FALSE(CSchemaPattern("((a{1000}){1000}){1000}").IsValid());
    EXPECT_FALSE(CSchemaPattern("((((((){1000}){1000}){1000}){1000}){1000})").IsValid());
    // Null arguments are empty texts.
    CString message;
    EXPECT_EQ(patternvalidate(nullptr, nullptr, message), 1);
    EXPECT_EQ(patternvalidate("a", nullptr, message), 0);
}

// A pattern whose automaton would be too large is matched by state sets,
// with the same answers.
TEST(Pattern, LargeAutomataFallBackToStateSets) {
    const CSchemaPattern p("(a|b)*a(a|b){14}");
    ASSERT_TRUE(p.IsValid());
    EXPECT_EQ(p.DfaStates(), 0);
    std::mt19937 random(7);
    for (int i = 0; i < 300; ++i) {
        std::string text;
        const int n = static_cast<int>(random() % 30);
        for (int k = 0; k < n; ++k) text += random() % 2 ? 'a' : 'b';
        const bool expected = text.size() >= 15 && text[text.size() - 15] == 'a';
        EXPECT_EQ(p.Matches(text), expected) << text;
    }
    EXPECT_FALSE(p.Matches("abc"));
}

// No backtracking on nested repeats or on a long value that fails at its
// last byte: a matcher that backtracks never finishes these (the time itself
// is measured in the benchmarks).
TEST(Pattern, LongTextsAndNestedRepeatsFinish) {
    const std::string longValue = std::string(4'000'000, '9') + ".00";
    EXPECT_TRUE(knownPattern(".*\\.00")->Matches(longValue));
    EXPECT_FALSE(knownPattern(".*\\.00")->Matches(longValue + "1"));
    EXPECT_TRUE(knownPattern("-?(([1-9][0-9]*)|0)\\.[0-9]{2}")->Matches(longValue));
    const std::string as(200'000, 'a');
    EXPECT_FALSE(CSchemaPattern("(a*)*b").Matches(as));
    EXPECT_FALSE(CSchemaPattern("(a|a)*b").Matches(as));
    EXPECT_TRUE(CSchemaPattern("(a|aa)+").Matches(as));
}

// A second opinion from the standard library on texts close to the accepted
// ones, for the patterns without bytes above 127.
TEST(Pattern, AgreesWithStdRegexOnNearMisses) {
    const std::string alphabet = "0123456789.-vXNRTCHZBEWSIaz '()/&*_,\"!%+:@<>?=;#$~";
    std::mt19937 random(2024);
    auto pick = [&] { return alphabet[random() % alphabet.size()]; };
    for (const PatternCase& c : catalogueCases()) {
        if (!c.plainAscii) continue;
        const std::regex reference(c.pattern);
        const CSchemaPattern& p = *knownPattern(c.pattern);
        std::vector<std::string> seeds = c.accepted;
        seeds.insert(seeds.end(), c.rejected.begin(), c.rejected.end());
        for (const std::string& seed : seeds) {
            for (int i = 0; i < 200; ++i) {
                std::string text = seed;
                const int edits = 1 + static_cast<int>(random() % 3);
                for (int e = 0; e < edits; ++e) {
                    const std::size_t at = text.empty() ? 0 : random() % (text.size() + 1);
                    switch (random() % 3) {
                        case 0: text.insert(text.begin() + static_cast<long>(at), pick()); break;
                        case 1:
                            if (at < text.size()) text.erase(at, 1);
                            break;
                        default:
                            if (at < text.size()) text[at] = pick();
                            break;
                    }
                }
                EXPECT_EQ(p.Matches(text), std::regex_match(text, reference)) << c.pattern << " on \"" << text << "\"";
            }
        }
    }
}

}  // namespace
