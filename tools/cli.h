// Pieces shared by the commands of the ct600 host: reading returns, running
// the calculators and the validation, and formatting what they give back.
#pragma once

#include <string>
#include <vector>

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"

namespace cli {

constexpr int kExitOk = 0;
constexpr int kExitErrorsFound = 1;
constexpr int kExitBadInput = 2;

// A problem with what the user gave: reported as one line, exit status 2.
struct InputError {
    std::string message;
};

std::string readFile(const std::string& path);
bool isXmlText(const std::string& text);
// A box map from JSON text or from a return XML's Boxes node.
CMapStringToString boxesFromText(const std::string& text, const std::string& path);
CMapStringToString loadBoxes(const std::string& path);

struct ErrorLine {
    std::string field, text;
};
// The calculator's errors from the document stored under "validation".
std::vector<ErrorLine> parseErrors(const CString& validation);

// Box keys in the order of the form: Q13 before Q155, QA10B.2 before QA10B.10.
bool formOrder(const std::string& a, const std::string& b);
// A box that holds a nought as a number shows nothing on the form.
bool isBlankOnForm(const CString& text);
// The text of a box, empty when absent.
std::string boxText(const CMapStringToString& boxes, const char* key);

// The result key of the worked report's tree: shown by size, never as text.
constexpr const char* kWorkedReportKey = "xml/CT/CTchargeable";

// ---- calc

struct CalcOptions {
    std::string entryName;  // empty: the default entry, or a whole-return run for XML
    bool json = false;
    bool all = false;
};

// One recalculation. A return XML without an entry named is recalculated as a
// whole (do_calc) and rebuilt; anything else runs a form entry over its box map.
struct CalcRun {
    bool wholeReturn = false;
    int generation = 3;            // of the form: 3 the current one, 2 and 1 the earlier
    CMapStringToString boxes;      // after the run
    std::vector<ErrorLine> errors;
    std::string validation;        // the calculator's error document
    CString rebuilt;               // whole-return runs: the rebuilt return
};
CalcRun runCalc(const std::string& path, const CalcOptions& options);

// Where each generation of the form keeps the figures a summary shows.
struct GenerationBoxes {
    const char* years[2][4];     // per financial year: the year, profit, rate, tax
    const char* chargeableName;  // "corporation tax chargeable"
    const char* chargeable;      // its box
    const char* payable;         // the tax payable
    const char* from;            // the period
    const char* to;
};
const GenerationBoxes& generationBoxes(int generation);

// The text 'ct600 calc' prints for a box map: tax chargeable, boxes, errors.
std::string calcText(const CalcRun& run, bool all);
// The JSON object 'ct600 calc --json' prints (pretty, or one line).
std::string calcJson(const CalcRun& run, bool oneLine, const std::string& file = "");
// "tax chargeable 36199.21, tax payable 36199.21": a run in one line.
std::string calcSummary(const CalcRun& run);

// Copies the worked report (calc.htm, and ctcharge.xml where the run wrote
// one) from the run's temporary folder to folder, each written safely and
// none over one of the inputs.
void copyReport(const std::string& from, const std::string& folder, const std::vector<std::string>& inputs);
// Takes the report files of an earlier run out of the temporary folder, so
// that a run that writes none is not shown another return's.
void removeStaleReport();

// ---- validate

struct ValidateRun {
    bool errorsFound = false;
    std::string text;  // one error a line, or the Errors document
};
// Fails with InputError when the message template is missing: without it no
// message can be built, and an empty error list would look like a clean return.
void requireTemplate();
// xml: the Errors document instead of lines. fileAttribute, when given, is
// recorded on that document's root and the XML declaration left out, so that
// documents of several files can stand side by side in one.
ValidateRun runValidate(const std::string& path, bool xml, const std::string& fileAttribute = "");
// The lines (or the Errors document) of a finished validation, texts as UTF-8.
ValidateRun validateRunOf(CXMLVar& errors, bool xml, const std::string& fileAttribute);

// ---- temporary folders

// A folder of its own under the library's temporary folder, which it becomes
// for as long as the object lives, so that the worked report files of this
// run collide with no other; the log stays where it was. Removed, with what
// is in it, at the end. Not for copying.
class PrivateTempDir {
public:
    explicit PrivateTempDir(const char* stem);
    ~PrivateTempDir();
    PrivateTempDir(const PrivateTempDir&) = delete;
    PrivateTempDir& operator=(const PrivateTempDir&) = delete;
    const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
    std::string savedTemp_;
    bool hadTemp_ = false;
    bool setLog_ = false;
};

// ---- text

// The library's ISO-8859-1 text as UTF-8.
std::string toUtf8(const std::string& text);
// UTF-8 as ISO-8859-1. A character it cannot hold ends the text there and is
// described in bad ("'ł' (U+0142)"); bad is empty when all went over.
std::string toLatin1(const std::string& utf8, std::string* bad);
// HTML and XML text: & < > " ' as character references.
std::string escapeMarkup(const std::string& text);

}  // namespace cli
