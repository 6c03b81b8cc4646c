// ctv3_21 on box maps decoded from the fuzzer's bytes: no box is lost, an
// override that is not nought keeps its text unless the liability driver
// owns the box, and the error text reads as XML.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/basics.h"
#include "common/xmlvar.h"
#include "entry/exports.h"
#include "fuzz_support.h"

using ct600fuzz::Require;

namespace {

// Boxes the liability driver fills, replacing even an override.
bool driverBox(std::string_view key) {
    for (std::string_view owned : {"Q330", "Q335", "Q340", "Q345", "Q380", "Q385", "Q390", "Q70", "Q42", "Q435",
                                   "Q66", "Q68", "Q69", "xml/CT/CTchargeable"})
        if (key == owned) return true;
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ct600fuzz::PrepareEnvironment();
    ct600fuzz::BoxVocabulary();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ct600fuzz::DecodedBoxes decoded = ct600fuzz::DecodeBoxMap(data, size);
    const CMapStringToString before = decoded.boxes;
    CMapStringToString result;
    Require(ctv3_21(&decoded.boxes, &decoded.prefix, &result) == 1, "ctv3_21 answers 1");

    const std::string_view prefix = decoded.prefix.view();
    for (const auto& [key, value] : before.items()) {
        // By the map's own lookup: a key may hold NUL bytes.
        const auto found = decoded.boxes.items().find(key);
        Require(found != decoded.boxes.items().end(), "no box is lost");
        const CString* now = &found->second;
        const std::string_view k = key.view();
        const bool override = !value.IsEmpty() && value[value.GetLength() - 1] == '!';
        if (override && myatof(value) != 0 && !(k.starts_with(prefix) && driverBox(k.substr(prefix.size()))))
            Require(*now == value, "an override keeps its text");
    }
    const CString validation = result["validation"];
    if (!validation.IsEmpty()) {
        CXMLVar errors;
        Require(errors.Open(validation) == 1, "the error text reads as XML");
    }
    return 0;
}
