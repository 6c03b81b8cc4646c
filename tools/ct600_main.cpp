// ct600: the command-line host. Runs a form entry over a box map (JSON) or a
// return XML, and prints the recalculated boxes and the calculator's errors;
// validates returns; writes the worked report as a page. calc and validate
// take many returns at once and share them out among worker processes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "batch.h"
#include "cli.h"
#include "common/current_law.h"
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
    "  calc [--entry NAME] [--json] [--all] [--report DIR] [-o OUT] FILE...\n"
    "        Recalculate returns: the tax chargeable, the boxes and the\n"
    "        calculator's errors, or the rebuilt return XML.\n"
    "  validate [--xml] FILE...\n"
    "        Print every error HMRC's service would reject each return for.\n"
    "  report [--entry NAME] [-o OUT] FILE\n"
    "        Write the recalculated return and its worked computation as one\n"
    "        HTML page.\n"
    "  message FILE\n"
    "        Print the GovTalkMessage that validation builds from a return.\n"
    "  entries\n"
    "        List every form entry with the calculator it runs.\n"
    "\n"
    "calc, validate, message and report take --rates current: charge the\n"
    "returns by current law (from FY2023 the 25% main rate, the 19% small\n"
    "profits rate and marginal relief) unless a return's own box 'rates' says\n"
    "otherwise; --rates default keeps the library's own ladder (19% from\n"
    "FY2017 on). The environment variable CT600_RATES does the same.\n"
    "\n"
    "calc and validate take several files, or folders (their .json and .xml\n"
    "files at any depth), and then run them in parallel: --jobs N worker\n"
    "processes (default: one per processor), --timeout SECONDS a return at most.\n"
    "'ct600 COMMAND --help' tells each command's options.\n"
    "\n"
    "exit status: 0 done (validate: every return clean), 1 errors found\n"
    "(validate; calc on several returns), 2 unreadable or malformed input, a\n"
    "missing template, or bad usage.\n";

const char* const kBatchOptions =
    "  --jobs N, -j N\n"
    "        With several returns: the number of worker processes (default:\n"
    "        one per processor).\n"
    "  --timeout SECONDS\n"
    "        With several returns: a worker still on one return after this long\n"
    "        is stopped and the return reported; the others go on (default: no\n"
    "        limit).\n"
    "  --help\n"
    "        Show this text.\n";

const char* const kBatchNotes =
    "Several files, or a folder, make a batch. A folder stands for the .json\n"
    "and .xml files below it, at any depth, in the order of their paths; names\n"
    "starting with a dot are skipped. A file named on the command line is taken\n"
    "whatever its name. The returns are shared out among worker processes,\n"
    "each with a temporary folder of its own (removed at the end), and the\n"
    "output comes in the order of the files whatever the number of workers.\n"
    "While standard error is a terminal a progress line is shown; at the end\n"
    "standard error gets the summary: the number of files, how many were\n"
    "clean, with errors, unreadable, and lost with their worker, if any.\n"
    "\n";

const char* const kCalcHelp =
    "usage: ct600 calc [--entry NAME] [--json] [--all] [--report DIR] [-o OUT] FILE\n"
    "       ct600 calc [--entry NAME] [--json] [--all] [--report DIR] [-o DIR]\n"
    "                  [--jobs N] [--timeout SECONDS] FILE|FOLDER...\n"
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
    "        to DIR; in a batch to DIR/NAME/ for each return NAME.\n"
    "  -o OUT\n"
    "        Where the rebuilt return XML goes (default: standard output). In a\n"
    "        batch OUT is a folder that gets one file per return, named as the\n"
    "        return is below its folder: NAME.xml for a rebuilt return XML,\n"
    "        NAME.json with --json, NAME.txt otherwise.\n"
    "%s"
    "\n"
    "%s"
    "In a batch each return gives one line on standard output,\n"
    "  PATH: tax chargeable 36199.21, tax payable 36199.21\n"
    "followed by a line 'PATH: FIELD: TEXT' for each error the calculator\n"
    "found; with --json and no -o, one JSON object a line, with its \"file\".\n"
    "\n"
    "exit status: 0 done; 1 a batch in which the calculator found errors in a\n"
    "return; 2 unreadable or malformed input, or bad usage.\n";

const char* const kValidateHelp =
    "usage: ct600 validate [--xml] FILE\n"
    "       ct600 validate [--xml] [--jobs N] [--timeout SECONDS] FILE|FOLDER...\n"
    "\n"
    "Build the message the return in FILE (JSON or return XML) would be filed\n"
    "in, and print every error HMRC's service would reject it for, one a line\n"
    "as code:message (schema errors as their text), rule errors first.\n"
    "\n"
    "options:\n"
    "  --xml\n"
    "        Print the Errors document instead. In a batch, one document\n"
    "        <Batch> holds an Errors element per return, its path in the\n"
    "        attribute file (and the problem in unreadable, for a return that\n"
    "        could not be read).\n"
    "%s"
    "\n"
    "%s"
    "In a batch each error line is prefixed by the return's path and ': '.\n"
    "\n"
    "exit status: 0 every return clean, 1 errors found, 2 a return unreadable,\n"
    "the message template missing, or bad usage.\n";

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
    "  --help\n"
    "        Show this text.\n"
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
    "  --help\n"
    "        Show this text.\n"
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
    "  --help\n"
    "        Show this text.\n"
    "\n"
    "exit status: 0.\n";

int showHelp(const char* format) {
    std::printf(format, kBatchOptions, kBatchNotes);
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

int numberOption(const std::string& option, const std::string& text, int low, int high) {
    char* end = nullptr;
    const long n = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || n < low || n > high)
        throw InputError{option + " takes a whole number from " + std::to_string(low) + " to " + std::to_string(high)};
    return static_cast<int>(n);
}

struct BatchOptions {
    int jobs = 0;
    unsigned timeout = 0;
    // True when args[at] was one of them.
    bool take(Args& args) {
        const std::string& a = args.current();
        if (a == "--jobs" || a == "-j") jobs = numberOption("--jobs", args.value(), 1, 1024);
        else if (a.rfind("--jobs=", 0) == 0) jobs = numberOption("--jobs", a.substr(7), 1, 1024);
        else if (a.rfind("-j", 0) == 0) jobs = numberOption("--jobs", a.substr(2), 1, 1024);
        else if (a == "--timeout") timeout = static_cast<unsigned>(numberOption(a, args.value(), 1, 86400));
        else if (a.rfind("--timeout=", 0) == 0)
            timeout = static_cast<unsigned>(numberOption("--timeout", a.substr(10), 1, 86400));
        else return false;
        return true;
    }
    BatchSettings settings(const char* verb) const {
        BatchSettings s;
        s.jobs = jobs ? jobs : defaultJobs();
        s.timeoutSeconds = timeout;
        s.verb = verb;
        return s;
    }
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

std::string withoutExtension(const std::string& relative) {
    std::filesystem::path p(relative);
    return p.replace_extension().string();
}

// Every output of a batch has a name of its own, and none lands on a return.
void checkOutputNames(const std::vector<InputFile>& files, const std::string& outDir, const std::string& reportDir) {
    namespace fs = std::filesystem;
    std::set<std::string> inputs, stems;
    for (const InputFile& f : files) {
        std::error_code ec;
        inputs.insert(fs::weakly_canonical(f.path, ec).string());
    }
    for (const InputFile& f : files) {
        const std::string stem = withoutExtension(f.relative);
        if (!stems.insert(stem).second)
            throw InputError{"two returns would have the output " + stem + " (" + f.path +
                             " is one); give them in folders of their own"};
        if (outDir.empty()) continue;
        for (const char* ext : {".xml", ".json", ".txt"}) {
            std::error_code ec;
            const std::string out = fs::weakly_canonical(fs::path(outDir) / (stem + ext), ec).string();
            if (inputs.count(out))
                throw InputError{"-o " + outDir + " would write over the return " + out + "; choose another folder"};
        }
    }
    (void)reportDir;  // report folders are named after the stems checked above
}

// ---------------------------------------------------------------- calc

int commandCalc(const std::vector<std::string>& argv) {
    CalcOptions options;
    BatchOptions batch;
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
        else if (batch.take(args)) continue;
        else if (isOption(a)) throw InputError{"unknown option " + a + " (see 'ct600 calc --help')"};
        else paths.push_back(a);
    }
    if (paths.empty()) throw InputError{"calc needs a file"};
    if (!options.entryName.empty() && !FindFormEntry(options.entryName.c_str()))
        throw InputError{"no form entry named " + options.entryName + " (see 'ct600 entries')"};

    if (!isBatch(paths)) {
        if (!reportDir.empty()) removeStaleReport();
        const CalcRun run = runCalc(paths[0], options);
        if (run.wholeReturn) writeOut(outPath, run.rebuilt);
        else std::fputs(options.json ? calcJson(run, false).c_str() : calcText(run, options.all).c_str(), stdout);
        if (!reportDir.empty()) copyReport(reportDir);
        return kExitOk;
    }

    const std::vector<InputFile> files = collectInputs(paths);
    if (!outPath.empty() || !reportDir.empty()) checkOutputNames(files, outPath, reportDir);
    if (!outPath.empty()) {
        std::error_code failed;
        std::filesystem::create_directories(outPath, failed);
        if (failed) throw InputError{"cannot create " + outPath + ": " + failed.message()};
    }
    const auto task = [&](const InputFile& file) {
        const CalcRun run = runCalc(file.path, options);
        FileResult result;
        result.status = run.errors.empty() ? FileStatus::Clean : FileStatus::Errors;
        const std::string stem = withoutExtension(file.relative);
        if (!outPath.empty()) {
            const std::filesystem::path out = std::filesystem::path(outPath) / stem;
            std::error_code ignored;
            std::filesystem::create_directories(out.parent_path(), ignored);
            if (run.wholeReturn) writeFile(out.string() + ".xml", run.rebuilt.str() + "\n");
            else if (options.json) writeFile(out.string() + ".json", calcJson(run, false));
            else writeFile(out.string() + ".txt", calcText(run, options.all));
        }
        if (!reportDir.empty()) {
            try {
                copyReport((std::filesystem::path(reportDir) / stem).string());
            } catch (const InputError& e) {
                result.err += "ct600: " + file.path + ": " + e.message + "\n";
            }
        }
        if (options.json && outPath.empty()) {
            result.out = calcJson(run, true, file.path);
        } else {
            result.out = file.path + ": " + calcSummary(run) + "\n";
            for (const ErrorLine& e : run.errors) result.out += file.path + ": " + e.field + ": " + e.text + "\n";
        }
        return result;
    };
    return runBatch(files, batch.settings("calculated"), task);
}

// ---------------------------------------------------------------- validate

int commandValidate(const std::vector<std::string>& argv) {
    bool xml = false;
    BatchOptions batch;
    std::vector<std::string> paths;
    for (Args args(argv); args.next();) {
        const std::string& a = args.current();
        if (a == "--xml") xml = true;
        else if (a == "--help") return showHelp(kValidateHelp);
        else if (batch.take(args)) continue;
        else if (isOption(a)) throw InputError{"unknown option " + a + " (see 'ct600 validate --help')"};
        else paths.push_back(a);
    }
    if (paths.empty()) throw InputError{"validate needs a file"};
    requireTemplate();

    if (!isBatch(paths)) {
        const ValidateRun run = runValidate(paths[0], xml);
        std::fputs(run.text.c_str(), stdout);
        return run.errorsFound ? kExitErrorsFound : kExitOk;
    }

    const std::vector<InputFile> files = collectInputs(paths);
    // In the XML document a return that gives no Errors of its own still has its element.
    const auto problemElement = [](const InputFile& file, const std::string& why) {
        CXMLVar element("Errors");
        element.SetAttr("file", file.path.c_str());
        element.SetAttr("unreadable", why.c_str());
        CString text;
        element.Save(text, 0);
        return text.str() + "\n";
    };
    const auto task = [&](const InputFile& file) {
        FileResult result;
        try {
            const ValidateRun run = runValidate(file.path, xml, xml ? file.path : std::string());
            result.status = run.errorsFound ? FileStatus::Errors : FileStatus::Clean;
            if (xml) {
                result.out = run.text;
            } else {
                std::size_t at = 0;
                while (at < run.text.size()) {
                    const std::size_t end = run.text.find('\n', at);
                    result.out += file.path + ": " + run.text.substr(at, end - at) + "\n";
                    at = end == std::string::npos ? run.text.size() : end + 1;
                }
            }
        } catch (const InputError& e) {
            result.status = FileStatus::Unreadable;
            result.err = "ct600: " + e.message + "\n";
            if (xml) result.out = problemElement(file, e.message);
        }
        return result;
    };
    BatchSettings settings = batch.settings("validated");
    if (xml) {
        settings.header = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<Batch>\n";
        settings.footer = "</Batch>\n";
        settings.failedOut = problemElement;
    }
    return runBatch(files, settings, task);
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

// --rates WORD (or --rates=WORD) of calc, validate, message and report sets
// the process's choice of law, which workers of a batch inherit; a return's
// own box 'rates' still wins. Taken out of args before the command reads them.
void takeRatesOption(std::vector<std::string>& args) {
    for (std::size_t i = 0; i < args.size(); ++i) {
        std::string word;
        if (args[i] == "--rates") {
            if (i + 1 >= args.size()) throw InputError{"--rates needs a value: current or default"};
            word = args[i + 1];
            args.erase(args.begin() + static_cast<std::ptrdiff_t>(i), args.begin() + static_cast<std::ptrdiff_t>(i) + 2);
        } else if (args[i].rfind("--rates=", 0) == 0) {
            word = args[i].substr(8);
            args.erase(args.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            continue;
        }
        if (word != kCurrentLawWord && word != "default")
            throw InputError{"--rates takes current or default, not '" + word + "'"};
        ::setenv("CT600_RATES", word.c_str(), 1);
        --i;
    }
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
        if (command == "calc" || command == "validate" || command == "message" || command == "report")
            takeRatesOption(args);
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
