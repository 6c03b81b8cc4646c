// do_validate on box maps decoded from the fuzzer's bytes: every failure is
// an Error with its Text, appended behind what the host's node held.
#include <cstddef>
#include <cstdint>

#include "common/xmlvar.h"
#include "entry/exports.h"
#include "fuzz_support.h"

using ct600fuzz::Require;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ct600fuzz::PrepareEnvironment();
    ct600fuzz::BoxVocabulary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ct600fuzz::DecodedBoxes decoded = ct600fuzz::DecodeBoxMap(data, size);
    const CMapStringToString before = decoded.boxes;

    CXMLVar errors("Errors");
    CXMLVar* held = errors.AddChild("Held", "kept");
    Require(do_validate(&decoded.boxes, &errors) == 1, "do_validate answers 1");
    Require(!errors.children.empty() && errors.children.front() == held, "the host's node keeps what it held");
    for (std::size_t i = 1; i < errors.children.size(); ++i) {
        const CXMLVar* error = errors.children[i];
        Require(error->name == "Error", "each failure is an Error");
        Require(error->FindChild("Text") != nullptr, "each Error has its Text");
    }
    for (const auto& [key, value] : before.items()) {
        // By the map's own lookup: a key may hold NUL bytes.
        const auto now = decoded.boxes.items().find(key);
        Require(now != decoded.boxes.items().end() && now->second == value, "validation changes no box");
    }
    return 0;
}
