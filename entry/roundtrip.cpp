// do_calc and do_calc2: recalculate a return held as a tree (or as XML text)
// and rebuild its Boxes node from the maps.
#include <cstdlib>

#include "common/library.h"
#include "entry/exports.h"
#include "entry/module.h"

namespace {
// A pure nought (0, 0.000000, empty text) is never stored: such a box drops
// out of the return. "zero" and overrides such as "0.00!" are kept.
bool isPureNought(const CString& text) {
    char* end = nullptr;
    double number = std::strtod(text, &end);
    return number == 0 && end && *end == '\0';
}

void writeBoxes(CXMLVar* boxesNode, const CMapStringToString& map) {
    for (const auto& [key, text] : map.items()) {
        if (isPureNought(text)) continue;
        boxesNode->GetChild(key)->value = text;
    }
}

FormEntry chooseEntry(const CString& tt, const CString& type, const CString& nodeName) {
    if (tt == "ctv3") return &ctv3_16;  // its frame writes the log line
    if (type.IsEmpty() && nodeName == "TF") return &_cta_04;
    if (type == "CTA") return &_cta_04;
    return nullptr;
}
}  // namespace

void do_calc(CXMLVar* tree) {
    if (!tree) return;
    CMapStringToString input, result;
    CString prefix;
    CStringArray names;

    CXMLVar* oldBoxes = tree->GetChild("Boxes");
    const CString savedPrefix = tree->GetAttr("prefix");
    tree->SetAttr("prefix", "");
    SubformFromXML(tree, input, names);
    tree->SetAttr("prefix", savedPrefix);

    const CString type = tree->GetAttr("type");
    const CString tt = ToLower(input["form"].Left(4));
    DoLogF("tt=%s", tt.c_str());

    if (FormEntry entry = chooseEntry(tt, type, tree->name)) entry(&input, &prefix, &result);

    tree->DeleteChild(oldBoxes);
    CXMLVar* boxes = tree->AddChild(new CXMLVar("Boxes", ""), nullptr);

    const CString validation = result["validation"];
    if (!validation.IsEmpty()) {
        auto* errors = new CXMLVar("");
        errors->Open(validation);
        if (errors->name.IsEmpty()) {
            delete errors;  // unreadable error text: keep the former document
        } else {
            if (CXMLVar* former = tree->FindChild(errors->name)) tree->DeleteChild(former);
            tree->AddChild(errors, nullptr);
        }
    }
    result.RemoveKey("validation");

    writeBoxes(boxes, input);
    writeBoxes(boxes, result);
}

int do_calc2(CMapStringToString* boxes, CString* prefix, CMapStringToString* result) {
    CT600_MANAGE_STATE();
    (void)prefix;
    CMapStringToString local;
    if (!boxes) boxes = &local;
    if (!result) result = boxes;
    CXMLVar tree("");
    tree.Open((*boxes)["zxml"]);
    do_calc(&tree);
    CString text;
    tree.Save(text, 1);
    (*result)["zxml"] = text;
    return 1;
}
