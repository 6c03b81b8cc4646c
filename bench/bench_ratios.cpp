// Each path against its floor, measured in the same run: every iteration times
// the path and then its floor on this thread's processor clock, so whatever
// else the machine is doing weighs on both alike. The counters give the two
// mean times in microseconds and their ratio.
//   ctv3_21 on the full return      vs writing its two report files alone
//   do_validate on the full return  vs a plain expat parse of the same message
//   do_calc2 round trip             vs the project's tree opening and saving the same XML
#include <benchmark/benchmark.h>

#include <expat.h>

#include <ctime>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "bench_support.h"
#include "common/errors.h"
#include "common/library.h"
#include "common/outfile.h"
#include "entry/exports.h"
#include "envelope/envelope.h"

namespace {
using namespace bench;

std::string readFile(const CString& path) {
    std::ifstream in(path.c_str(), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Runs path and floor in turn each iteration and reports both and their ratio.
template <typename Path, typename Floor>
void versus(benchmark::State& state, Path path, Floor floor) {
    double pathTime = 0, floorTime = 0;
    for (auto _ : state) {
        const double start = threadSeconds();
        path();
        const double middle = threadSeconds();
        floor();
        floorTime += threadSeconds() - middle;
        pathTime += middle - start;
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["path_us"] = pathTime / n * 1e6;
    state.counters["floor_us"] = floorTime / n * 1e6;
    state.counters["ratio"] = floorTime > 0 ? pathTime / floorTime : 0;
}

void BM_ratio_ctv3_21_vs_report_files(benchmark::State& state) {
    quiet();
    CMapStringToString boxes = fullBoxes();
    CString prefix;
    // The floor writes what the run writes: the report files of this very return.
    {
        CMapStringToString result;
        ctv3_21(&boxes, &prefix, &result);
    }
    const CString folder = GetTempDir();
    const std::string html = readFile(folder + "/calc.htm"), xml = readFile(folder + "/ctcharge.xml");
    versus(
        state,
        [&] {
            CMapStringToString result;
            ctv3_21(&boxes, &prefix, &result);
            benchmark::DoNotOptimize(result);
        },
        [&] {
            ReplaceFile(folder + "/calc.htm") << html;
            ReplaceFile(folder + "/ctcharge.xml") << xml;
        });
}
BENCHMARK(BM_ratio_ctv3_21_vs_report_files);

void BM_ratio_do_validate_vs_expat_parse(benchmark::State& state) {
    SetLogSink(quietLog, nullptr);
    CMapStringToString boxes = fullBoxes();
    const CString text = fullMessageText();
    versus(
        state,
        [&] {
            CXMLVar errors("Errors");
            do_validate(&boxes, &errors);
            benchmark::DoNotOptimize(errors);
        },
        [&] {
            XML_Parser parser = XML_ParserCreate(nullptr);
            const auto status = XML_Parse(parser, text.c_str(), text.GetLength(), 1);
            benchmark::DoNotOptimize(status);
            XML_ParserFree(parser);
        });
}
BENCHMARK(BM_ratio_do_validate_vs_expat_parse);

void BM_ratio_do_calc2_vs_open_save(benchmark::State& state) {
    quiet();
    const CString text = fullReturnText();
    versus(
        state,
        [&] {
            CMapStringToString map;
            map["zxml"] = text;
            CString prefix;
            do_calc2(&map, &prefix, &map);
            benchmark::DoNotOptimize(map);
        },
        [&] {
            CXMLVar copy("");
            copy.Open(text);
            CString out;
            copy.Save(out, 1);
            benchmark::DoNotOptimize(out);
        });
}
BENCHMARK(BM_ratio_do_calc2_vs_open_save);
}  // namespace

BENCHMARK_MAIN();
