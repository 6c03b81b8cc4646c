// Current law's boxes of associated companies and the small profits tick in
// the return document. They have no place in the default form's template,
// so they are added to the filled document, where the current form has them.
#include <algorithm>
#include <iterator>
#include <memory>

#include "common/current_law.h"
#include "common/library.h"
#include "envelope/envelope.h"

namespace {

// CorporationTaxChargeable stands before the first of these in CompanyTaxCalculation.
constexpr const char* kFollowChargeable[] = {"CorporationTax", "MarginalReliefForRingFenceTrades",
                                             "NetCorporationTaxChargeable", "TaxReliefsAndDeductions"};

CString boxText(const CMapStringToString& boxes, const char* key) {
    const CString* text = boxes.PLookup(key);
    return text ? *text : CString();
}

// A year's count as the document has it: the year's own box, else the
// period's; never empty, since each year's element must be there. A text
// that is no number passes through for the schema tests to report.
CString yearCount(const CMapStringToString& boxes, const char* yearBox) {
    const char* source = BoxFilled(boxes, CString(), yearBox) ? yearBox : "Q326";
    const CString text = FormatBox(BoxKind::Int, boxText(boxes, source));
    return text.IsEmpty() ? CString("0") : text;
}

}  // namespace

void AddAssociatedCompanies(CXMLVar* document, const CMapStringToString& boxes) {
    if (!document) return;
    const bool byYear = BoxFilled(boxes, CString(), "Q327") || BoxFilled(boxes, CString(), "Q328");
    const CString thisPeriod = byYear ? CString() : FormatBox(BoxKind::Int, boxText(boxes, "Q326"));
    const CString tick = FormatBox(BoxKind::Flag, boxText(boxes, "Q329"));
    if (!byYear && thisPeriod.IsEmpty() && tick.IsEmpty()) return;

    auto associated = std::make_unique<CXMLVar>("AssociatedCompanies");
    if (byYear) {
        CXMLVar* years = associated->AddChild(new CXMLVar("AssociatedCompaniesFinancialYears"));
        years->AddChild("FirstYear", yearCount(boxes, "Q327"));
        years->AddChild("SecondYear", yearCount(boxes, "Q328"));
    } else if (!thisPeriod.IsEmpty()) {
        associated->AddChild("ThisPeriod", thisPeriod);
    }
    if (!tick.IsEmpty()) associated->AddChild("StartingOrSmallCompaniesRate", tick);

    // Without a tax computed there is no CorporationTaxChargeable yet: the
    // counts make one, and the schema tests say what it lacks.
    CXMLVar* calculation = document->GetChild("CompanyTaxCalculation");
    CXMLVar* chargeable = calculation->FindChild("CorporationTaxChargeable");
    if (!chargeable) {
        chargeable = calculation->AddChild(new CXMLVar("CorporationTaxChargeable"));
        auto& siblings = calculation->children;
        const auto last = siblings.end() - 1;  // the new one
        const auto follower = std::find_if(siblings.begin(), last, [](const CXMLVar* c) {
            return std::any_of(std::begin(kFollowChargeable), std::end(kFollowChargeable),
                               [c](const char* name) { return c->name == name; });
        });
        std::rotate(follower, last, siblings.end());
    }
    // Ahead of the financial years.
    chargeable->AddChild(associated.release());
    auto& rows = chargeable->children;
    std::rotate(rows.begin(), rows.end() - 1, rows.end());
}
