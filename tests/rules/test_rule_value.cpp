// The rule value: what nodes, texts and numbers read as, and how they compare.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "common/basics.h"
#include "rules/rulevalue.h"
#include "support.h"
#include "support/capture.h"
#include "support/table.h"

namespace {

// Cases in tests/data/rule_value_nodes.tsv.
TEST(RuleValue, ReadsNodes) {
    const auto rows = testdata::rows("rule_value_nodes.tsv", 5);
    for (const auto& f : rows) {
        SCOPED_TRACE(f[0]);
        std::unique_ptr<CXMLVar> node(f[1] != "-" ? rulestest::parse(f[1].c_str()) : nullptr);
        CRuleValue v;
        v.SetNode(node.get());
        EXPECT_EQ(v.IsTrue(), f[2] == "1");
        EXPECT_EQ(v.Number(), std::stod(f[3]));
        EXPECT_EQ(std::string(v.Text()), f[4]);
    }
    EXPECT_EQ(rows.size(), 20u);
}

// The rows of a kind in tests/data/rule_value_texts.tsv, their texts made bytes.
std::vector<std::vector<std::string>> textCases(const std::string& kind, std::size_t count) {
    std::vector<std::vector<std::string>> rows;
    for (auto row : testdata::rows("rule_value_texts.tsv", 6))
        if (row[0] == kind) {
            for (auto& cell : row) cell = testdata::unescape(cell);
            rows.push_back(row);
        }
    EXPECT_EQ(rows.size(), count) << kind;
    return rows;
}

TEST(RuleValue, NumericText) {
    for (const auto& c : textCases("numeric", 17)) {
        EXPECT_EQ(IsNumericText(c[1].c_str()), c[2] == "1") << '"' << c[1] << '"';
        EXPECT_EQ(IsDateText(c[1].c_str()), c[3] == "1") << '"' << c[1] << '"';
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
    const auto rows = testdata::rows("rule_value_comparisons.tsv");
    for (const auto& f : rows) {
        ASSERT_EQ(f.size(), 8u) << f[0];
        SCOPED_TRACE(f[0]);
        const CRuleValue a = madeOf(f[1]), b = madeOf(f[2]);
        EXPECT_EQ(a == b, f[3] == "1");
        EXPECT_EQ(a < b, f[4] == "1");
        EXPECT_EQ(a <= b, f[5] == "1");
        EXPECT_EQ(a >= b, f[6] == "1");
        EXPECT_EQ(a * b, std::stod(f[7]));
    }
    EXPECT_EQ(rows.size(), 17u);
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
    for (const auto& n : textCases("number", 9)) {
        const double x = std::stod(n[1]);
        EXPECT_EQ(Abs(x), std::stod(n[2])) << x;
        EXPECT_EQ(Floor(x), std::stod(n[3])) << x;
        EXPECT_EQ(Round(x), std::stod(n[4])) << x;
    }
    EXPECT_EQ(Round(std::nan("")), 0) << "what is no number rounds to nothing";
    EXPECT_TRUE(Not(false));
    EXPECT_TRUE(Not(make(leaf(""))));
    EXPECT_FALSE(Not(make(leaf("0"))));
    EXPECT_EQ(std::string(String(make(none))), "0");
}

TEST(RuleValue, Texts) {
    for (const auto& s : textCases("spaces", 8)) EXPECT_EQ(std::string(NormalizeSpace(s[1].c_str())), s[2]) << '"' << s[1] << '"';
    for (const auto& t : textCases("translate", 5)) {
        const CRuleValue v = Translate(t[1].c_str(), t[2].c_str(), t[3].c_str());
        EXPECT_EQ(std::string(v.Text()), t[4]) << t[1];
        EXPECT_EQ(v.Number(), std::stod(t[5])) << t[1];
    }
    EXPECT_EQ(std::string(Concat("ab", "cd")), "abcd");
    EXPECT_EQ(std::string(Concat(2024, "-03-31")), "2024-03-31");
    EXPECT_EQ(std::string(Concat(-1, "")), "-1");
}

}  // namespace
