// do_calc2 on arbitrary text under "zxml": the return comes back as a
// document that reads cleanly, with its Boxes node, and the call answers 1.
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/library.h"
#include "common/xmlvar.h"
#include "entry/exports.h"
#include "fuzz_support.h"

using ct600fuzz::Require;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ct600fuzz::PrepareEnvironment();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString text(std::string(reinterpret_cast<const char*>(data), size));
    CMapStringToString boxes;
    boxes["zxml"] = text;

    // The input's own boxes, as the recalculation flattens them: whatever
    // Open kept of the text, read with the prefix attribute blanked.
    CXMLVar input;
    input.Open(text);
    input.SetAttr("prefix", "");
    CMapStringToString inputBoxes;
    CStringArray names;
    SubformFromXML(&input, inputBoxes, names);

    CMapStringToString result;
    CString prefix;
    Require(do_calc2(&boxes, &prefix, &result) == 1, "do_calc2 answers 1");

    CXMLVar back;
    Require(back.Open(result["zxml"]) == 1, "the recalculated return reads cleanly");
    Require(back.FindChild("Boxes") != nullptr, "the recalculated return has its Boxes");
    // The error text travels as the error document, never as a box.
    if (!inputBoxes.PLookup("validation"))
        for (const CXMLVar* box : back.FindChild("Boxes")->children)
            Require(box->name != "validation", "no box is named validation");

    // The same map in and out, as a host may pass it.
    Require(do_calc2(&boxes, &prefix, &boxes) == 1, "do_calc2 answers 1 in place");
    return 0;
}
