// The check primitives and their reporter, one table of values per check.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "schema/checks.h"
#include "support.h"
#include "support/table.h"

using schematest::texts;

namespace {

// The check of a row of tests/data/schema_check_values.tsv, with its argument.
void runCheck(const std::string& check, const std::string& arg, CXMLVar* n, CXMLVar* e) {
    if (check == "minlength") checkminlength(std::stoi(arg), "", n, e);
    if (check == "maxlength") checkmaxlength(std::stoi(arg), "", n, e);
    if (check == "length") checklength(std::stoi(arg), "", n, e);
    if (check == "pattern") checkpattern(arg.c_str(), "", n, e);
    if (check == "maxinclusive") checkmaxinclusive(arg.c_str(), "", n, e);
    if (check == "mininclusive") checkmininclusive(arg.c_str(), "", n, e);
    if (check == "minexclusive") checkminexclusive(arg.c_str(), "", n, e);
    if (check == "integer") checkinteger("", n, e);
    if (check == "decimal") checkdecimal("", n, e);
    if (check == "nonnegative") checknonnegative("", n, e);
    if (check == "year") checkyear("", n, e);
    if (check == "enumeration") {
        std::vector<std::string> words;
        std::istringstream in(arg);
        for (std::string word; in >> word;) words.push_back(word);
        std::vector<const char*> values;
        for (const std::string& word : words) values.push_back(word.c_str());
        checkenumeration(values, "", n, e);
    }
}

TEST(Checks, ValuesAndTheirMessages) {
    const auto rows = testdata::rows("schema_check_values.tsv", 4);
    for (const auto& f : rows) {
        const std::string value = testdata::unescape(f[2]);
        CXMLVar node("CompanyName", value.c_str());
        CXMLVar errors("Errors");
        runCheck(f[0], f[1], &node, &errors);
        const std::vector<std::string> expected =
            f[3].empty() ? std::vector<std::string>{} : std::vector<std::string>{"Company Name: value \"" + value + "\" - " + f[3]};
        EXPECT_EQ(texts(errors), expected) << f[0] << " " << f[1] << " on \"" << value << "\"";
        EXPECT_EQ(node.value.str(), value) << "a check must not change the node";
    }
    EXPECT_EQ(rows.size(), 85u);
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
