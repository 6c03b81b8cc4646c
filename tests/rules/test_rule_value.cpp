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

TEST(RuleValue, ComparesByTheRightOperand) {
    const struct {
        const char* why;
        Made left, right;
        bool equal, less, lessOrEqual, greaterOrEqual;
        double product;
    } cases[] = {
        {"empty leaf equals empty text", leaf(""), text(""), true, false, true, true, 0},
        {"empty leaf equals 0", leaf(""), number(0), true, false, true, true, 0},
        {"absent equals 0", none, leaf("0"), true, false, true, true, 0},
        {"absent against an empty leaf: both texts empty", none, leaf(""), true, false, true, true, 0},
        {"amounts compare as numbers", leaf("100"), leaf("100.00"), true, false, true, true, 10000},
        {"digits then text on the right is still a number", leaf("100"), leaf("100.00x"), true, false, true, true,
         10000},
        {"text on the right compares bytes", leaf("100"), leaf("x100"), false, false, false, true, 400},
        {"names starting 123 compare as numbers", leaf("123 Ltd"), leaf("123 Limited"), true, false, true, true,
         15129},
        {"names starting with a letter compare bytes", leaf("Acme Ltd"), leaf("Acme Ltd"), true, false, true, true,
         64},
        {"different names of one length", leaf("Acme"), leaf("Bcme"), false, false, true, true, 16},
        {"number left, text right: left's text is empty", number(5), text("x5"), false, false, false, true, 10},
        {"so a number equals the empty text", number(5), text(""), true, false, false, true, 0},
        {"text left, number right: left counts its length", leaf("yes"), number(3), true, false, true, true, 9},
        {"dates order by length only", leaf("2016-01-01"), leaf("2015-12-31"), false, false, true, true, 100},
        {"container against 1", container, number(1), true, false, true, true, 1},
        {"container against its own value", container, text("stray"), false, true, true, false, 5},
        {"negative against absent", leaf("-1"), none, false, true, true, false, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        const CRuleValue a = make(c.left), b = make(c.right);
        EXPECT_EQ(a == b, c.equal);
        EXPECT_EQ(a < b, c.less);
        EXPECT_EQ(a <= b, c.lessOrEqual);
        EXPECT_EQ(a >= b, c.greaterOrEqual);
        EXPECT_EQ(a * b, c.product);
    }
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
