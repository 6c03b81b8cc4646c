// ct600: the command-line host. Runs a form entry over a box map (JSON) or a
// return XML, and prints the recalculated boxes and the calculator's errors;
// validates returns; writes the worked report as a page.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "cli.h"
#include "common/errors.h"
#include "common/library.h"
#include "entry/exports.h"
#include "envelope/envelope.h"
#include "report.h"

using namespace cli;

namespace {

const char* const kUsage =
    "usage: ct600 <command> [options] [FILE...]\n"
    "\n"
    "Recalculates and validates UK company tax returns (CT600 and its\n"
    "supplementary pages). A return is a box map, a JSON object of box key to\n"
    "text such as {\"Q155\": \"100000\", \"from\": \"01/04/2015\"}, or a return XML\n"
    "with a Boxes node.\n"
    "\n"
    "commands:\n"
    "  calc [--entry NAME] [--json] [--all] [--report DIR] [-o OUT] FILE\n"
    "        Recalculate a return: the tax chargeable, the boxes and the\n"
    "        calculator's errors, or the rebuilt return XML.\n"
    "  validate [--xml] FILE\n"
    "        Print every error HMRC's service would reject the return for.\n"
    "  report [--entry NAME] [-o OUT] FILE\n"
    "        Write the recalculated return and its worked computation as one\n"
    "        HTML page.\n"
    "  message FILE\n"
    "        Print the GovTalkMessage that validation builds from a return.\n"
    "  entries\n"
    "        List every form entry with the calculator it runs.\n"
    "\n"
    "'ct600 COMMAND --help' tells each command's options.\n"
    "\n"
    "exit status: 0 done (validate: every return clean), 1 errors found\n"
    "(validate), 2 unreadable or malformed input, a missing template, or bad\n"
    "usage.\n";

const char* const kHelpOption =
    "  --help\n"
    "        Show this text.\n";

const char* const kCalcHelp =
    "usage: ct600 calc [--entry NAME] [--json] [--all] [--report DIR] [-o OUT] FILE\n"
    "\n"
    "Recalculate a return. A box map (JSON, or a return XML with --entry) runs\n"
    "the form entry NAME and prints the tax chargeable, the boxes that hold\n"
    "something and the errors the calculator found. A return XML is\n"
    "recalculated as a whole (the return's form chooses the calculator) and the\n"
    "rebuilt return is written to OUT.\n"
    "\n"
    "options:\n"
    "  --entry NAME\n"
    "        The form entry to run (default ctv3_21; see 'ct600 entries').\n"
    "  --json\n"
    "        Print one JSON object: boxes, errors, validation.\n"
    "  --all\n"
    "        List every box, the empty ones too.\n"
    "  --report DIR\n"
    "        Copy the worked report of the computation (calc.htm, ctcharge.xml)\n"
    "        to DIR.\n"
    "  -o OUT\n"
    "        Where the rebuilt return XML goes (default: standard output).\n"
    "%s"
    "\n"
    "exit status: 0 done, 2 unreadable or malformed input, or bad usage.\n";

const char* const kValidateHelp =
    "usage: ct600 validate [--xml] FILE\n"
    "\n"
    "Build the message the return in FILE (JSON or return XML) would be filed\n"
    "in, and print every error HMRC's service would reject it for, one a line\n"
    "as code:message (schema errors as their text), rule errors first.\n"
    "\n"
    "options:\n"
    "  --xml\n"
    "        Print the Errors document instead.\n"
    "%s"
    "\n"
    "exit status: 0 clean, 1 errors found, 2 the return unreadable, the\n"
    "message template missing, or bad usage.\n";

const char* const kReportHelp =
    "usage: ct600 report [--entry NAME] [-o OUT] FILE\n"
    "\n"
    "Recalculate the return in FILE as 'ct600 calc' does and write the result as\n"
    "one standalone HTML page: the company, its tax reference and period; the\n"
    "tax chargeable; the boxes that hold something, by section of the form,\n"
    "with their numbers and meanings; the worked computation of the tax by\n"
    "financial year (the liability engine's calc.htm); and the calculator's\n"
    "errors. The page needs nothing else to display or print.\n"
    "\n"
    "options:\n"
    "  --entry NAME\n"
    "        The form entry to run (default ctv3_21; a return XML is then read as\n"
    "        a box map).\n"
    "  -o OUT\n"
    "        Write the page to OUT (default: standard output).\n"
    "%s"
    "\n"
    "exit status: 0 done, 2 unreadable or malformed input, or bad usage.\n";

const char* const kMessageHelp =
    "usage: ct600 message FILE\n"
    "\n"
    "Print the GovTalkMessage that validation builds from the box map in FILE\n"
    "(JSON or return XML): the message template ctv3_16.xml filled from the\n"
    "boxes, with the attachments.\n"
    "\n"
    "options:\n"
    "%s"
    "\n"
    "exit status: 0 done, 2 unreadable or malformed input, a missing template,\n"
    "or bad usage.\n";

const char* const kEntriesHelp =
    "usage: ct600 entries\n"
    "\n"
    "List every form entry of the library with the calculator it runs, then the\n"
    "other exports.\n"
    "\n"
    "options:\n"
    "%s"
    "\n"
    "exit status: 0.\n";

int showHelp(const char* format) {
    std::printf(format, kHelpOption);
    return kExitOk;
}

// ---------------------------------------------------------------- options

struct Args {
    explicit Args(const std::vector<std::string>& args) : args_(args) {}
    bool next() { return ++at_ < args_.size(); }
    const std::string& current() const { return args_[at_]; }
    std::string value() {
        const std::string option = args_[at_];
        if (at_ + 1 >= args_.size()) throw InputError{option + " needs a value"};
        return args_[++at_];
    }

private:
    const std::vector<std::string>& args_;
    std::size_t at_ = static_cast<std::size_t>(-1);
};

bool isOption(const std::string& arg) { return arg.size() > 1 && arg[0] == '-'; }

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
    out.flush();
    if (!out) throw InputError{"cannot write " + path};
}

void writeOut(const std::string& path, const CString& text) {
    if (path.empty() || path == "-") {
        std::fwrite(text.c_str(), 1, static_cast<std::size_t>(text.GetLength()), stdout);
        std::fputc('\n', stdout);
        return;
    }
    writeFile(path, text.str() + "\n");
}

// ---------------------------------------------------------------- calc

int commandCalc(const std::vector<std::string>& argv) {
    CalcOptions options;
    std::string reportDir, outPath;
    std::vector<std::string> paths;
    for (Args args(argv); args.next();) {
        const std::string& a = args.current();
        if (a == "--entry") options.entryName = args.value();
        else if (a == "--report") reportDir = args.value();
        else if (a == "-o") outPath = args.value();
        else if (a == "--json") options.json = true;
        else if (a == "--all") options.all = true;
        else if (a == "--help") return showHelp(kCalcHelp);
        else if (isOption(a)) throw InputError{"unknown option " + a + " (see 'ct600 calc --help')"};
        else if (paths.empty()) paths.push_back(a);
        else throw InputError{"calc takes one file"};
    }
    if (paths.empty()) throw InputError{"calc needs a file"};
    if (!options.entryName.empty() && !FindFormEntry(options.entryName.c_str()))
        throw InputError{"no form entry named " + options.entryName + " (see 'ct600 entries')"};

    if (!reportDir.empty()) removeStaleReport();
    const CalcRun run = runCalc(paths[0], options);
    if (run.wholeReturn) writeOut(outPath, run.rebuilt);
    else std::fputs(options.json ? calcJson(run, false).c_str() : calcText(run, options.all).c_str(), stdout);
    if (!reportDir.empty()) copyReport(reportDir);
    return kExitOk;
}

// ---------------------------------------------------------------- validate

int commandValidate(const std::vector<std::string>& argv) {
    bool xml = false;
    std::vector<std::string> paths;
    for (Args args(argv); args.next();) {
        const std::string& a = args.current();
        if (a == "--xml") xml = true;
        else if (a == "--help") return showHelp(kValidateHelp);
        else if (isOption(a)) throw InputError{"unknown option " + a + " (see 'ct600 validate --help')"};
        else if (paths.empty()) paths.push_back(a);
        else throw InputError{"validate takes one file"};
    }
    if (paths.empty()) throw InputError{"validate needs a file"};
    requireTemplate();

    const ValidateRun run = runValidate(paths[0], xml);
    std::fputs(run.text.c_str(), stdout);
    return run.errorsFound ? kExitErrorsFound : kExitOk;
}

// ---------------------------------------------------------------- the others

int commandReport(const std::vector<std::string>& argv) {
    CalcOptions options;
    std::string path, outPath;
    for (Args args(argv); args.next();) {
        const std::string& a = args.current();
        if (a == "--entry") options.entryName = args.value();
        else if (a == "-o") outPath = args.value();
        else if (a == "--help") return showHelp(kReportHelp);
        else if (isOption(a)) throw InputError{"unknown option " + a + " (see 'ct600 report --help')"};
        else if (path.empty()) path = a;
        else throw InputError{"report takes one file"};
    }
    if (path.empty()) throw InputError{"report needs a file"};
    const std::string page = buildReport(path, options);
    if (outPath.empty() || outPath == "-") std::fputs(page.c_str(), stdout);
    else writeFile(outPath, page);
    return kExitOk;
}

int commandMessage(const std::vector<std::string>& args) {
    if (args.size() == 1 && args[0] == "--help") return showHelp(kMessageHelp);
    if (args.size() != 1 || isOption(args[0])) throw InputError{"message takes one file"};
    CMapStringToString boxes = loadBoxes(args[0]);
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    if (!message) throw InputError{"the message template ctv3_16.xml is missing from " + GetCTdir().str()};
    CString text;
    message->Save(text);
    std::printf("%s\n", text.c_str());
    return kExitOk;
}

int commandEntries(const std::vector<std::string>& args) {
    if (args.size() == 1 && args[0] == "--help") return showHelp(kEntriesHelp);
    if (!args.empty()) throw InputError{"entries takes no argument"};
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    for (int i = 0; i < count; ++i) std::printf("%-12s %s\n", entries[i].name, entries[i].calculator);
    const char* const others[][2] = {{"do_calc", "return tree"},       {"do_calc2", "return as XML text"},
                                     {"do_validate", "business rules"}, {"LiabilityCalc", "box map"},
                                     {"AtoT", "date text"}};
    for (const auto& other : others) std::printf("%-12s %s\n", other[0], other[1]);
    return kExitOk;
}

// The calculator's errors are printed with the boxes; the error dialog stays quiet.
void quietErrorSink(const CObList&, const CStringList*, void*) {}

}  // namespace

int main(int argc, char** argv) {
    SetErrorSink(quietErrorSink, nullptr);
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::fputs(kUsage, args.empty() ? stderr : stdout);
        return args.empty() ? kExitBadInput : kExitOk;
    }
    const std::string command = args[0];
    args.erase(args.begin());
    try {
        if (command == "calc") return commandCalc(args);
        if (command == "validate") return commandValidate(args);
        if (command == "report") return commandReport(args);
        if (command == "message") return commandMessage(args);
        if (command == "entries") return commandEntries(args);
        throw InputError{"unknown command " + command + " (try 'ct600 --help')"};
    } catch (const InputError& e) {
        std::fprintf(stderr, "ct600: %s\n", e.message.c_str());
        return kExitBadInput;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "ct600: %s\n", e.what());
        return kExitBadInput;
    }
}
