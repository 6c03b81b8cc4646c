// The catalogue of business rules. A group is a selection and an ordered list
// of rules; a rule is a code, its message and the test on which it reports.
// Each unit of the catalogue gives its groups as data:
//
//   RuleGroups PagesGroups() {
//       return {
//           {125, "~/LoansByCloseCompanies", {
//               {"9305", "Supplementary form CT600A is present so Box 95 must be completed",
//                str("../ReturnInfoSummary/SupplementaryPages/CT600A") != "yes"},
//           }},
//       };
//   }
//
// and is listed once in kUnits (catalogue.cpp). Groups run in order of their
// numbers, whichever unit holds them. The tests use the notation of
// rules/ruledsl.h; a completion test written "!(val(p) || false)" goes through
// the logging or, as the rules marked with a dagger do.
#pragma once

#include <vector>

#include "rules/rulecontext.h"
#include "rules/ruledsl.h"

struct RuleRow {
    const char* code;
    const char* message;
    ruledsl::Bool test;  // true when the rule reports
    // Not run on a return charged under current law, whose boxes mean
    // something else than when the rule was written.
    bool defaultLawOnly = false;
};

struct RuleGroup {
    int number;
    const char* select;  // an absolute path
    std::vector<RuleRow> rules;
    PathTable table = nullptr;  // filled when the catalogue is assembled
};

using RuleGroups = std::vector<RuleGroup>;

// The units. Groups 1 to 20 and 177 to 186: the message, the period, the
// accounts and computations, the declared pages and the attached files.
RuleGroups MessageGroups();
RuleGroups AttachedFilesGroups();
// Groups 21 to 67: the tax calculation.
RuleGroups CalculationGroups();
// Groups 68 to 106: the tax outstanding or overpaid, the reconciliation,
// enhanced expenditure, losses for surrender and repayments.
RuleGroups ReconciliationGroups();
// Groups 107 to 146: pages CT600A, CT600B and CT600C.
RuleGroups PagesAtoCGroups();
// Groups 147 to 176: pages CT600D to CT600J.
RuleGroups PagesDtoJGroups();

// Every group, ordered by number; assembled once, on first use.
const std::vector<RuleGroup>& RuleCatalogue();

// Runs one group on the context: select, then each rule on each node.
void RunRuleGroup(CRuleContext& ctx, const RuleGroup& group);
