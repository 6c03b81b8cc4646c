// The dispatch by (parent name, element name) and the walk, on small tables
// made for the purpose, and the faults the table builder catches.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "schema/table.h"
#include "support.h"
#include "support/table.h"

using namespace schemamodel;
using schematest::parse;
using schematest::texts;

namespace {

// Three declarations of Loan, as the loans of a close company have them: the
// pair (Loan, Name) stands three times, (Loan, Date) twice.
constexpr Decl kLoansRows[] = {
    {0, "Loans", optional, sequence},
    {1, "Outstanding", optional, noTest},
    {2, "Loan", notCounted, sequence},
    {3, "Name", once, type(NameText, 2, 56)},
    {3, "Amount", once, type(PositivePounds)},
    {1, "Repaid", optional, noTest},
    {2, "Loan", notCounted, sequence},
    {3, "Name", once, type(NameText, 2, 56)},
    {3, "Date", once, type(DateText)},
    {1, "Released", optional, noTest},
    {2, "Loan", notCounted, sequence},
    {3, "Name", once, type(NameText, 2, 56)},
    {3, "Date", once, type(DateText)},
    {1, "Trade", optional, sequence},
    {2, "Amount", once, type(PoundsAmount)},
    {2, "Profits", accepted, type(YesFlag)},
    {2, "Losses", accepted, type(YesFlag)},
    {1, "Trading", optional, sequence},
    {2, "Profits", optional, type(PoundsAmount)},
    {1, "Pool", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {1, "Notice", once, choice},
    {2, "Attached", alternative, type(YesFlag)},
    {2, "WillFollow", alternative, type(YesFlag)},
    {1, "Nothing", optional, noChildren},
    {1, "Anything", optional, noCheck},
};
constexpr Decl kOtherRows[] = {
    {0, "Other", optional, sequence},
    {1, "Tail", optional, type(YesFlag)},
};
constexpr Table kTestLoans{"Body", kLoansRows};
constexpr Table kTestOther{"Body", kOtherRows};
constexpr const Table* kBodySections[] = {&kTestLoans, &kTestOther};
constexpr Decl kTopRows[] = {
    {0, "Root", notCounted, noTest},
    {1, "Body", notCounted, sectionsOf(kBodySections)},
};
// A root's parent name is the empty text.
constexpr Decl kRootRows[] = {
    {0, "Lone", notCounted, type(YesFlag)},
};
constexpr Decl kAnyNameRows[] = {
    {0, "Ttl", notCounted, type(TitleText)},
};

const Table kTop{"", kTopRows};
const Table kRoot{"", kRootRows};
const Table kAnyName{"Name", kAnyNameRows};
constexpr const Table* kTestModel[] = {&kTop, &kRoot, &kAnyName};

const CSchemaTable& testTable() {
    static const CSchemaTable table(kTestModel);
    return table;
}

std::vector<std::string> walk(CXMLVar* root) {
    CXMLVar errors("Errors");
    testTable().Walk(root, &errors);
    return texts(errors);
}

const char* kValidBody =
    "<Root><Body>"
    "<Loans>"
    "<Outstanding><Loan><Name>Alpha Ltd</Name><Amount>100.00</Amount></Loan></Outstanding>"
    "<Repaid><Loan><Name>Beta Ltd</Name><Date>2024-01-01</Date></Loan></Repaid>"
    "<Trade><Amount>5.00</Amount><Profits>yes</Profits><Losses>yes</Losses></Trade>"
    "<Trading><Profits>7.00</Profits></Trading>"
    "<Pool><BalancingCharges>letters</BalancingCharges></Pool>"
    "<Notice><Attached>yes</Attached><WillFollow>yes</WillFollow></Notice>"
    "<Nothing/><Anything><Whatever>x</Whatever></Anything>"
    "</Loans>"
    "<Other><Tail>yes</Tail></Other>"
    "</Body></Root>";

TEST(Walk, TheTestTableHasNoFaults) {
    EXPECT_EQ(std::vector<std::string>(testTable().Problems().begin(), testTable().Problems().end()),
              std::vector<std::string>{});
    EXPECT_EQ(testTable().Find("Loan", "Name").size(), 3u);
    EXPECT_EQ(testTable().Find("Loan", "Date").size(), 2u);
    EXPECT_EQ(testTable().Find("Loans", "Outstanding").size(), 0u);  // no test, no row
    EXPECT_EQ(testTable().Find("", "Lone").size(), 1u);
}

TEST(Walk, AValidDocumentGivesNoErrors) {
    auto doc = parse(kValidBody);
    EXPECT_EQ(walk(doc.get()), std::vector<std::string>{});
}

std::string body(const std::string& loans) { return "<Root><Body><Loans>" + loans + "<Notice><Attached>yes</Attached></Notice></Loans></Body></Root>"; }

TEST(Walk, Dispatch) {
    const auto cases = testdata::cases("schema_walk_cases.txt");
    for (const testdata::Case& c : cases) {
        auto doc = parse(c.body.at(0));
        EXPECT_EQ(walk(doc.get()), c.expected) << c.what;
    }
    EXPECT_EQ(cases.size(), 14u);
}

TEST(Walk, NodesWithoutAParentOrAName) {
    CXMLVar errors("Errors");
    CXMLVar lone("Name", "x");
    testTable().Visit(&lone, &errors);
    testTable().Visit(nullptr, &errors);
    testTable().Walk(nullptr, &errors);
    EXPECT_EQ(errors.children.size(), 0u);

    CXMLVar root("Root");
    CXMLVar* b = root.AddChild(new CXMLVar("Body"), nullptr);
    CXMLVar* loans = b->AddChild(new CXMLVar("Loans"), nullptr);
    loans->AddChild(new CXMLVar("Notice"), nullptr)->AddChild(new CXMLVar("Attached", "yes"), nullptr);
    loans->AddChild(new CXMLVar(""), nullptr)->AddChild(new CXMLVar(""), nullptr);
    testTable().Walk(&root, &errors);
    EXPECT_EQ(texts(errors), std::vector<std::string>{"Loans: Element  unexpected"});
    // Without an errors tree the walk still runs to the end.
    testTable().Walk(&root, nullptr);
}

// Deep nesting, wide nodes, a huge value and bytes that are no UTF-8.
TEST(Walk, OddDocuments) {
    CXMLVar root("Root");
    CXMLVar* loans = root.AddChild(new CXMLVar("Body"), nullptr)->AddChild(new CXMLVar("Loans"), nullptr);
    loans->AddChild(new CXMLVar("Notice"), nullptr)->AddChild(new CXMLVar("Attached", "yes"), nullptr);
    CXMLVar* deep = loans->AddChild(new CXMLVar("Anything"), nullptr);
    for (int i = 0; i < 60000; ++i) deep = deep->AddChild(new CXMLVar(i % 2 ? "Loan" : "Repaid"), nullptr);
    CXMLVar* trade = loans->AddChild(new CXMLVar("Trade"), nullptr);
    trade->AddChild(new CXMLVar("Amount", (std::string(1'000'000, '1') + ".00").c_str()), nullptr);
    for (int i = 0; i < 20000; ++i) trade->AddChild(new CXMLVar("Profits", "yes"), nullptr);
    CXMLVar* released = loans->AddChild(new CXMLVar("Released"), nullptr);
    CXMLVar* loan = released->AddChild(new CXMLVar("Loan"), nullptr);
    loan->AddChild(new CXMLVar("Name", "\xFF\xFE\x82\xAC\xC3"), nullptr);
    loan->AddChild(new CXMLVar("Date", "2024-01-01"), nullptr);
    loan->AddChild(new CXMLVar("\xFF\xA3", "\x80"), nullptr);

    CXMLVar errors("Errors");
    testTable().Walk(&root, &errors);
    const std::vector<std::string> got = texts(errors);
    // Every Loan of the chain stands under a Repaid and lacks its children.
    const auto count = [&](const std::string& t) { return std::count(got.begin(), got.end(), t); };
    EXPECT_EQ(count("Loan: need at least 1 Name"), 30000);
    EXPECT_EQ(count("Loan: Element Repaid unexpected"), 29999);
    EXPECT_EQ(count("Amount: value \"" + std::string(1'000'000, '1') + ".00\" - must be less than or equal to " +
                    "99999999999.00"),
              1);
    EXPECT_EQ(count("Name: value \"\xFF\xFE\x82\xAC\xC3\" - does not match the pattern [^\xA3$#~\x82\xAC]+"), 3);
    EXPECT_EQ(count("Loan: Element \xFF\xA3 unexpected"), 1);
}

TEST(Walk, TheDocumentIsNotChanged) {
    auto doc = parse(body("<Released><Loan><Name>A</Name></Loan></Released><Junk a=\"1\">x</Junk>"));
    CString before, after;
    doc->Save(before, 1);
    walk(doc.get());
    doc->Save(after, 1);
    EXPECT_EQ(before, after);
}

// ---------------------------------------------------------------- faults of a table

constexpr Decl kDepthJump[] = {
    {0, "A", notCounted, sequence},
    {2, "B", optional, type(YesFlag)},
};
constexpr Decl kTwoTests1[] = {
    {0, "P", notCounted, sequence},
    {1, "X", optional, type(YesFlag)},
};
constexpr Decl kTwoTests2[] = {
    {0, "Q", notCounted, sequence},
    {1, "P", optional, sequence},
    {2, "X", optional, type(YesNoFlag)},
};
constexpr Decl kWrongOccurs[] = {
    {0, "S", notCounted, sequence},
    {1, "A", notCounted, type(YesFlag)},
    {0, "C", notCounted, choice},
    {1, "B", optional, type(YesFlag)},
    {0, "T", notCounted, type(YesFlag)},
    {1, "U", once, noTest},
};
constexpr Decl kBadCounts[] = {
    {0, "S", notCounted, sequence},
    {1, "A", occurs(2, 1), type(YesFlag)},
    {1, "A", optional, type(YesFlag)},
};
constexpr Decl kBadContent[] = {
    {0, "A", notCounted, type(NoType)},
    {0, "B", notCounted, type(NameText, 5, 2)},
    {0, "C", notCounted, type(YesFlag).then(pattern("[a"))},
    {0, "D", notCounted, sequence.then(maxInclusive("1"))},
    {0, "E", notCounted, type(YesFlag).then(maxInclusive(""))},
    {0, "", notCounted, noCheck},
};
constexpr Decl kShared[] = {
    {0, "S", notCounted, sequence},
    {1, "Orphan", optional, shared},
};

struct FaultCase {
    const char* what;
    Table table;
    std::vector<std::string> problems;
};

TEST(Walk, TheBuilderReportsFaultyTables) {
    const std::vector<FaultCase> cases = {
        {"depth", {"Top", kDepthJump}, {"row B under Top: depth 2 does not follow"}},
        {"occurrence", {"Top", kWrongOccurs},
         {"(S, A): occurrence does not fit the parent's content", "(C, B): occurrence does not fit the parent's content",
          "(T, U): occurrence does not fit the parent's content"}},
        {"counts", {"Top", kBadCounts}, {"sequence S lists A twice", "(S, A): occurrence 2..1"}},
        {"content", {"Top", kBadContent},
         {"A: type 0 is not in the catalogue", "B: 5 to 2 characters", "C: pattern [a is not valid",
          "D: a further check needs a type", "E: a limit without its text", "row without a name under Top"}},
        {"shared", {"Top", kShared}, {"shared pair (S, Orphan) has no row of its own"}},
    };
    for (const FaultCase& c : cases) {
        const Table* tables[] = {&c.table};
        const CSchemaTable table(tables);
        EXPECT_EQ(std::vector<std::string>(table.Problems().begin(), table.Problems().end()), c.problems) << c.what;
    }
    const Table first{"Top", kTwoTests1};
    const Table second{"Top", kTwoTests2};
    const Table* both[] = {&first, &second, &first};
    const CSchemaTable table(both);
    EXPECT_EQ(std::vector<std::string>(table.Problems().begin(), table.Problems().end()),
              (std::vector<std::string>{"table under Top is taken in twice", "pair (P, X) has rows with different tests"}));
}

}  // namespace
