#include "rules/catalogue/catalogue.h"

#include <algorithm>
#include <iterator>

#include "rules/rules.h"

namespace {

// Each unit of the catalogue, once. Order here doesn't matter: groups are
// sorted by their numbers.
RuleGroups (*const kUnits[])() = {
    MessageGroups,
    CalculationGroups,
    ReconciliationGroups,
    PagesAtoCGroups,
    PagesDtoJGroups,
    AttachedFilesGroups,
};

std::vector<RuleGroup> assemble() {
    std::vector<RuleGroup> all;
    for (auto unit : kUnits) {
        RuleGroups groups = unit();
        std::move(groups.begin(), groups.end(), std::back_inserter(all));
    }
    std::stable_sort(all.begin(), all.end(),
                     [](const RuleGroup& a, const RuleGroup& b) { return a.number < b.number; });
    for (RuleGroup& group : all) group.table = MakePathTable(group.select);
    return all;
}

}  // namespace

const std::vector<RuleGroup>& RuleCatalogue() {
    static const std::vector<RuleGroup> catalogue = assemble();
    return catalogue;
}

void RunRuleGroup(CRuleContext& ctx, const RuleGroup& group) {
    if (!ctx.Select(group.table ? group.table : MakePathTable(group.select))) return;
    for (int i = 0; i < ctx.m_Selected.GetSize(); ++i) {
        ctx.SetCurrent(i);
        for (const RuleRow& rule : group.rules)
            if (!(rule.defaultLawOnly && ctx.m_CurrentLaw) && rule.test(ctx)) ctx.Error(rule.code, rule.message);
    }
}

void CRuleContext::RunRules() {
    for (const RuleGroup& group : RuleCatalogue()) RunRuleGroup(*this, group);
}

void RunRules(CXMLVar* message, CXMLVar* errors) {
    if (!message) return;
    try {
        CRuleContext ctx(message, errors);
        ctx.RunRules();
    } catch (...) {
        // Only memory can run out here; the errors found so far stand.
    }
}
