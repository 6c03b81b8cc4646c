// What the benchmark programs share: the example returns as box maps, the
// texts each path and its floor work on, and sinks that keep runs quiet.
#pragma once

#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "common/errors.h"
#include "common/library.h"
#include "envelope/envelope.h"

namespace bench {

inline CMapStringToString boxesOf(const char* path) {
    std::ifstream in(path);
    CMapStringToString boxes;
    const nlohmann::json doc = nlohmann::json::parse(in);
    for (const auto& [key, value] : doc.items()) boxes[key.c_str()] = value.get<std::string>().c_str();
    return boxes;
}

inline CMapStringToString sampleBoxes() { return boxesOf(CT600_SOURCE_DIR "/examples/sample-return.json"); }
inline CMapStringToString fullBoxes() { return boxesOf(CT600_SOURCE_DIR "/examples/full-return.json"); }

inline void quietErrors(const CObList&, const CStringList*, void*) {}
inline void quietLog(const char*, void*) {}

inline void quiet() {
    SetErrorSink(quietErrors, nullptr);
    SetLogSink(quietLog, nullptr);
}

// A return tree whose Boxes node holds these boxes, as XML text.
inline CString returnText(const CMapStringToString& boxes) {
    CXMLVar tree("Return");
    CXMLVar* node = tree.GetChild("Boxes");
    for (const auto& [key, value] : boxes.items()) node->GetChild(key)->value = value;
    CString text;
    tree.Save(text, 1);
    return text;
}

// The full return as the zxml text do_calc2 takes.
inline CString fullReturnText() {
    CMapStringToString full = fullBoxes();
    full["form"] = "ctv3";
    return returnText(full);
}

// The message validation builds from the full return, as text.
inline CString fullMessageText() {
    CMapStringToString boxes = fullBoxes();
    const std::unique_ptr<CXMLVar> message(quick_govtalk(&boxes, "ctv3_16"));
    CString text;
    message->Save(text, 1);
    return text;
}

}  // namespace bench
