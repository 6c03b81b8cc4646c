// Reading returns, running the calculators and the validation, and the texts
// the commands print.
#include <expat.h>
#include <fcntl.h>
#include <iconv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string_view>

#include "cli.h"
#include "output.h"
#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"

namespace cli {

namespace {

void appendf(std::string& out, const char* format, ...) __attribute__((format(printf, 2, 3)));
void appendf(std::string& out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    const int needed = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    if (needed > 0) {
        const std::size_t at = out.size();
        out.resize(at + static_cast<std::size_t>(needed) + 1);
        std::vsnprintf(out.data() + at, static_cast<std::size_t>(needed) + 1, format, again);
        out.resize(at + static_cast<std::size_t>(needed));
    }
    va_end(again);
}

// "line 3, column 7" of the byte at offset (0-based) in text.
std::string lineAndColumn(const std::string& text, std::size_t offset) {
    offset = std::min(offset, text.size());
    std::size_t line = 1, column = 1;
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// The parser's complaint in the user's words.
std::string jsonProblem(const std::string& text, const nlohmann::json::parse_error& e) {
    const std::string what = e.what();
    const std::size_t at = e.byte > 0 ? e.byte - 1 : 0;
    if (what.find("UTF-8") != std::string::npos) return lineAndColumn(text, at) + ": the text is not UTF-8 (save the file as UTF-8)";
    if (what.find("control character") != std::string::npos)
        return lineAndColumn(text, at) + ": a control character inside quotes (write it as \\n, \\t or \\u00XX)";
    if (at >= text.size() || what.find("end of input") != std::string::npos)
        return lineAndColumn(text, text.size()) + ": the text ends before the box map does";
    const unsigned char c = static_cast<unsigned char>(text[at]);
    char shown[24];
    if (c >= 0x20 && c < 0x7F) std::snprintf(shown, sizeof shown, "'%c'", c);
    else std::snprintf(shown, sizeof shown, "byte 0x%02X", c);
    return lineAndColumn(text, at) + ": unexpected " + shown;
}

CMapStringToString boxesFromJson(const std::string& text, const std::string& path) {
    nlohmann::json doc;
    try {
        doc = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        throw InputError{path + ": not a valid JSON box map: " + jsonProblem(text, e)};
    } catch (const nlohmann::json::out_of_range&) {
        throw InputError{path + ": a number is too large to hold (beyond 1.8e308); give it as text in quotes"};
    } catch (const nlohmann::json::exception&) {
        throw InputError{path + ": not a valid JSON box map"};
    }
    if (!doc.is_object()) throw InputError{path + ": a box map must be a JSON object of box key to text"};
    CMapStringToString boxes;
    for (const auto& [key, value] : doc.items()) {
        std::string text;
        if (value.is_string()) text = value.get<std::string>();
        else if (value.is_number()) text = value.dump();
        else throw InputError{path + ": box " + key + " must hold text or a number"};
        if (key.find('\0') != std::string::npos || text.find('\0') != std::string::npos)
            throw InputError{path + ": box " + key + " holds a NUL character (\\u0000), which a return cannot carry"};
        std::string bad;
        std::string latinKey = toLatin1(key, &bad);
        if (!bad.empty()) throw InputError{path + ": the box key " + key + " has the character " + bad + ", which ISO-8859-1 cannot hold"};
        std::string latinText = toLatin1(text, &bad);
        if (!bad.empty())
            throw InputError{path + ": box " + key + " has the character " + bad +
                             ", which ISO-8859-1 (the text encoding of a return) cannot hold"};
        boxes[latinKey.c_str()] = CString(std::move(latinText));
    }
    return boxes;
}

// The Boxes node of a return tree as a box map, keys without the run's prefix.
CMapStringToString boxesFromTree(CXMLVar& tree) {
    CMapStringToString boxes;
    CStringArray names;
    const CString prefix = tree.GetAttr("prefix");
    tree.SetAttr("prefix", "");
    SubformFromXML(&tree, boxes, names);
    tree.SetAttr("prefix", prefix);
    return boxes;
}

// Why the tree did not open: line, column and what is wrong, from a second
// reading of the text.
constexpr int kMaxXmlDepth = 10000;  // the tree's own limit

struct XmlDiagnosis {
    XML_Parser parser;
    int depth = 0;
    bool tooDeep = false;
};

void XMLCALL diagnoseStart(void* data, const XML_Char*, const XML_Char**) {
    auto* d = static_cast<XmlDiagnosis*>(data);
    if (++d->depth > kMaxXmlDepth && !d->tooDeep) {
        d->tooDeep = true;
        XML_StopParser(d->parser, XML_FALSE);
    }
}
void XMLCALL diagnoseEnd(void* data, const XML_Char*) { --static_cast<XmlDiagnosis*>(data)->depth; }

std::string xmlProblem(const std::string& text) {
    // Read as the tree reads it: ISO-8859-1 unless the text names its encoding.
    const bool named = text.compare(0, 5, "<?xml") == 0 && text.substr(0, text.find("?>")).find("encoding") != std::string::npos;
    const bool marked = text.compare(0, 3, "\xEF\xBB\xBF") == 0 || text.compare(0, 2, "\xFF\xFE") == 0 ||
                        text.compare(0, 2, "\xFE\xFF") == 0;
    XmlDiagnosis d{XML_ParserCreate(named || marked ? nullptr : "ISO-8859-1")};
    if (!d.parser) return "not readable as XML";
    XML_SetUserData(d.parser, &d);
    XML_SetElementHandler(d.parser, diagnoseStart, diagnoseEnd);
    const bool ok = XML_Parse(d.parser, text.data(), static_cast<int>(text.size()), 1) == XML_STATUS_OK;
    const std::string where = "line " + std::to_string(XML_GetCurrentLineNumber(d.parser)) + ", column " +
                              std::to_string(XML_GetCurrentColumnNumber(d.parser) + 1);
    std::string why;
    if (d.tooDeep) {
        why = "elements nested deeper than " + std::to_string(kMaxXmlDepth) + " levels (" + where + ")";
    } else if (!ok) {
        const XML_Error code = XML_GetErrorCode(d.parser);
        switch (code) {
            case XML_ERROR_NO_ELEMENTS: why = "the text ends before the document does"; break;
            case XML_ERROR_INVALID_TOKEN: why = "a character that XML does not allow here"; break;
            case XML_ERROR_SYNTAX: why = "markup that is not XML"; break;
            case XML_ERROR_TAG_MISMATCH: why = "a closing tag that does not match the open element"; break;
            case XML_ERROR_UNCLOSED_TOKEN: why = "the text ends inside a tag"; break;
            case XML_ERROR_JUNK_AFTER_DOC_ELEMENT: why = "text after the end of the document"; break;
            case XML_ERROR_UNDEFINED_ENTITY: why = "an unknown entity (an & not written as &amp;?)"; break;
            default: why = XML_ErrorString(code); break;
        }
        why = "not well-formed XML: " + where + ": " + why;
    } else {
        why = "not readable as a return";  // the tree refused what expat took
    }
    XML_ParserFree(d.parser);
    return why;
}

void openReturn(CXMLVar& tree, const std::string& text, const std::string& path) {
    if (!tree.Open(CString(text))) throw InputError{path + ": " + xmlProblem(text)};
    if (!tree.FindChild("Boxes")) throw InputError{path + ": the return has no Boxes node"};
}

CMapStringToString boxesFromXml(const std::string& text, const std::string& path) {
    CXMLVar tree("");
    openReturn(tree, text, path);
    return boxesFromTree(tree);
}

// 3 for the current form, 2 and 1 for the earlier ones, from the entry's calculator.
int generationOfEntry(const std::string& name) {
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    for (int i = 0; i < count; ++i) {
        if (name != entries[i].name) continue;
        const std::string_view calculator = entries[i].calculator;
        return calculator == "CCT600_16Calc" ? 3 : calculator == "CCT600_02Calc" ? 1 : 2;
    }
    return 3;
}

}  // namespace

std::string readFile(const std::string& path) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) throw InputError{"cannot read " + path + ": " + reason(errno)};
    struct stat st {};
    if (fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
        close(fd);
        throw InputError{"cannot read " + path + ": it is a folder, not a return"};
    }
    std::string text;
    char buffer[65536];
    for (;;) {
        const ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int error = errno;
            close(fd);
            throw InputError{"cannot read " + path + ": " + reason(error)};
        }
        if (n == 0) break;
        text.append(buffer, static_cast<std::size_t>(n));
    }
    close(fd);
    return text;
}

bool isXmlText(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && text[first] == '<';
}

CMapStringToString boxesFromText(const std::string& text, const std::string& path) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) throw InputError{path + ": the file is empty"};
    return isXmlText(text) ? boxesFromXml(text, path) : boxesFromJson(text, path);
}

CMapStringToString loadBoxes(const std::string& path) { return boxesFromText(readFile(path), path); }

std::vector<ErrorLine> parseErrors(const CString& validation) {
    std::vector<ErrorLine> lines;
    CXMLVar doc("");
    doc.Open(validation);
    POSITION pos = doc.GetFirstChildPosition();
    while (pos) {
        CXMLVar* error = doc.GetNextChild(pos);
        const CXMLVar* field = error->FindChild("Field");
        const CXMLVar* text = error->FindChild("Text");
        lines.push_back({field ? field->value.str() : "", text ? text->value.str() : ""});
    }
    return lines;
}

bool formOrder(const std::string& a, const std::string& b) {
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (std::isdigit(static_cast<unsigned char>(a[i])) && std::isdigit(static_cast<unsigned char>(b[j]))) {
            std::size_t ei = i, ej = j;
            while (ei < a.size() && std::isdigit(static_cast<unsigned char>(a[ei]))) ++ei;
            while (ej < b.size() && std::isdigit(static_cast<unsigned char>(b[ej]))) ++ej;
            const std::string_view x = std::string_view(a).substr(i, ei - i), y = std::string_view(b).substr(j, ej - j);
            const auto xs = x.find_first_not_of('0'), ys = y.find_first_not_of('0');
            const std::string_view xv = xs == x.npos ? "" : x.substr(xs), yv = ys == y.npos ? "" : y.substr(ys);
            if (xv.size() != yv.size()) return xv.size() < yv.size();
            if (xv != yv) return xv < yv;
            i = ei;
            j = ej;
            continue;
        }
        if (a[i] != b[j]) return a[i] < b[j];
        ++i;
        ++j;
    }
    return a.size() - i < b.size() - j;
}

bool isBlankOnForm(const CString& text) {
    char* end = nullptr;
    const double number = std::strtod(text, &end);
    return number == 0 && end && *end == '\0';
}

std::string boxText(const CMapStringToString& boxes, const char* key) {
    const CString* text = boxes.PLookup(key);
    return text ? text->str() : std::string();
}

// ---------------------------------------------------------------- calc

CalcRun runCalc(const std::string& path, const CalcOptions& options) {
    const std::string entryName = options.entryName.empty() ? "ctv3_21" : options.entryName;
    FormEntry entry = FindFormEntry(entryName.c_str());
    if (!entry) throw InputError{"no form entry named " + options.entryName + " (see 'ct600 entries')"};

    CalcRun run;
    const std::string text = readFile(path);
    if (isXmlText(text) && options.entryName.empty()) {
        // A return tree is recalculated in place; the calculator is its own choice.
        CXMLVar tree("");
        openReturn(tree, text, path);
        do_calc(&tree);
        tree.Save(run.rebuilt, 1);
        run.wholeReturn = true;
        run.boxes = boxesFromTree(tree);
        run.generation = ToLower(CString(boxText(run.boxes, "form")).Left(4)) == "ctv3" ? 3 : 2;
        if (const CXMLVar* errors = tree.FindChild(kCalcErrorsRoot)) {
            CString document;
            errors->Save(document, 1);
            run.validation = document.str();
            run.errors = parseErrors(document);
        }
        return run;
    }

    run.boxes = boxesFromText(text, path);
    run.generation = generationOfEntry(entryName);
    CMapStringToString result;
    CString prefix;
    entry(&run.boxes, &prefix, &result);
    run.validation = boxText(result, "validation");
    run.errors = parseErrors(CString(run.validation));
    return run;
}

const GenerationBoxes& generationBoxes(int generation) {
    static const GenerationBoxes kThird{{{"Q330", "Q335", "Q340", "Q345"}, {"Q380", "Q385", "Q390", "Q395"}},
                                        "corporation tax chargeable", "Q70", "Q525", "from", "to"};
    static const GenerationBoxes kSecond{{{"Q43", "Q44", "Q45", "Q46"}, {"Q53", "Q54", "Q55", "Q56"}},
                                         "corporation tax chargeable", "Q70", "Q86", "from", "to"};
    static const GenerationBoxes kFirst{{{"Q39", "Q40", "Q41", "Q42"}, {"Q49", "Q50", "Q51", "Q52"}},
                                        "tax chargeable", "Q68", "Q72", "From", "To"};
    return generation == 1 ? kFirst : generation == 2 ? kSecond : kThird;
}

std::string calcText(const CalcRun& run, bool all) {
    const CMapStringToString& boxes = run.boxes;
    auto box = [&boxes](const char* key) { return boxText(boxes, key); };
    const GenerationBoxes& g = generationBoxes(run.generation);
    std::string out = "Tax chargeable:\n";
    bool any = false;
    for (const auto& row : g.years) {
        if (isBlankOnForm(CString(box(row[0])))) continue;
        any = true;
        appendf(out, "  financial year %s: %s at %s%% = %s\n", box(row[0]).c_str(),
                fmt2(myatof(box(row[1]).c_str())).c_str(), box(row[2]).c_str(),
                fmt2(myatof(box(row[3]).c_str())).c_str());
    }
    if (!any) out += "  no financial year (dates or profit missing)\n";
    appendf(out, "  %s (%s): %s\n", g.chargeableName, g.chargeable, fmt2(myatof(box(g.chargeable).c_str())).c_str());
    appendf(out, "  tax payable (%s): %s\n", g.payable, fmt2(myatof(box(g.payable).c_str())).c_str());

    std::vector<std::pair<std::string, std::string>> shown;
    for (const auto& [key, value] : boxes.items()) {
        if (!all && isBlankOnForm(value)) continue;
        if (key == kWorkedReportKey)
            shown.emplace_back(key.str(), "(worked report, " + std::to_string(value.GetLength()) + " bytes of XML)");
        else
            shown.emplace_back(key.str(), value.str());
    }
    std::sort(shown.begin(), shown.end(), [](const auto& x, const auto& y) { return formOrder(x.first, y.first); });
    out += "Boxes:\n";
    for (const auto& [key, value] : shown) appendf(out, "  %-14s %s\n", key.c_str(), value.c_str());
    out += "Errors:\n";
    if (run.errors.empty()) out += "  none\n";
    for (const auto& e : run.errors) appendf(out, "  %s: %s\n", e.field.c_str(), e.text.c_str());
    return toUtf8(out);
}

std::string calcJson(const CalcRun& run, bool oneLine, const std::string& file) {
    nlohmann::ordered_json out;
    if (!file.empty()) out["file"] = file;
    out["boxes"] = nlohmann::ordered_json::object();
    for (const auto& [key, value] : run.boxes.items()) out["boxes"][toUtf8(key.str())] = toUtf8(value.str());
    out["errors"] = nlohmann::ordered_json::array();
    for (const auto& e : run.errors) out["errors"].push_back({{"field", toUtf8(e.field)}, {"text", toUtf8(e.text)}});
    // The error document travels as text of the JSON: UTF-8, and declared so.
    std::string validation = toUtf8(run.validation);
    const std::string latin = "encoding=\"ISO-8859-1\"";
    if (const auto at = validation.find(latin); at != std::string::npos && at < validation.find("?>"))
        validation.replace(at, latin.size(), "encoding=\"UTF-8\"");
    out["validation"] = validation;
    // Only a file name can hold bytes that are not UTF-8.
    return out.dump(oneLine ? -1 : 2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string calcSummary(const CalcRun& run) {
    const GenerationBoxes& g = generationBoxes(run.generation);
    return "tax chargeable " + fmt2(myatof(boxText(run.boxes, g.chargeable).c_str())).str() + ", tax payable " +
           fmt2(myatof(boxText(run.boxes, g.payable).c_str())).str();
}

void copyReport(const std::string& from, const std::string& folder, const std::vector<std::string>& inputs) {
    namespace fs = std::filesystem;
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed) throw InputError{"cannot create the folder " + folder + ": " + reason(failed.value())};
    // The first generation writes calc.htm only.
    if (!fs::exists(fs::path(from) / "calc.htm"))
        throw InputError{"the run left no worked report to copy to " + folder + " (the return needs its dates and a profit)"};
    for (const char* name : {"calc.htm", "ctcharge.xml"}) {
        const fs::path source = fs::path(from) / name;
        if (!fs::exists(source)) continue;
        const std::string target = (fs::path(folder) / name).string();
        checkNotAnInput(target, inputs);
        writeFileSafely(target, readFile(source.string()));
    }
}

void removeStaleReport() {
    namespace fs = std::filesystem;
    std::error_code ignored;
    for (const char* name : {"calc.htm", "ctcharge.xml"}) fs::remove(fs::path(GetTempDir().str()) / name, ignored);
}

// ---------------------------------------------------------------- validate

void requireTemplate() {
    if (!exists(NativePath(JoinPath(GetCTdir(), "ctv3_16", ".xml"))))
        throw InputError{"the message template ctv3_16.xml is missing from " + GetCTdir().str() +
                         " (set CT600_TEMPLATE_DIR to the folder that holds the templates)"};
}

ValidateRun validateRunOf(CXMLVar& errors, bool xml, const std::string& fileAttribute) {
    ValidateRun run;
    run.errorsFound = errors.GetChildCount() != 0;
    if (xml) {
        if (!fileAttribute.empty()) errors.SetAttr("file", fileAttribute.c_str());
        CString text;
        errors.Save(text, fileAttribute.empty() ? 1 : 0);
        run.text = text.str() + "\n";
    } else {
        for (const CXMLVar* error : errors.children) {
            const CXMLVar* text = error->FindChild("Text");
            run.text += toUtf8(text ? text->value.str() : error->value.str()) + "\n";
        }
    }
    return run;
}

ValidateRun runValidate(const std::string& path, bool xml, const std::string& fileAttribute) {
    CMapStringToString boxes = loadBoxes(path);
    CXMLVar errors("Errors");
    do_validate(&boxes, &errors);
    return validateRunOf(errors, xml, fileAttribute);
}

// ---------------------------------------------------------------- temporary folders

PrivateTempDir::PrivateTempDir(const char* stem) {
    const std::string base = GetTempDir().str();
    if (const char* log = std::getenv("CT600_LOG_FILE"); !log || !*log) {
        setenv("CT600_LOG_FILE", (base + "/ct600.log").c_str(), 1);
        setLog_ = true;
    }
    std::string pattern = base + "/" + stem + "-XXXXXX";
    if (!mkdtemp(pattern.data())) {
        const int error = errno;
        if (setLog_) unsetenv("CT600_LOG_FILE");
        throw InputError{"the temporary folder " + base + " cannot be used: " + reason(error) +
                         " (set CT600_TEMP_DIR to a folder of your own)"};
    }
    path_ = pattern;
    cleanupFolderOnSignal(path_);
    if (const char* temp = std::getenv("CT600_TEMP_DIR")) {
        hadTemp_ = true;
        savedTemp_ = temp;
    }
    setenv("CT600_TEMP_DIR", path_.c_str(), 1);
}

PrivateTempDir::~PrivateTempDir() {
    if (hadTemp_) setenv("CT600_TEMP_DIR", savedTemp_.c_str(), 1);
    else unsetenv("CT600_TEMP_DIR");
    if (setLog_) unsetenv("CT600_LOG_FILE");
    cleanupFolderOnSignal("");
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

// ---------------------------------------------------------------- text

namespace {

bool plainAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; });
}

// One conversion through iconv. On a character the target cannot hold, stops
// and gives its offset in bad; the text converted so far is returned.
std::string convert(const char* to, const char* from, const std::string& text, std::size_t* bad) {
    iconv_t cd = iconv_open(to, from);
    if (cd == reinterpret_cast<iconv_t>(-1)) throw InputError{std::string("no conversion from ") + from + " to " + to};
    std::string out(text.size() * 2 + 4, '\0');
    char* in = const_cast<char*>(text.data());
    std::size_t inLeft = text.size();
    char* put = out.data();
    std::size_t outLeft = out.size();
    while (inLeft > 0) {
        if (iconv(cd, &in, &inLeft, &put, &outLeft) != static_cast<std::size_t>(-1)) break;
        if (errno == E2BIG) {
            const std::size_t used = static_cast<std::size_t>(put - out.data());
            out.resize(out.size() * 2);
            put = out.data() + used;
            outLeft = out.size() - used;
            continue;
        }
        if (bad) *bad = text.size() - inLeft;
        break;
    }
    iconv_close(cd);
    out.resize(static_cast<std::size_t>(put - out.data()));
    return out;
}

}  // namespace

// ASCII reads the same in both: most texts are, and opening a conversion
// costs more than the rest of reading a box.
std::string toUtf8(const std::string& text) {
    return plainAscii(text) ? text : convert("UTF-8", "ISO-8859-1", text, nullptr);
}

std::string toLatin1(const std::string& utf8, std::string* bad) {
    if (plainAscii(utf8)) {
        if (bad) bad->clear();
        return utf8;
    }
    std::size_t at = std::string::npos;
    std::string out = convert("ISO-8859-1", "UTF-8", utf8, &at);
    if (bad) bad->clear();
    if (at == std::string::npos) return out;
    if (bad) {
        // The character itself and its code point: 'ł' (U+0142).
        std::size_t end = at + 1;
        while (end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) ++end;
        const std::string ch = utf8.substr(at, end - at);
        const std::string wide = convert("UTF-32BE", "UTF-8", ch, nullptr);
        unsigned code = 0;
        for (const char c : wide.substr(0, 4)) code = code << 8 | static_cast<unsigned char>(c);
        char hex[16];
        std::snprintf(hex, sizeof hex, "U+%04X", code);
        *bad = "'" + ch + "' (" + hex + ")";
    }
    return out;
}

std::string escapeMarkup(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            case '\'': out += "&#39;"; break;
            default: out += c;
        }
    }
    return out;
}

}  // namespace cli
