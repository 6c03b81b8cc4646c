// Path tables, the walk, selection, and the Errors document.
#include <gtest/gtest.h>

#include <memory>
#include <vector>
#include <string>

#include "rules/catalogue/catalogue.h"
#include "rules/rulecontext.h"
#include "rules/ruledsl.h"
#include "support.h"
#include "support/table.h"

namespace {

const char* const kDocument = R"(<Message>
  <Body><IRenvelope><CompanyTaxReturn ReturnType="new">
    <Loans>
      <Loan Filename="one"><Amount>100</Amount><Date>2015-04-01</Date></Loan>
      <Loan><Amount>250.50</Amount></Loan>
      <Loan Filename=""><Amount>abc</Amount></Loan>
      <Loans><Amount>7</Amount></Loans>
    </Loans>
    <Instance>
      <InlineXBRLDocument entryPoint="true">a</InlineXBRLDocument>
      <InlineXBRLDocument>b</InlineXBRLDocument>
      <InlineXBRLDocument entryPoint="">c</InlineXBRLDocument>
      <EncodedInlineXBRLDocument>d</EncodedInlineXBRLDocument>
    </Instance>
    <Empty/>
  </CompanyTaxReturn></IRenvelope></Body>
</Message>)";

class RuleContextTest : public ::testing::Test {
protected:
    void SetUp() override {
        message.reset(rulestest::parse(kDocument));
        ctx.m_Root = message.get();
        ctx.m_ErrorsNode = &errors;
    }
    // Makes the first node of an absolute path current.
    void standOn(const char* path) {
        ASSERT_TRUE(ctx.Select(MakePathTable(path))) << path;
    }
    std::unique_ptr<CXMLVar> message;
    CXMLVar errors{"Errors"};
    CRuleContext ctx;
};

TEST_F(RuleContextTest, PathTablesAreSharedAndUseTheStepConstants) {
    PathTable a = MakePathTable("~/Loans/Loan");
    EXPECT_EQ(a, MakePathTable("~/Loans/Loan")) << "one table per path";
    const char* expected[] = {"/", "GovTalkMessage", "Body", "IRenvelope", "CompanyTaxReturn", "Loans", "Loan"};
    int n = 0;
    for (PathTable step = a; *step; ++step, ++n) EXPECT_STREQ(*step, expected[n]);
    EXPECT_EQ(n, 7);
    EXPECT_EQ(a[0], kRootStep);
    PathTable up = MakePathTable("../../Loans");
    EXPECT_EQ(up[0], kParentStep);
    EXPECT_EQ(up[1], kParentStep);
    EXPECT_EQ(up[2], a[5]) << "a step name is one constant whichever table it stands in";
    EXPECT_EQ(MakePathTable("./../X")[0], kSelfStep);
    EXPECT_EQ(MakePathTable("")[0], nullptr);
    EXPECT_TRUE(ctx.IsRootStep("/"));
    EXPECT_TRUE(ctx.IsParentStep(".."));
    EXPECT_FALSE(ctx.IsRootStep(".."));
    EXPECT_FALSE(ctx.IsParentStep("."));
}

// Cases in tests/data/rule_context_walks.tsv.
TEST_F(RuleContextTest, WalksFromTheCurrentNode) {
    const auto rows = testdata::rows("rule_context_walks.tsv", 5);
    for (const auto& f : rows) {
        SCOPED_TRACE(f[0] + " : " + f[1]);
        standOn(f[0].c_str());
        PathTable table = MakePathTable(f[1].c_str());
        EXPECT_EQ(ctx.Count(table), std::stoi(f[2]));
        EXPECT_DOUBLE_EQ(ctx.Sum(table), std::stod(f[3]));
        EXPECT_EQ(std::string(ctx.Value(table).Text()), f[4]);
    }
    EXPECT_EQ(rows.size(), 20u);
}

TEST_F(RuleContextTest, RootIsReachedWhateverItsName) {
    standOn("~/Loans");
    EXPECT_EQ(ctx.FirstNode(ctx.m_Current, MakePathTable("/GovTalkMessage")), message.get());
    EXPECT_EQ(std::string(message->name), "Message");
}

TEST_F(RuleContextTest, AttributeLeavesCarryTheirText) {
    standOn("~/Loans/Loan");
    CXMLVar* leaf = ctx.FirstNode(ctx.m_Current, MakePathTable("@Filename"));
    ASSERT_NE(leaf, nullptr);
    EXPECT_EQ(std::string(leaf->value), "one");
    EXPECT_TRUE(leaf->children.empty());
    EXPECT_EQ(leaf, ctx.FirstNode(ctx.m_Current, MakePathTable("@Filename"))) << "made once per element";
    EXPECT_EQ(ctx.m_Current->GetChildCount(), 2) << "the element itself is untouched";
}

TEST_F(RuleContextTest, SelectionAndCurrentNode) {
    EXPECT_TRUE(ctx.Select(MakePathTable("~/Loans/Loan")));
    EXPECT_EQ(ctx.m_Selected.GetSize(), 3);
    CXMLVar* first = ctx.m_Current;
    EXPECT_EQ(std::string(first->GetAttr("Filename")), "one");
    ctx.SetCurrent(2);
    EXPECT_EQ(std::string(ctx.Value(MakePathTable("Amount")).Text()), "abc");
    ctx.SetCurrent(7);  // out of range: ignored
    ctx.SetCurrent(-1);
    EXPECT_EQ(std::string(ctx.Value(MakePathTable("Amount")).Text()), "abc");
    CXMLVar* before = ctx.m_Current;
    EXPECT_FALSE(ctx.Select(MakePathTable("~/Nothing")));
    EXPECT_EQ(ctx.m_Current, before) << "a selection of nothing leaves the current node";
    EXPECT_EQ(ctx.m_Selected.GetSize(), 0);

    CRuleContext empty;
    EXPECT_FALSE(empty.Select(MakePathTable("~/Loans")));
    EXPECT_EQ(empty.Count(MakePathTable("~/Loans")), 0);
    EXPECT_FALSE(empty.Self().IsTrue());
    empty.Error("1", "nowhere to go");  // no Errors document: nothing happens
}

TEST_F(RuleContextTest, ErrorsDocument) {
    ctx.Error("9105", "The return period To date");
    ctx.Error("9105", "The return period To date");
    ASSERT_EQ(errors.GetChildCount(), 2);
    const CXMLVar* error = errors.children[0];
    EXPECT_EQ(std::string(error->name), "Error");
    EXPECT_EQ(std::string(error->value), "");
    ASSERT_EQ(error->GetChildCount(), 1);
    EXPECT_EQ(std::string(error->children[0]->name), "Text");
    EXPECT_EQ(std::string(error->children[0]->value), "9105:The return period To date");
    EXPECT_EQ(errors.children[1]->parent, &errors);
}

TEST_F(RuleContextTest, GroupReportsOncePerFailingNodeInDocumentOrder) {
    using namespace ruledsl;
    RuleGroup group{900, "~/Loans/Loan", {
        {"1", "not an amount", !(sum("Amount") > 0)},
        {"2", "no file name", !filled("@Filename")},
    }};
    RunRuleGroup(ctx, group);
    EXPECT_EQ(rulestest::errorTexts(errors),
              (std::vector<std::string>{"2:no file name", "1:not an amount", "2:no file name"}));
    CXMLVar other("Errors");
    RuleGroup none{901, "~/Nothing", {{"3", "never", filled(".")}}};
    ctx.m_ErrorsNode = &other;
    RunRuleGroup(ctx, none);
    EXPECT_EQ(other.GetChildCount(), 0);
}

TEST(RunRules, NullMessageRunsNothing) {
    CXMLVar errors("Errors");
    RunRules(nullptr, &errors);
    EXPECT_EQ(errors.GetChildCount(), 0);
    CXMLVar message("GovTalkMessage");
    RunRules(&message, nullptr);  // no Errors document: no crash
    RunRules(&message, &errors);
    EXPECT_EQ(errors.GetChildCount(), 0) << "a message with no return selects nothing";
}

}  // namespace
