// do_validate: builds the message a return would be filed in, runs every
// business rule over it, then the schema walk, and hands back one error list.
#include "entry/validate.h"

#include <memory>

#include "common/current_law.h"
#include "common/library.h"
#include "entry/exports.h"
#include "entry/module.h"
#include "envelope/envelope.h"
#include "rules/rulecontext.h"
#include "schema/schema.h"

CXMLVar* ValidateReturn(CMapStringToString& boxes) {
    auto* errors = new CXMLVar("Errors");
    CRuleContext context(nullptr, errors);
    const RateLadder ladder = ChosenLadder(boxes);
    context.m_CurrentLaw = ladder == RateLadder::CurrentLaw;
    // The message is always built from the one form, whatever year the boxes are.
    context.m_Root = quick_govtalk(&boxes, "ctv3_16");
    context.RunRules();
    if (context.m_Root) schemawalk(context.m_Root, errors, ladder);
    delete context.m_Root;
    context.m_Root = nullptr;
    return errors;
}

int do_validate(CMapStringToString* boxes, CXMLVar* errors) {
    CT600_MANAGE_STATE();
    CMapStringToString local;
    const std::unique_ptr<CXMLVar> found(ValidateReturn(boxes ? *boxes : local));
    if (errors) errors->CloneChildren(found.get());
    return 1;
}
