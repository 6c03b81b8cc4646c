// Recalculation and tree round-trip speed on the sample return.
#include <benchmark/benchmark.h>

#include <expat.h>

#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>

#include "bench_support.h"
#include "common/errors.h"
#include "common/library.h"
#include "common/outfile.h"
#include "entry/exports.h"
#include "envelope/envelope.h"

namespace {
using namespace bench;

// One recalculation of a return through a form entry, worked report included,
// as a suite runs it while the user types: the same box map again and again.
void recalculate(benchmark::State& state, FormEntry entry, const CMapStringToString& sample) {
    quiet();
    CMapStringToString boxes = sample;
    CString prefix;
    for (auto _ : state) {
        CMapStringToString result;
        entry(&boxes, &prefix, &result);
        benchmark::DoNotOptimize(result);
    }
}
void BM_ctv3_16_sample(benchmark::State& state) { recalculate(state, ctv3_16, sampleBoxes()); }
void BM_ctv3_21_full(benchmark::State& state) { recalculate(state, ctv3_21, fullBoxes()); }
BENCHMARK(BM_ctv3_16_sample);
BENCHMARK(BM_ctv3_21_full);

// The floor under every recalculation: replacing the two worked report files
// (texts of the sizes the full return gives), nothing else.
void BM_report_files_only(benchmark::State& state) {
    const std::string html(1600, 'h'), xml(1400, 'x');
    const CString folder = GetTempDir();
    for (auto _ : state) {
        ReplaceFile(folder + "/calc.htm") << html;
        ReplaceFile(folder + "/ctcharge.xml") << xml;
    }
}
BENCHMARK(BM_report_files_only);

void BM_do_validate_full(benchmark::State& state) {
    SetLogSink(quietLog, nullptr);
    CMapStringToString boxes = fullBoxes();
    for (auto _ : state) {
        CXMLVar errors("Errors");
        do_validate(&boxes, &errors);
        benchmark::DoNotOptimize(errors);
    }
}
BENCHMARK(BM_do_validate_full);

// The floor for validation: expat reading the same message and doing nothing.
void BM_expat_parse_full_message(benchmark::State& state) {
    SetLogSink(quietLog, nullptr);
    const CString text = fullMessageText();
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        const auto status = XML_Parse(parser, text.c_str(), text.GetLength(), 1);
        benchmark::DoNotOptimize(status);
        XML_ParserFree(parser);
    }
    state.SetBytesProcessed(state.iterations() * text.GetLength());
}
BENCHMARK(BM_expat_parse_full_message);

void BM_xml_open_save(benchmark::State& state) {
    const CString text = returnText(sampleBoxes());
    for (auto _ : state) {
        CXMLVar copy("");
        copy.Open(text);
        CString out;
        copy.Save(out, 1);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_xml_open_save);

// The tree round trip a suite makes: the full return as zxml text, read,
// recalculated through the third-generation entry and written back.
void BM_do_calc2_full(benchmark::State& state) {
    quiet();
    const CString text = fullReturnText();
    for (auto _ : state) {
        CMapStringToString map;
        map["zxml"] = text;
        CString prefix;
        do_calc2(&map, &prefix, &map);
        benchmark::DoNotOptimize(map);
    }
}
BENCHMARK(BM_do_calc2_full);
}  // namespace

BENCHMARK_MAIN();
