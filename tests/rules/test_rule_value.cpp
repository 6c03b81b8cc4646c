// The rule value: what nodes, texts and numbers read as, and how they compare.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <memory>
#include <string>
#include <vector>

#include "common/basics.h"
#include "rules/rulevalue.h"
#include "support.h"
#include "support/capture.h"

namespace {

// Cases in tests/data/rule_value_nodes.tsv.
TEST(RuleValue, ReadsNodes) {
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/rule_value_nodes.tsv");
    int n = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::stringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) f.push_back(cell);
        f.resize(5);
        SCOPED_TRACE(f[0]);
        std::unique_ptr<CXMLVar> node(f[1] != "-" ? rulestest::parse(f[1].c_str()) : nullptr);
        CRuleValue v;
        v.SetNode(node.get());
        EXPECT_EQ(v.IsTrue(), f[2] == "1");
        EXPECT_EQ(v.Number(), std::stod(f[3]));
        EXPECT_EQ(std::string(v.Text()), f[4]);
        ++n;
    }
    EXPECT_EQ(n, 20);
}

TEST(RuleValue, NumericText) {
    const struct {
        const char* text;
        bool numeric;
        bool date;
    } cases[] = {
        {"1500", true, false},  {"1500.50", true, false}, {"-12", true, false},    {"0", true, false},
        {"12abc", true, false}, {"", false, false},       {"yes", false, false},   {".5", false, false},
        {"+5", false, false},   {" 5", false, false},     {"-", false, false},     {"2015-04-01", false, true},
        {"-2015-04-01", false, false}, {"12345-6", true, false}, {"1234-", false, true}, {"123", true, false},
        {"abcd-", false, true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsNumericText(c.text), c.numeric) << '"' << c.text << '"';
        EXPECT_EQ(IsDateText(c.text), c.date) << '"' << c.text << '"';
    }
    EXPECT_FALSE(IsNumericText(nullptr));
    EXPECT_FALSE(IsDateText(nullptr));
}

TEST(RuleValue, SetTextAndSetNumber) {
    CRuleValue v;
    v.SetText("42");
    EXPECT_EQ(v.m_IsNumber, 0);
    EXPECT_EQ(v.Number(), 42);  // decided when read
    EXPECT_EQ(std::string(v.Text()), "42");
    v.SetNumber(7);
    EXPECT_EQ(v.Number(), 7);
    EXPECT_EQ(std::string(v.Text()), "42");  // the text stays
    CRuleValue n;
    n.SetNumber(2.5);
    EXPECT_EQ(std::string(n.Text()), "2");  // "%.0f", halves to even
    n.SetNumber(-0.0);
    EXPECT_FALSE(n.IsTrue());
    CRuleValue t;
    t.SetText("");
    EXPECT_FALSE(t.IsTrue());
    EXPECT_EQ(t.Number(), 0);
}

// How a value is made in the comparison tables.
struct Made {
    enum { None, Leaf, Text, Number, Container } kind;
    const char* text;
    double number;
};
CRuleValue make(const Made& m) {
    CRuleValue v;
    switch (m.kind) {
        case Made::None: v.SetNode(nullptr); break;
        case Made::Leaf: {
            CXMLVar leaf("A", m.text);
            v.SetNode(&leaf);
            break;
        }
        case Made::Text: v.SetText(m.text); break;
        case Made::Number: v.SetNumber(m.number); break;
        case Made::Container: {
            CXMLVar node("A", m.text);
            node.AddChild(new CXMLVar("B", "1"), nullptr);
            v.SetNode(&node);
            break;
        }
    }
    return v;
}
constexpr Made none{Made::None, "", 0};
constexpr Made container{Made::Container, "stray", 0};
constexpr Made leaf(const char* t) { return {Made::Leaf, t, 0}; }
constexpr Made text(const char* t) { return {Made::Text, t, 0}; }
constexpr Made number(double x) { return {Made::Number, "", x}; }

// Cases in tests/data/rule_value_comparisons.tsv.
TEST(RuleValue, ComparesByTheRightOperand) {
    const auto madeOf = [](const std::string& t) {
        const std::string rest = t.substr(t.find(':') + 1);
        if (t == "none") return make(none);
        if (t == "container") return make(container);
        if (t.rfind("leaf:", 0) == 0) return make(leaf(rest.c_str()));
        if (t.rfind("text:", 0) == 0) return make(text(rest.c_str()));
        return make(number(std::stod(rest)));
    };
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/rule_value_comparisons.tsv");
    int n = 0;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::vector<std::string> f;
        std::stringstream cells(line);
        for (std::string cell; std::getline(cells, cell, '\t');) f.push_back(cell);
        ASSERT_EQ(f.size(), 8u) << line;
        SCOPED_TRACE(f[0]);
        const CRuleValue a = madeOf(f[1]), b = madeOf(f[2]);
        EXPECT_EQ(a == b, f[3] == "1");
        EXPECT_EQ(a < b, f[4] == "1");
        EXPECT_EQ(a <= b, f[5] == "1");
        EXPECT_EQ(a >= b, f[6] == "1");
        EXPECT_EQ(a * b, std::stod(f[7]));
        ++n;
    }
    EXPECT_EQ(n, 17);
}

TEST(RuleValue, OrOperatorsAndTheirLogLine) {
    LogCapture log;
    const struct {
        const char* why;
        Made left;
        bool right;
        bool result;
        const char* line;
    } cases[] = {
        {"false or true", none, true, true, "operator|| (bool) on 1, returns 1"},
        {"false or false", leaf(""), false, false, "operator|| (bool) on 0, returns 0"},
        {"true or false logs the text", leaf("0.00"), false, true, "operator|| (bool) on 0,0.00 returns 1"},
        {"a number built value has no text", number(4), false, true, "operator|| (bool) on 0, returns 1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        log.lines.clear();
        EXPECT_EQ(make(c.left) || c.right, c.result);
        EXPECT_EQ(log.lines, std::vector<std::string>{c.line});
    }
    log.lines.clear();
    EXPECT_TRUE(true || make(none));
    EXPECT_TRUE(false || make(leaf("x")));
    EXPECT_FALSE(false || make(leaf("")));
    EXPECT_TRUE(make(leaf("")) || make(leaf("a")));
    EXPECT_FALSE(make(none) || make(leaf("")));
    EXPECT_TRUE(log.lines.empty()) << "only the bool on the right logs";
}

TEST(RuleValue, FunctionLibrary) {
    const struct {
        double x, abs, floor, round;
    } numbers[] = {
        {2.5, 2.5, 2, 3},         {-2.5, 2.5, -3, -3},   {0.49999, 0.49999, 0, 0}, {-0.4, 0.4, -1, 0},
        {1e12, 1e12, 1e12, 1e12}, {2.675 * 100, 2.675 * 100, 267, 268}, {0.4999996, 0.4999996, 0, 0}, {0.5, 0.5, 0, 1}, {807499.99999, 807499.99999, 807499, 807500},
    };
    for (const auto& n : numbers) {
        EXPECT_EQ(Abs(n.x), n.abs) << n.x;
        EXPECT_EQ(Floor(n.x), n.floor) << n.x;
        EXPECT_EQ(Round(n.x), n.round) << n.x;
    }
    EXPECT_EQ(Round(std::nan("")), 0) << "what is no number rounds to nothing";
    EXPECT_TRUE(Not(false));
    EXPECT_TRUE(Not(make(leaf(""))));
    EXPECT_FALSE(Not(make(leaf("0"))));
    EXPECT_EQ(std::string(String(make(none))), "0");
}

TEST(RuleValue, Texts) {
    const struct {
        const char* in;
        const char* out;
    } spaces[] = {
        {"  2015-04-01 \n", "2015-04-01"}, {"a  b", "a b"},   {"a\t b", "a\tb"}, {"", ""},
        {" \t\n ", ""},                    {"x", "x"},        {"a b  ", "a b"},  {"\na\n\nb", "a\nb"},
    };
    for (const auto& s : spaces) EXPECT_EQ(std::string(NormalizeSpace(s.in)), s.out) << '"' << s.in << '"';

    const struct {
        const char* text;
        const char* from;
        const char* to;
        const char* out;
        double number;
    } translations[] = {
        {"2015-04-01", "-", "", "20150401", 20150401}, {"19.00", ".", "", "1900", 1900},
        {"abc", "", "x", "abc", 3},                    {"0", ".", "", "0", 0},
        {"", "-", "", "", 0},
    };
    for (const auto& t : translations) {
        const CRuleValue v = Translate(t.text, t.from, t.to);
        EXPECT_EQ(std::string(v.Text()), t.out) << t.text;
        EXPECT_EQ(v.Number(), t.number) << t.text;
    }
    EXPECT_EQ(std::string(Concat("ab", "cd")), "abcd");
    EXPECT_EQ(std::string(Concat(2024, "-03-31")), "2024-03-31");
    EXPECT_EQ(std::string(Concat(-1, "")), "-1");
}

}  // namespace
