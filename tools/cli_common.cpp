// Reading returns, running the calculators and the validation, and the texts
// the commands print.
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

CMapStringToString boxesFromJson(const std::string& text, const std::string& path) {
    nlohmann::json doc;
    try {
        doc = nlohmann::json::parse(text);
    } catch (const nlohmann::json::parse_error& e) {
        throw InputError{path + ": not a valid JSON box map (" + e.what() + ")"};
    }
    if (!doc.is_object()) throw InputError{path + ": a box map must be a JSON object of box key to text"};
    CMapStringToString boxes;
    for (const auto& [key, value] : doc.items()) {
        if (value.is_string())
            boxes[key.c_str()] = value.get<std::string>().c_str();
        else if (value.is_number())
            boxes[key.c_str()] = value.dump().c_str();
        else
            throw InputError{path + ": box " + key + " must hold text or a number"};
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

CMapStringToString boxesFromXml(const std::string& text, const std::string& path) {
    CXMLVar tree("");
    if (!tree.Open(CString(text))) throw InputError{path + ": not well-formed XML"};
    if (!tree.FindChild("Boxes")) throw InputError{path + ": the return has no Boxes node"};
    return boxesFromTree(tree);
}

bool isThirdGenerationEntry(const std::string& name) {
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    for (int i = 0; i < count; ++i)
        if (name == entries[i].name) return std::string_view(entries[i].calculator) == "CCT600_16Calc";
    return false;
}

}  // namespace

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw InputError{"cannot read " + path};
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) throw InputError{"cannot read " + path};
    return text.str();
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
        if (!tree.Open(CString(text))) throw InputError{path + ": not well-formed XML"};
        if (!tree.FindChild("Boxes")) throw InputError{path + ": the return has no Boxes node"};
        do_calc(&tree);
        tree.Save(run.rebuilt, 1);
        run.wholeReturn = true;
        run.boxes = boxesFromTree(tree);
        run.thirdGeneration = ToLower(CString(boxText(run.boxes, "form")).Left(4)) == "ctv3";
        if (const CXMLVar* errors = tree.FindChild(kCalcErrorsRoot)) {
            CString document;
            errors->Save(document, 1);
            run.validation = document.str();
            run.errors = parseErrors(document);
        }
        return run;
    }

    run.boxes = boxesFromText(text, path);
    run.thirdGeneration = isThirdGenerationEntry(entryName);
    CMapStringToString result;
    CString prefix;
    entry(&run.boxes, &prefix, &result);
    run.validation = boxText(result, "validation");
    run.errors = parseErrors(CString(run.validation));
    return run;
}

std::string calcText(const CalcRun& run, bool all) {
    const CMapStringToString& boxes = run.boxes;
    auto box = [&boxes](const char* key) { return boxText(boxes, key); };
    std::string out = "Tax chargeable:\n";
    const struct {
        const char *year, *profit, *rate, *tax;
    } rows[] = {{"Q330", "Q335", "Q340", "Q345"}, {"Q380", "Q385", "Q390", "Q395"}};
    bool any = false;
    for (const auto& row : rows) {
        if (isBlankOnForm(CString(box(row.year)))) continue;
        any = true;
        appendf(out, "  financial year %s: %s at %s%% = %s\n", box(row.year).c_str(),
                fmt2(myatof(box(row.profit).c_str())).c_str(), box(row.rate).c_str(),
                fmt2(myatof(box(row.tax).c_str())).c_str());
    }
    if (!any) out += "  no financial year (dates or profit missing)\n";
    appendf(out, "  corporation tax chargeable (Q70): %s\n", fmt2(myatof(box("Q70").c_str())).c_str());
    appendf(out, "  tax payable (Q525): %s\n", fmt2(myatof(box("Q525").c_str())).c_str());

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
    return out;
}

std::string calcJson(const CalcRun& run, bool oneLine, const std::string& file) {
    nlohmann::ordered_json out;
    if (!file.empty()) out["file"] = file;
    out["boxes"] = nlohmann::ordered_json::object();
    for (const auto& [key, value] : run.boxes.items()) out["boxes"][key.str()] = value.str();
    out["errors"] = nlohmann::ordered_json::array();
    for (const auto& e : run.errors) out["errors"].push_back({{"field", e.field}, {"text", e.text}});
    out["validation"] = run.validation;
    return out.dump(oneLine ? -1 : 2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
}

std::string calcSummary(const CalcRun& run) {
    return "tax chargeable " + fmt2(myatof(boxText(run.boxes, "Q70").c_str())).str() + ", tax payable " +
           fmt2(myatof(boxText(run.boxes, "Q525").c_str())).str();
}

void copyReport(const std::string& folder) {
    namespace fs = std::filesystem;
    std::error_code failed;
    fs::create_directories(folder, failed);
    if (failed) throw InputError{"cannot create " + folder + ": " + failed.message()};
    for (const char* name : {"calc.htm", "ctcharge.xml"}) {
        const fs::path from = fs::path(GetTempDir().str()) / name;
        if (!fs::exists(from)) throw InputError{std::string("the run wrote no ") + name + " (no dates or profit?)"};
        fs::copy_file(from, fs::path(folder) / name, fs::copy_options::overwrite_existing, failed);
        if (failed) throw InputError{"cannot copy " + std::string(name) + " to " + folder + ": " + failed.message()};
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
        throw InputError{"the message template ctv3_16.xml is missing from " + GetCTdir().str()};
}

ValidateRun runValidate(const std::string& path, bool xml, const std::string& fileAttribute) {
    CMapStringToString boxes = loadBoxes(path);
    CXMLVar errors("Errors");
    do_validate(&boxes, &errors);
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
            run.text += (text ? text->value.str() : error->value.str()) + "\n";
        }
    }
    return run;
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
        if (setLog_) unsetenv("CT600_LOG_FILE");
        throw InputError{"cannot make a folder in " + base + ": " + std::strerror(errno)};
    }
    path_ = pattern;
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
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

// ---------------------------------------------------------------- text

namespace {

bool isUtf8(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const auto c = static_cast<unsigned char>(s[i]);
        std::size_t len = c < 0x80 ? 1 : (c >> 5) == 0x6 ? 2 : (c >> 4) == 0xE ? 3 : (c >> 3) == 0x1E ? 4 : 0;
        if (len == 0 || i + len > s.size() || (len == 2 && c < 0xC2) || c > 0xF4) return false;
        for (std::size_t k = 1; k < len; ++k)
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
        i += len;
    }
    return true;
}

void appendCodePoint(std::string& out, unsigned cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// Windows-1252 between 0x80 and 0x9F; the five gaps become U+FFFD.
constexpr unsigned short kCp1252High[32] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

}  // namespace

std::string toUtf8(const std::string& text) {
    if (isUtf8(text)) return text;
    std::string out;
    out.reserve(text.size() + text.size() / 4);
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        appendCodePoint(out, c >= 0x80 && c < 0xA0 ? kCp1252High[c - 0x80] : c);
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
