// ct600: the command-line host. Runs a form entry over a box map (JSON) or a
// return XML, and prints the recalculated boxes and the calculator's errors.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "envelope/envelope.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitErrorsFound = 1;
constexpr int kExitBadInput = 2;

const char* const kUsage =
    "usage: ct600 <command> [options]\n"
    "\n"
    "commands:\n"
    "  calc [--entry NAME] [--json] [--all] [--report DIR] [-o OUT] FILE\n"
    "        Recalculate a return. FILE is a box map (a JSON object of box key to\n"
    "        text, such as {\"Q155\": \"100000\", \"from\": \"01/04/2015\"}) or a return\n"
    "        XML with a Boxes node.\n"
    "        A box map runs the form entry NAME (default ctv3_21; see 'ct600 entries')\n"
    "        and prints the tax chargeable, the boxes that hold something (--all: every\n"
    "        box) and the errors the calculator found; --json prints one JSON object.\n"
    "        A return XML is recalculated as a whole (the return's form chooses the\n"
    "        calculator) and the rebuilt return is written to OUT (default: standard\n"
    "        output); with --entry it is read as a box map instead.\n"
    "        --report DIR copies the worked report (calc.htm, ctcharge.xml) to DIR.\n"
    "  message FILE\n"
    "        Print the GovTalkMessage that validation builds from the box map in\n"
    "        FILE (JSON or return XML, as for calc).\n"
    "  validate [--xml] FILE\n"
    "        Build the message the return in FILE (JSON or return XML) would be filed\n"
    "        in, and print every error HMRC's service would reject it for, one per\n"
    "        line as code:message (schema errors as their text); --xml prints the\n"
    "        Errors document instead. Exit status 0 clean, 1 errors found.\n"
    "  entries\n"
    "        List every form entry with the calculator it runs.\n"
    "  --help\n"
    "        Show this text.\n"
    "\n"
    "exit status: 0 done, 1 errors found (validate), 2 unreadable or malformed\n"
    "input or bad usage.\n";

struct InputError {
    std::string message;
};

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw InputError{"cannot read " + path};
    std::ostringstream text;
    text << in.rdbuf();
    if (in.bad()) throw InputError{"cannot read " + path};
    return text.str();
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

CMapStringToString boxesFromXml(const std::string& text, const std::string& path) {
    CXMLVar tree("");
    if (!tree.Open(CString(text))) throw InputError{path + ": not well-formed XML"};
    if (!tree.FindChild("Boxes")) throw InputError{path + ": the return has no Boxes node"};
    CMapStringToString boxes;
    CStringArray names;
    const CString prefix = tree.GetAttr("prefix");
    tree.SetAttr("prefix", "");
    SubformFromXML(&tree, boxes, names);
    tree.SetAttr("prefix", prefix);
    return boxes;
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

struct ErrorLine {
    std::string field, text;
};

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

// Box keys in the order of the form: Q13 before Q155, QA10B.2 before QA10B.10.
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

// A box that holds a nought as a number shows nothing on the form.
bool isBlankOnForm(const CString& text) {
    char* end = nullptr;
    const double number = std::strtod(text, &end);
    return number == 0 && end && *end == '\0';
}

constexpr const char* kWorkedReportKey = "xml/CT/CTchargeable";

void printTaxChargeable(const CMapStringToString& boxes) {
    auto box = [&boxes](const char* key) {
        const CString* text = boxes.PLookup(key);
        return text ? text->str() : std::string();
    };
    std::printf("Tax chargeable:\n");
    const struct {
        const char *year, *profit, *rate, *tax;
    } rows[] = {{"Q330", "Q335", "Q340", "Q345"}, {"Q380", "Q385", "Q390", "Q395"}};
    bool any = false;
    for (const auto& row : rows) {
        if (isBlankOnForm(box(row.year))) continue;
        any = true;
        std::printf("  financial year %s: %s at %s%% = %s\n", box(row.year).c_str(), fmt2(myatof(box(row.profit).c_str())).c_str(),
                    box(row.rate).c_str(), fmt2(myatof(box(row.tax).c_str())).c_str());
    }
    if (!any) std::printf("  no financial year (dates or profit missing)\n");
    std::printf("  corporation tax chargeable (Q70): %s\n", fmt2(myatof(box("Q70").c_str())).c_str());
    std::printf("  tax payable (Q525): %s\n", fmt2(myatof(box("Q525").c_str())).c_str());
}

void printText(const CMapStringToString& boxes, const std::vector<ErrorLine>& errors, bool all) {
    printTaxChargeable(boxes);
    std::vector<std::pair<std::string, std::string>> shown;
    for (const auto& [key, value] : boxes.items()) {
        if (!all && isBlankOnForm(value)) continue;
        if (key == kWorkedReportKey)
            shown.emplace_back(key.str(), "(worked report, " + std::to_string(value.GetLength()) + " bytes of XML)");
        else
            shown.emplace_back(key.str(), value.str());
    }
    std::sort(shown.begin(), shown.end(), [](const auto& x, const auto& y) { return formOrder(x.first, y.first); });
    std::printf("Boxes:\n");
    for (const auto& [key, value] : shown) std::printf("  %-14s %s\n", key.c_str(), value.c_str());
    std::printf("Errors:\n");
    if (errors.empty()) std::printf("  none\n");
    for (const auto& e : errors) std::printf("  %s: %s\n", e.field.c_str(), e.text.c_str());
}

void printJson(const CMapStringToString& boxes, const CMapStringToString& result,
               const std::vector<ErrorLine>& errors) {
    nlohmann::ordered_json out;
    out["boxes"] = nlohmann::ordered_json::object();
    for (const auto& [key, value] : boxes.items()) out["boxes"][key.str()] = value.str();
    out["errors"] = nlohmann::ordered_json::array();
    for (const auto& e : errors) out["errors"].push_back({{"field", e.field}, {"text", e.text}});
    out["validation"] = result.PLookup("validation") ? result.PLookup("validation")->str() : "";
    std::printf("%s\n", out.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

// The worked report of the last run lies in the temporary folder.
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

void writeOut(const std::string& path, const CString& text) {
    if (path.empty() || path == "-") {
        std::fwrite(text.c_str(), 1, static_cast<std::size_t>(text.GetLength()), stdout);
        std::fputc('\n', stdout);
        return;
    }
    std::ofstream out(path, std::ios::binary);
    out << text.str() << '\n';
    if (!out) throw InputError{"cannot write " + path};
}

int commandCalc(const std::vector<std::string>& args) {
    std::string entryName, path, reportDir, outPath;
    bool json = false, all = false;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const bool hasValue = i + 1 < args.size();
        if (args[i] == "--entry" && hasValue) entryName = args[++i];
        else if (args[i] == "--report" && hasValue) reportDir = args[++i];
        else if (args[i] == "-o" && hasValue) outPath = args[++i];
        else if (args[i] == "--json") json = true;
        else if (args[i] == "--all") all = true;
        else if (args[i] == "--help") { std::fputs(kUsage, stdout); return kExitOk; }
        else if (!args[i].empty() && args[i][0] == '-') throw InputError{"unknown option " + args[i]};
        else if (path.empty()) path = args[i];
        else throw InputError{"calc takes one file"};
    }
    if (path.empty()) throw InputError{"calc needs a file"};
    FormEntry entry = FindFormEntry(entryName.empty() ? "ctv3_21" : entryName.c_str());
    if (!entry) throw InputError{"no form entry named " + entryName + " (see 'ct600 entries')"};

    const std::string text = readFile(path);
    if (isXmlText(text) && entryName.empty()) {
        // A return tree is recalculated in place; the calculator is its own choice.
        CXMLVar tree("");
        if (!tree.Open(CString(text))) throw InputError{path + ": not well-formed XML"};
        if (!tree.FindChild("Boxes")) throw InputError{path + ": the return has no Boxes node"};
        do_calc(&tree);
        CString rebuilt;
        tree.Save(rebuilt, 1);
        writeOut(outPath, rebuilt);
        if (!reportDir.empty()) copyReport(reportDir);
        return kExitOk;
    }

    CMapStringToString boxes = boxesFromText(text, path);
    CMapStringToString result;
    CString prefix;
    entry(&boxes, &prefix, &result);
    const auto errors = parseErrors(result["validation"]);
    if (json) printJson(boxes, result, errors);
    else printText(boxes, errors, all);
    if (!reportDir.empty()) copyReport(reportDir);
    return kExitOk;
}

int commandMessage(const std::vector<std::string>& args) {
    if (args.size() != 1 || args[0].empty() || args[0][0] == '-') throw InputError{"message takes one file"};
    CMapStringToString boxes = loadBoxes(args[0]);
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    if (!message) throw InputError{"the message template ctv3_16.xml is missing from " + GetCTdir().str()};
    CString text;
    message->Save(text);
    std::printf("%s\n", text.c_str());
    return kExitOk;
}

int commandValidate(const std::vector<std::string>& args) {
    std::string path;
    bool xml = false;
    for (const auto& arg : args) {
        if (arg == "--xml") xml = true;
        else if (arg == "--help") { std::fputs(kUsage, stdout); return kExitOk; }
        else if (!arg.empty() && arg[0] == '-') throw InputError{"unknown option " + arg};
        else if (path.empty()) path = arg;
        else throw InputError{"validate takes one file"};
    }
    if (path.empty()) throw InputError{"validate needs a file"};
    // Without its template no message can be built, and an empty error list
    // would look like a clean return.
    if (!exists(NativePath(JoinPath(GetCTdir(), "ctv3_16", ".xml"))))
        throw InputError{"the message template ctv3_16.xml is missing from " + GetCTdir().str()};
    CMapStringToString boxes = loadBoxes(path);
    CXMLVar errors("Errors");
    do_validate(&boxes, &errors);
    if (xml) {
        CString text;
        errors.Save(text, 1);
        std::printf("%s\n", text.c_str());
    } else {
        for (const CXMLVar* error : errors.children) {
            const CXMLVar* text = error->FindChild("Text");
            std::printf("%s\n", text ? text->value.c_str() : error->value.c_str());
        }
    }
    return errors.GetChildCount() ? kExitErrorsFound : kExitOk;
}

int commandEntries() {
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    for (int i = 0; i < count; ++i) std::printf("%-12s %s\n", entries[i].name, entries[i].calculator);
    const char* const others[][2] = {{"do_calc", "return tree"},       {"do_calc2", "return as XML text"},
                                     {"do_validate", "business rules"}, {"LiabilityCalc", "box map"},
                                     {"AtoT", "date text"}};
    for (const auto& other : others) std::printf("%-12s %s\n", other[0], other[1]);
    return kExitOk;
}

// The calculator's errors are printed with the boxes; the error dialog stays quiet.
void quietErrorSink(const CObList&, const CStringList*, void*) {}

}  // namespace

int main(int argc, char** argv) {
    SetErrorSink(quietErrorSink, nullptr);
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::fputs(kUsage, args.empty() ? stderr : stdout);
        return args.empty() ? kExitBadInput : kExitOk;
    }
    const std::string command = args[0];
    args.erase(args.begin());
    try {
        if (command == "calc") return commandCalc(args);
        if (command == "message") return commandMessage(args);
        if (command == "validate") return commandValidate(args);
        if (command == "entries") return commandEntries();
        throw InputError{"unknown command " + command + " (try 'ct600 --help')"};
    } catch (const InputError& e) {
        std::fprintf(stderr, "ct600: %s\n", e.message.c_str());
        return kExitBadInput;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "ct600: %s\n", e.what());
        return kExitBadInput;
    }
}
