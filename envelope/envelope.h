// The return envelope: the message template of the form, filled from a box
// map, with the attached files, inside a GovTalkMessage.
//
// The template (envelope/templates/ctv3_16.xml) is the return document with
// placeholders where boxes go:
//
//   <Profits>{Q155:amount}</Profits>          box Q155 as an amount
//   <CompanyName>{name or Q1}</CompanyName>   the first filled of "name", Q1
//   <CompanyType>{Q4 or '0'}</CompanyType>    a quoted text when no box is filled
//   <Loan repeat="rows"> ... {QA10B.#} ...    one Loan for each row QA10B.1, .2 ...
//   <Trading if="filled"> ...                 left out when nothing inside is filled
//
// Populate fills the placeholders and expands the repeats; an element made of
// placeholders gets if="filled" too. RemoveConditionals then takes out every
// conditional element left empty and wipes the mark-up.
#pragma once

#include <string_view>
#include <vector>

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"

// ---------------------------------------------------------------- box texts

// How a box's text is written into the document.
enum class BoxKind {
    Text,    // as typed, without surrounding blanks
    Amount,  // two decimals; a nought is empty unless the box says "zero"
    Int,     // a whole number; a nought is empty unless the box says "zero"
    Date,    // dd/mm/yyyy to yyyy-mm-dd
    Flag,    // a tick to "yes", anything else empty
    YesNo,   // "yes", "no" or "na"
    Signed,  // "yes" when the box holds anything
};

// The kind named in a placeholder ("amount", "flag" ...); false for an unknown name.
bool ParseBoxKind(std::string_view name, BoxKind& kind);
const char* BoxKindName(BoxKind kind);

// The document's text for a box's text; empty when the box counts as empty.
// A text that cannot be read as the kind asks passes through trimmed, so that
// the schema tests report it rather than the envelope hiding it.
CString FormatBox(BoxKind kind, const char* text);

// One placeholder, the text between braces: sources separated by " or ",
// each a box key or a 'quoted text', then an optional ":kind".
struct PlaceholderSource {
    CString text;
    bool literal = false;
};
struct Placeholder {
    std::vector<PlaceholderSource> sources;
    BoxKind kind = BoxKind::Text;
    // The sources as a reader sees them: "name or Q1", "Q4 or '0'".
    CString SourcesText() const;
};
bool ParsePlaceholder(std::string_view inner, Placeholder& out);

// ---------------------------------------------------------------- the mapping as data

// One placeholder of a template, for the documentation's table.
struct BoxMapEntry {
    CString sources;  // as SourcesText gives them
    CString path;     // below the root: "CompanyInformation/CompanyName", "@ReturnType"
    CString kind;     // "text", "amount" ...
};
// Every placeholder of the template in document order. Text in braces that
// is no placeholder is reported in problems (when given), with its path.
std::vector<BoxMapEntry> ListBoxMap(const CXMLVar* templ, std::vector<CString>* problems = nullptr);

// ---------------------------------------------------------------- filling

// The box map as a tree: a root "Boxes" with one child per key, in key order.
// The caller owns it.
CXMLVar* TaxToXML(const CMapStringToString& boxes);

class CGovTalk {
public:
    // document receives each result of Populate; the object owns nothing.
    explicit CGovTalk(CXMLVar*& document);
    virtual ~CGovTalk();
    CGovTalk(const CGovTalk&) = delete;
    CGovTalk& operator=(const CGovTalk&) = delete;

    // A new document made from the template and the data tree of TaxToXML;
    // neither argument is changed or kept. reserved is 0. prefix goes in front
    // of every box key read, as a calculator's run prefix does. Never null:
    // without a template the result is an empty nameless node.
    CXMLVar* Populate(CXMLVar* templ, CXMLVar* data, int reserved, CString prefix);

    // Removes each element marked if="filled" that has neither text nor
    // attributes nor children, innermost first, and strips the if and repeat
    // mark-up from every element. The root itself is never removed.
    void RemoveConditionals(CXMLVar* document);

    // Populate from the box map itself (no prefix) and RemoveConditionals, in
    // one pass that never writes the mark-up: the same document, made faster.
    CXMLVar* PopulateSettled(CXMLVar* templ, const CMapStringToString& boxes);

private:
    CXMLVar*& document_;
};

// ---------------------------------------------------------------- attachments

// Places the files named in fileattach1 to fileattach3 under AttachedFiles of
// document (or, when document is null, of the root kept in *created, made as
// "xml" when there is none). A name ending in .pdf becomes an Attachment;
// any other is inline XBRL accounts, or computations when the name holds
// "ctcomp". With readfiles 0 no file is read and the bodies are fixed texts
// of the right kind. Nothing happens unless fileattach1 is filled. Returns 1
// when at least one Attachment was added.
int attachfiles(const char* folder, CXMLVar** created, CMapStringToString& boxes, int readfiles,
                CXMLVar* document);

// ---------------------------------------------------------------- current law

// Q326 to Q329 as CompanyTaxCalculation/CorporationTaxChargeable/
// AssociatedCompanies, ahead of the financial years: ThisPeriod (Q326), or
// AssociatedCompaniesFinancialYears with FirstYear and SecondYear when Q327
// or Q328 is filled, then StartingOrSmallCompaniesRate for the tick of Q329.
// Nothing when none of them says anything. Only current law has them.
void AddAssociatedCompanies(CXMLVar* document, const CMapStringToString& boxes);

// ---------------------------------------------------------------- the message

// The GovTalkMessage for validation: the template named by form (form + ".xml",
// in GetCTdir for names starting with "ct", else in GetQuillonDir) filled from
// the boxes, with the attachments, under Body/IRenvelope; under current law
// (common/current_law.h) with the associated companies. Also written to
// t.xml in the temporary folder. Null, with a log line, when the template is
// missing. The caller owns the result.
CXMLVar* quick_govtalk(CMapStringToString* boxes, CString form);
// The same for the third-generation form, ctv3_16.
CXMLVar* quick_govtalk(CMapStringToString& boxes);
