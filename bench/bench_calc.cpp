// Recalculation and tree round-trip speed on the sample return.
#include <benchmark/benchmark.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"

namespace {
CMapStringToString sampleBoxes() {
    std::ifstream in(CT600_SOURCE_DIR "/examples/sample-return.json");
    CMapStringToString boxes;
    const nlohmann::json doc = nlohmann::json::parse(in);
    for (const auto& [key, value] : doc.items())
        boxes[key.c_str()] = value.get<std::string>().c_str();
    return boxes;
}

void quiet(const CObList&, const CStringList*, void*) {}
void quietLog(const char*, void*) {}

void BM_ctv3_21(benchmark::State& state) {
    SetErrorSink(quiet, nullptr);
    SetLogSink(quietLog, nullptr);
    const CMapStringToString sample = sampleBoxes();
    for (auto _ : state) {
        CMapStringToString boxes = sample, result;
        CString prefix;
        ctv3_21(&boxes, &prefix, &result);
        benchmark::DoNotOptimize(boxes);
    }
}
BENCHMARK(BM_ctv3_21);

void BM_xml_open_save(benchmark::State& state) {
    CXMLVar tree("Return");
    CXMLVar* boxes = tree.GetChild("Boxes");
    const CMapStringToString sample = sampleBoxes();
    for (const auto& [key, value] : sample.items()) boxes->GetChild(key)->value = value;
    CString text;
    tree.Save(text, 1);
    for (auto _ : state) {
        CXMLVar copy("");
        copy.Open(text);
        CString out;
        copy.Save(out, 1);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_xml_open_save);
}  // namespace

BENCHMARK_MAIN();
