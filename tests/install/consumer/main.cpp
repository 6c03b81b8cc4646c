// A host of the installed library: recalculates a third-generation return from
// a box map, validates it, and round-trips a return held as XML text. Prints
// one line per failed check and exits non-zero if any failed.
#include <ct600/ct600.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

int failures = 0;

void check(bool ok, const std::string& what) {
    if (ok) return;
    ++failures;
    std::printf("FAILED: %s\n", what.c_str());
}

void checkBox(CMapStringToString& boxes, const char* key, const char* expected) {
    CString value;
    boxes.Lookup(key, value);
    check(value == expected, std::string(key) + " is \"" + value.c_str() + "\", expected \"" + expected + "\"");
}

bool fileExists(const CString& path) {
    std::FILE* file = std::fopen(path, "rb");
    if (file) std::fclose(file);
    return file != nullptr;
}

}  // namespace

int main() {
    const char* temp = std::getenv("CT600_TEMP_DIR");
    if (!temp || !*temp) {
        std::printf("FAILED: CT600_TEMP_DIR is not set\n");
        return 2;
    }

    std::string log;
    ct600lib_set_log_sink([](const char* line, void* context) { *static_cast<std::string*>(context) += line; }, &log);

    // 100000 profit less 40000 losses; an override on Q220 survives; 19% in FY2020.
    CMapStringToString boxes, result;
    boxes["from"] = "01/04/2020";
    boxes["to"] = "31/03/2021";
    boxes["Q155"] = "100000";
    boxes["Q160"] = "40000";
    boxes["Q220"] = "2500.00!";
    CString prefix;
    check(ctv3_21(&boxes, &prefix, &result) == 1, "ctv3_21 returns 1");
    checkBox(boxes, "Q165", "60000.000000");
    checkBox(boxes, "Q220", "2500.00!");
    checkBox(boxes, "Q315", "62500.000000");
    checkBox(boxes, "Q430", "11875.000000");
    check(result.PLookup("validation") != nullptr, "the result map holds validation");
    check(log.find("ctv3_21") != std::string::npos, "the log sink got the entry's line");
    check(fileExists(CString(temp) + "/calc.htm"), "calc.htm is in the temporary folder");

    // No company name: validation reports it, each error with its text.
    CXMLVar errors("Errors");
    check(do_validate(&boxes, &errors) == 1, "do_validate returns 1");
    int withText = 0;
    bool nameMissing = false;
    for (CXMLVar* error : errors.children) {
        const CXMLVar* text = error->FindChild("Text");
        if (error->name == "Error" && text) ++withText;
        if (text && text->value.Find("CompanyName") >= 0) nameMissing = true;
    }
    check(errors.GetChildCount() > 0 && withText == errors.GetChildCount(), "every Error has a Text");
    check(nameMissing, "the missing company name is reported");
    check(fileExists(CString(temp) + "/t.xml"), "t.xml is in the temporary folder");

    // The return without the override, as XML text: do_calc2 runs ctv3_16 and
    // rebuilds its Boxes; 19% of 60000.
    CMapStringToString io;
    io["zxml"] =
        "<Return><Boxes><form>CTV3</form><from>01/04/2020</from><to>31/03/2021</to>"
        "<Q155>100000</Q155><Q160>40000</Q160></Boxes></Return>";
    check(do_calc2(&io, nullptr, &io) == 1, "do_calc2 returns 1");
    CXMLVar tree;
    check(tree.Open(io["zxml"]) != 0, "do_calc2 gives readable XML");
    CXMLVar* q430 = tree.FromPath("Boxes/Q430");
    check(q430->value == "11400.000000", std::string("Boxes/Q430 is \"") + q430->value.c_str() + "\"");

    check(AtoT("05/04/16").Format("%d/%m/%Y") == "05/04/2016", "AtoT widens a two-digit year");

    ct600lib_set_log_sink(nullptr, nullptr);
    std::printf("ct600 consumer: %s, %d errors reported\n", failures ? "FAILED" : "ok", errors.GetChildCount());
    return failures ? 1 : 0;
}
