// The check primitives and their reporter, one table of values per check.
#include <gtest/gtest.h>

#include <functional>
#include <source_location>
#include <string>
#include <vector>

#include "schema/checks.h"
#include "support.h"

using schematest::texts;

namespace {

using Check = std::function<void(CXMLVar* node, CXMLVar* errors)>;

// A value, and the message its check gives it; empty when the value passes.
struct Value {
    std::string value, message;
};

std::string err(const std::string& value, const std::string& message) {
    return "Company Name: value \"" + value + "\" - " + message;
}

// Runs the check on an element CompanyName holding each value in turn.
void expectValues(const Check& check, const std::vector<Value>& values,
                  std::source_location where = std::source_location::current()) {
    const testing::ScopedTrace trace(where.file_name(), static_cast<int>(where.line()), "values from here");
    for (const Value& v : values) {
        CXMLVar node("CompanyName", v.value.c_str());
        CXMLVar errors("Errors");
        check(&node, &errors);
        const std::vector<std::string> expected =
            v.message.empty() ? std::vector<std::string>{} : std::vector<std::string>{err(v.value, v.message)};
        EXPECT_EQ(texts(errors), expected) << "on \"" << v.value << "\"";
        EXPECT_EQ(node.value.str(), v.value) << "a check must not change the node";
    }
}

const Check minLength2 = [](CXMLVar* n, CXMLVar* e) { checkminlength(2, "", n, e); };
const Check maxLength3 = [](CXMLVar* n, CXMLVar* e) { checkmaxlength(3, "", n, e); };
const Check length10 = [](CXMLVar* n, CXMLVar* e) { checklength(10, "", n, e); };

TEST(Checks, Lengths) {
    expectValues(minLength2, {{"A", "less than minimum 2 characters"}, {"", "less than minimum 2 characters"},
        {"AB", ""}, {"\xA3\xA3", ""}});
    expectValues(maxLength3, {{"ABCD", "greater than maximum 3 characters"}, {"ABC", ""}, {"", ""},
        {"\xC2\xA3\xC2\xA3", "greater than maximum 3 characters"}});
    expectValues(length10, {{"12345678901", "must be 10 characters"}, {"123456789", "must be 10 characters"},
        {"1234567890", ""}});
}

TEST(Checks, PatternReportsThePatternsMessage) {
    const Check tenDigits = [](CXMLVar* n, CXMLVar* e) { checkpattern("[0-9]{10}", "", n, e); };
    const Check wholePounds = [](CXMLVar* n, CXMLVar* e) { checkpattern(".*\\.00", "", n, e); };
    const Check notInCatalogue = [](CXMLVar* n, CXMLVar* e) { checkpattern("[ab]+", "", n, e); };
    expectValues(tenDigits, {{"12345678901", "does not match the pattern [0-9]{10}"}, {"1234567890", ""}});
    expectValues(wholePounds, {{"12.00", ""}, {"12.50", "does not match the pattern .*\\.00"}});
    expectValues(notInCatalogue, {{"abba", ""}, {"abc", "does not match the pattern [ab]+"}});
}

TEST(Checks, LimitsCompareAsNumbers) {
    const Check maxPence = [](CXMLVar* n, CXMLVar* e) { checkmaxinclusive("99999999999.99", "", n, e); };
    const Check maxTurnover = [](CXMLVar* n, CXMLVar* e) { checkmaxinclusive("999999999999999999.00", "", n, e); };
    const Check maxTen = [](CXMLVar* n, CXMLVar* e) { checkmaxinclusive("10", "", n, e); };
    const Check minZero = [](CXMLVar* n, CXMLVar* e) { checkmininclusive("0.00", "", n, e); };
    const Check aboveZero = [](CXMLVar* n, CXMLVar* e) { checkminexclusive("0.00", "", n, e); };
    const std::string le = "must be less than or equal to ";
    const std::string ge = "must be greater than of equal to ";
    const std::string gt = "must be greater than ";
    expectValues(maxPence, {{"99999999999.99", ""}, {"100000000000.00", le + "99999999999.99"}, {"-5.00", ""},
        {"0x1p40", le + "99999999999.99"}});  // atof reads hexadecimal: 2^40
    // not a number: counts as 0, and the type's decimal check has reported
    expectValues(maxPence, {{"abc", ""}, {"1e400", le + "99999999999.99"}, {"nan", ""}});
    // about fifteen digits: the two compare as equal
    expectValues(maxTurnover, {{"1000000000000000000.00", ""},
        {"2000000000000000000.00", le + "999999999999999999.00"}});
    expectValues(maxTen, {{"10", ""}, {"10.00", ""}, {"11", le + "10"}, {" 11", le + "10"}, {"9abc", ""}});
    expectValues(minZero, {{"0.00", ""}, {"-0.00", ""}, {"-0.01", ge + "0.00"}, {"--1", ""}, {"nan", ""}});
    expectValues(aboveZero, {{"0.01", ""}, {"0.00", gt + "0.00"}, {"-1.00", gt + "0.00"}, {"abc", gt + "0.00"}, {"0x10", ""},
        {"nan", gt + "0.00"}});
}

// The one date limit compares the two texts, whatever shape the value has.
TEST(Checks, ADateLimitComparesAsDates) {
    const Check fromApril2015 = [](CXMLVar* n, CXMLVar* e) { checkmininclusive("2015-04-01", "", n, e); };
    expectValues(fromApril2015, {{"2015-03-31", "must be greater than of equal to 2015-04-01"},
        {"2014-12-31", "must be greater than of equal to 2015-04-01"}, {"2015-04-01", ""}, {"2015-04-02", ""},
        {"2024-01-01", ""}, {"1999", "must be greater than of equal to 2015-04-01"},
        {"01.04.2014", "must be greater than of equal to 2015-04-01"},
        {"01/04/2016", "must be greater than of equal to 2015-04-01"}, {"9", ""}});
}

TEST(Checks, NumbersAndYears) {
    const Check integer = [](CXMLVar* n, CXMLVar* e) { checkinteger("", n, e); };
    const Check decimal = [](CXMLVar* n, CXMLVar* e) { checkdecimal("", n, e); };
    const Check nonNegative = [](CXMLVar* n, CXMLVar* e) { checknonnegative("", n, e); };
    const Check year = [](CXMLVar* n, CXMLVar* e) { checkyear("", n, e); };
    const std::string nni = "must be non negative integer";
    expectValues(integer, {{"12", ""}, {"-1", ""}, {"1.5", "must be integer"}, {"", "must be integer"},
        {" 1", "must be integer"}});
    expectValues(decimal, {{"1.50", ""}, {"-7", ""}, {"1.2.3", "must be a decimal number"},
        {"abc", "must be a decimal number"}, {"", "must be a decimal number"}});
    expectValues(nonNegative, {{"0", ""}, {"7", ""}, {"9999999999", ""}, {"-1", nni}, {"00", nni}, {"1.0", nni},
        {"", nni}});
    expectValues(year, {{"1900", ""}, {"2100", ""}, {"2023", ""}, {"1899", "must be valid year"},
        {"2101", "must be valid year"}, {"20.5", "must be valid year"}, {"", "must be valid year"},
        {"-2000", "must be valid year"}, {"99999999999999999999999", "must be valid year"}, {"000002000", ""}});
}

TEST(Checks, EnumerationsReportAValueOutsideTheList) {
    static const char* const yes[] = {"yes"};
    static const char* const noYesNa[] = {"no", "yes", "na"};
    const Check yesFlag = [](CXMLVar* n, CXMLVar* e) { checkenumeration(yes, "", n, e); };
    const Check yesNoNa = [](CXMLVar* n, CXMLVar* e) { checkenumeration(noYesNa, "", n, e); };
    const Check none = [](CXMLVar* n, CXMLVar* e) { checkenumeration({}, "", n, e); };
    expectValues(yesFlag, {{"yes", ""}, {"Yes", "must be \"yes\""}, {"", "must be \"yes\""}});
    expectValues(yesNoNa, {{"na", ""}, {"no", ""}, {"n/a", "must be one of \"no\", \"yes\", \"na\""}});
    expectValues(none, {{"anything", ""}});
}

// The label: empty gives the node's name with spaces; anything else stands.
TEST(Checks, ReporterComposesTheText) {
    struct Case {
        const char* name;
        const char* label;
        const char* value;
        int showValue;
        std::string expected;
    };
    const Case cases[] = {
        {"CompanyName", "", "x", 1, "Company Name: value \"x\" - msg"},
        {"CompanyName", nullptr, "x", 1, "Company Name: value \"x\" - msg"},
        {"CompanyName", "Given", "x", 1, "Given: value \"x\" - msg"},
        {"PeriodCovered", "PeriodCovered", "x", 0, "PeriodCovered: msg"},
        {"NonUKdividends", "", "", 1, "Non UKdividends: value \"\" - msg"},
        {"CT600A", "", "no", 1, "CT600A: value \"no\" - msg"},
        {"", "", "v", 1, ": value \"v\" - msg"},
        {"a\xA3" "B", "", "\x82", 0, "a\xA3" "B: msg"},
    };
    for (const Case& c : cases) {
        CXMLVar node(c.name, c.value);
        CXMLVar errors("Errors");
        schemaerror(c.label, &node, &errors, "msg", c.showValue);
        EXPECT_EQ(texts(errors), std::vector<std::string>{c.expected}) << c.name;
    }
    // Errors go behind what the tree already holds.
    CXMLVar errors("Errors");
    errors.AddChild(new CXMLVar("Error", ""), nullptr)->SetChildValue("Text", "1234:a rule");
    CXMLVar node("Year", "1");
    checkyear("", &node, &errors);
    EXPECT_EQ(texts(errors), (std::vector<std::string>{"1234:a rule", "Year: value \"1\" - must be valid year"}));
    // Without a tree or a node nothing happens.
    schemaerror("", &node, nullptr, "msg", 1);
    checkminlength(5, "", &node, nullptr);
    checkmaxlength(0, "", nullptr, &errors);
    checkoccurs(nullptr, &errors, "A", 1, 1, nullptr);
    checknoother(nullptr, &errors, nullptr);
    checkchoice(nullptr, &errors, nullptr);
    EXPECT_EQ(errors.children.size(), 2u);
}

// ---------------------------------------------------------------- structural

std::unique_ptr<CXMLVar> withChildren(const char* name, const std::vector<const char*>& children) {
    auto node = std::make_unique<CXMLVar>(name);
    for (const char* c : children) node->AddChild(new CXMLVar(c, "v"), nullptr);
    return node;
}

TEST(Checks, OccursCountsDirectChildrenByName) {
    struct Case {
        std::vector<const char*> children;
        const char* name;
        int min, max;
        std::vector<std::string> expected;
        std::vector<std::string> seen;
    };
    const Case cases[] = {
        {{"From"}, "To", 1, 1, {"PeriodCovered: need at least 1 To"}, {}},
        {{"From", "To"}, "To", 1, 1, {}, {"To"}},
        {{"To", "From", "To"}, "To", 1, 1, {"PeriodCovered: At most 1 To allowed"}, {"To"}},
        {{"CT600G"}, "CT600G", 0, 0, {"PeriodCovered: At most 0 CT600G allowed"}, {"CT600G"}},
        {{}, "Line", 2, 3, {"PeriodCovered: need at least 2 Line"}, {}},
        {{"Line", "Line", "Line", "Line"}, "Line", 2, 3, {"PeriodCovered: At most 3 Line allowed"}, {"Line"}},
        {{"to"}, "To", 0, 1, {}, {}},
    };
    for (const Case& c : cases) {
        auto node = withChildren("PeriodCovered", c.children);
        node->GetChild("From")->AddChild(new CXMLVar("To"), nullptr);  // a grandchild is not counted
        CXMLVar errors("Errors");
        CStringArray seen;
        checkoccurs(node.get(), &errors, c.name, c.min, c.max, &seen);
        EXPECT_EQ(texts(errors), c.expected) << c.name;
        EXPECT_EQ(std::vector<std::string>(seen.begin(), seen.end()), c.seen) << c.name;
        CXMLVar quiet("Errors");
        checkoccurs(node.get(), &quiet, c.name, c.min, c.max, nullptr);
        EXPECT_EQ(quiet.children.size(), c.expected.size());
    }
}

TEST(Checks, NoOtherReportsEachStrayChild) {
    CStringArray seen;
    seen.Add("A");
    struct Case {
        std::vector<const char*> children;
        const CStringArray* seen;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {{}, &seen, {}},
        {{"A", "A"}, &seen, {}},
        {{"B", "A", "B", "C"}, &seen, {"Parent: Element B unexpected", "Parent: Element B unexpected",
                                       "Parent: Element C unexpected"}},
        {{"a"}, &seen, {"Parent: Element a unexpected"}},
        {{""}, &seen, {"Parent: Element  unexpected"}},
        {{"A"}, nullptr, {"Parent: Element A unexpected"}},
    };
    for (const Case& c : cases) {
        auto node = withChildren("Parent", c.children);
        CXMLVar errors("Errors");
        checknoother(node.get(), &errors, c.seen);
        EXPECT_EQ(texts(errors), c.expected);
    }
}

TEST(Checks, ChoiceLooksAtTheFirstChildOnly) {
    CStringArray names;
    for (const char* n : {"ThisPeriodComputations", "DifferentPeriod", "NoComputationsReason"}) names.Add(n);
    const std::string expected =
        "Computations: One of ThisPeriodComputations, DifferentPeriod, NoComputationsReason expected";
    struct Case {
        std::vector<const char*> children;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {{}, {expected}},
        {{"Other", "DifferentPeriod"}, {expected}},
        {{"DifferentPeriod", "Other"}, {}},
        {{"NoComputationsReason"}, {}},
        {{"differentPeriod"}, {expected}},
    };
    for (const Case& c : cases) {
        auto node = withChildren("Computations", c.children);
        CXMLVar errors("Errors");
        checkchoice(node.get(), &errors, &names);
        EXPECT_EQ(texts(errors), c.expected);
    }
    auto node = withChildren("Computations", {"A"});
    CXMLVar errors("Errors");
    checkchoice(node.get(), &errors, nullptr);
    EXPECT_EQ(texts(errors), std::vector<std::string>{"Computations: One of  expected"});
}

}  // namespace
