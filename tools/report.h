// 'ct600 report': the worked report of a recalculation as one HTML page.
#pragma once

#include <string>
#include <vector>

#include "cli.h"

namespace cli {

// The page for a run: the return's header, its figures by section, the
// worked computation (calc.htm as the liability driver wrote it, empty when
// the run wrote none), the calculator's errors and validation's. Standalone: styles inline,
// nothing fetched, UTF-8.
// What validation said of the return: its lines (UTF-8), or why it could not run.
struct Validation {
    std::vector<std::string> lines;
    std::string problem;
};
std::string reportPage(const CalcRun& run, const std::string& workedHtml, const std::string& source,
                       const Validation& validation = {});

// Recalculates the return in path in a temporary folder of its own and gives
// the page.
std::string buildReport(const std::string& path, const CalcOptions& options);

}  // namespace cli
