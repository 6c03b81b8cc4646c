// ct600: the command-line host. Runs a form entry over a box map (JSON) or a
// return XML, and prints the recalculated boxes and the calculator's errors;
// validates returns; writes the worked report as a page. calc and validate
// take many returns at once and share them out among worker processes.
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
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
#include "output.h"
#include "report.h"
#include "submission.h"

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
    "  validate [--xml] [--submission] FILE...\n"
    "        Check returns against the business rules and the schema of the\n"
    "        form version the library targets.\n"
    "  report [--entry NAME] [-o OUT] FILE\n"
    "        Write the recalculated return and its worked computation as one\n"
    "        HTML page.\n"
    "  message FILE\n"
    "        Print the GovTalkMessage that validation builds from a return;\n"
    "        with --submission [--test], the full message that files it with\n"
    "        HMRC.\n"
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
    "Outputs are written whole or not at all, never over an input (but for\n"
    "'calc RET.xml -o RET.xml'); JSON is UTF-8, the message ISO-8859-1.\n"
    "\n"
    "exit status: 0 done (validate: every return clean), 1 errors found\n"
    "(validate; calc on several returns), 2 unreadable or malformed input, an\n"
    "output that could not be written, a missing template, or bad usage;\n"
    "129, 130, 143 ended by HUP, INT or TERM (temporary files removed).\n";

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
    "        Copy the worked report of the computation (calc.htm, and\n"
    "        ctcharge.xml where the form writes one) to DIR; in a batch to\n"
    "        DIR/NAME/ for each return NAME.\n"
    "  -o OUT\n"
    "        Where the rebuilt return XML, or what calc prints, goes (default:\n"
    "        standard output); OUT may be the return XML itself. In a\n"
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
    "return; 2 unreadable or malformed input, an output not written, or bad\n"
    "usage; 129, 130, 143 ended by HUP, INT or TERM.\n";

const char* const kValidateHelp =
    "usage: ct600 validate [--xml] [--submission] FILE\n"
    "       ct600 validate [--xml] [--submission] [--jobs N] [--timeout SECONDS] FILE|FOLDER...\n"
    "\n"
    "Build the message the return in FILE (JSON or return XML) would be filed\n"
    "in, check it against the business rules and the schema of the form\n"
    "version the library targets, and print each error, one a line as\n"
    "code:message (schema errors as their text), rule errors first.\n"
    "\n"
    "options:\n"
    "  --xml\n"
    "        Print the Errors document instead. In a batch, one document\n"
    "        <Batch> holds an Errors element per return, its path in the\n"
    "        attribute file (and the problem in unreadable, for a return that\n"
    "        could not be read).\n"
    "  --submission\n"
    "        Check the full message that files the return ('ct600 message\n"
    "        --submission'), so that the rules on its IRheader and its keys\n"
    "        (5004, 5005) have something to check. No credentials are read.\n"
    "%s"
    "\n"
    "%s"
    "In a batch each error line is prefixed by the return's path and ': '.\n"
    "\n"
    "exit status: 0 every return clean, 1 errors found, 2 a return unreadable,\n"
    "standard output not written, the message template missing, or bad usage;\n"
    "129, 130, 143 ended by HUP, INT or TERM.\n";

const char* const kReportHelp =
    "usage: ct600 report [--entry NAME] [-o OUT] FILE\n"
    "\n"
    "Recalculate the return in FILE as 'ct600 calc' does and write the result as\n"
    "one standalone HTML page: the company, its tax reference and period; the\n"
    "tax chargeable; the boxes that hold something, by section of the form,\n"
    "with their numbers and meanings; the worked computation of the tax by\n"
    "financial year (the liability engine's calc.htm); the calculator's errors\n"
    "and validation's; and, apart, the entries that are no box of the form.\n"
    "The page needs nothing else to display or print.\n"
    "\n"
    "options:\n"
    "  --entry NAME\n"
    "        The form entry to run (default ctv3_21; a return XML is then read as\n"
    "        a box map).\n"
    "  -o OUT\n"
    "        Write the page to OUT (default: standard output); never over FILE.\n"
    "  --help\n"
    "        Show this text.\n"
    "\n"
    "exit status: 0 done, 2 unreadable or malformed input, the page not\n"
    "written, or bad usage; 129, 130, 143 ended by HUP, INT or TERM.\n";

const char* const kMessageHelp =
    "usage: ct600 message [--submission [--test] [--password-stdin]] [-o OUT] FILE\n"
    "\n"
    "Print the GovTalkMessage that validation builds from the box map in FILE\n"
    "(JSON or return XML): the message template ctv3_16.xml filled from the\n"
    "boxes, with the attachments.\n"
    "\n"
    "options:\n"
    "  --submission\n"
    "        The message that files the return with HMRC instead: the same\n"
    "        return inside the full GovTalk envelope (class HMRC-CT-CT600),\n"
    "        with its IRheader and IRmark. The sender id, password and vendor\n"
    "        id come from the environment variables CT600_SENDER_ID,\n"
    "        CT600_SENDER_PASSWORD and CT600_VENDOR_ID; one that is missing\n"
    "        leaves its element empty and is said on standard error.\n"
    "  --test\n"
    "        With --submission: for HMRC's test service (GatewayTest 1).\n"
    "  --password-stdin\n"
    "        With --submission: the password is the first line of standard\n"
    "        input, not CT600_SENDER_PASSWORD.\n"
    "  -o OUT\n"
    "        Write the message to OUT (default: standard output), through a\n"
    "        temporary file beside it; with --submission OUT is readable by\n"
    "        its owner only.\n"
    "  --help\n"
    "        Show this text.\n"
    "\n"
    "exit status: 0 done, 2 unreadable or malformed input, a missing template,\n"
    "standard output not written, or bad usage; 129, 130, 143 ended by HUP,\n"
    "INT or TERM.\n";

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
    const int size = std::snprintf(nullptr, 0, format, kBatchOptions, kBatchNotes);
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::snprintf(text.data(), text.size(), format, kBatchOptions, kBatchNotes);
    text.resize(static_cast<std::size_t>(size));
    printOut(text);
    return kExitOk;
}

// ---------------------------------------------------------------- options

// One option of a command: its name, whether it takes a value ("-o OUT" or
// "--report=DIR"), and what it sets.
struct Option {
    const char* name;
    bool takesValue;
    std::function<void(const std::string&)> set;
};

int numberOption(const std::string& option, const std::string& text, int low, int high) {
    char* end = nullptr;
    const long n = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || n < low || n > high)
        throw InputError{option + " takes a whole number from " + std::to_string(low) + " to " + std::to_string(high)};
    return static_cast<int>(n);
}

bool isOption(const std::string& arg) { return arg.size() > 1 && arg[0] == '-'; }

// The options batches add to a command.
struct BatchOptions {
    int jobs = 0;
    unsigned timeout = 0;
    std::vector<Option> options() {
        return {{"--jobs", true, [this](const std::string& v) { jobs = numberOption("--jobs", v, 1, 1024); }},
                {"-j", true, [this](const std::string& v) { jobs = numberOption("--jobs", v, 1, 1024); }},
                {"--timeout", true,
                 [this](const std::string& v) { timeout = static_cast<unsigned>(numberOption("--timeout", v, 1, 86400)); }}};
    }
    BatchSettings settings(const char* verb) const {
        BatchSettings s;
        s.jobs = jobs ? jobs : defaultJobs();
        s.timeoutSeconds = timeout;
        s.verb = verb;
        return s;
    }
};

// Reads a command's arguments against its table: options set what they set,
// the rest are files. False when --help was asked for.
bool parseOptions(const std::vector<std::string>& argv, const std::vector<Option>& table, const char* command,
                  std::vector<std::string>& paths) {
    for (std::size_t at = 0; at < argv.size(); ++at) {
        const std::string& a = argv[at];
        if (a == "--help") return false;
        if (!isOption(a)) {
            paths.push_back(a);
            continue;
        }
        bool known = false;
        for (const Option& option : table) {
            const std::string name = option.name;
            if (a == name) {
                if (option.takesValue && at + 1 >= argv.size()) throw InputError{name + " needs a value"};
                option.set(option.takesValue ? argv[++at] : std::string());
            } else if (option.takesValue && a.rfind(name + "=", 0) == 0 && name.rfind("--", 0) == 0) {
                option.set(a.substr(name.size() + 1));
            } else if (option.takesValue && name.size() == 2 && a.rfind(name, 0) == 0 && name != "-o") {
                option.set(a.substr(2));  // -j4
            } else {
                continue;
            }
            known = true;
            break;
        }
        if (!known) throw InputError{"unknown option " + a + " (see 'ct600 " + command + " --help')"};
    }
    return true;
}

std::vector<Option> operator+(std::vector<Option> a, std::vector<Option> b) {
    a.insert(a.end(), std::make_move_iterator(b.begin()), std::make_move_iterator(b.end()));
    return a;
}

// --rates: the ladder for the run, passed on as CT600_RATES so that batch
// workers and every entry see the same choice.
Option ratesOption() {
    return {"--rates", true, [](const std::string& word) {
                if (word != kCurrentLawWord && word != "default")
                    throw InputError{"--rates takes current or default, not '" + word + "'"};
                ::setenv("CT600_RATES", word.c_str(), 1);
            }};
}

// To a file (written safely) or to standard output.
void writeOut(const std::string& path, const std::string& text) {
    if (path.empty() || path == "-") printOut(text);
    else writeFileSafely(path, text);
}

std::string withoutExtension(const std::string& relative) {
    std::filesystem::path p(relative);
    return p.replace_extension().string();
}

std::vector<std::string> pathsOf(const std::vector<InputFile>& files) {
    std::vector<std::string> paths;
    for (const InputFile& f : files) paths.push_back(f.path);
    return paths;
}

// Every output of a batch has a name of its own, and none lands on a return.
void checkOutputNames(const std::vector<InputFile>& files, const std::string& outDir, const std::string& reportDir) {
    namespace fs = std::filesystem;
    const std::vector<std::string> inputs = pathsOf(files);
    std::set<std::string> canonical, stems;
    for (const InputFile& f : files) {
        std::error_code ec;
        canonical.insert(fs::weakly_canonical(f.path, ec).string());
    }
    for (const InputFile& f : files) {
        const std::string stem = withoutExtension(f.relative);
        if (!stems.insert(stem).second)
            throw InputError{"two returns would have the output " + stem + " (" + f.path +
                             " is one); give them in folders of their own"};
        if (!outDir.empty()) {
            for (const char* ext : {".xml", ".json", ".txt"}) {
                const fs::path out = fs::path(outDir) / (stem + ext);
                std::error_code ec;
                if (canonical.count(fs::weakly_canonical(out, ec).string()))
                    throw InputError{"-o " + outDir + " would write over the return " + out.string() +
                                     "; choose another folder"};
                checkNotAnInput(out.string(), inputs);
            }
        }
        if (!reportDir.empty())
            for (const char* name : {"calc.htm", "ctcharge.xml"})
                checkNotAnInput((fs::path(reportDir) / stem / name).string(), inputs);
    }
}

// ---------------------------------------------------------------- calc

int commandCalc(const std::vector<std::string>& argv) {
    CalcOptions options;
    BatchOptions batch;
    std::string reportDir, outPath;
    std::vector<std::string> paths;
    const std::vector<Option> table = std::vector<Option>{
        {"--entry", true, [&](const std::string& v) { options.entryName = v; }},
        {"--report", true, [&](const std::string& v) { reportDir = v; }},
        {"-o", true, [&](const std::string& v) { outPath = v; }},
        {"--json", false, [&](const std::string&) { options.json = true; }},
        {"--all", false, [&](const std::string&) { options.all = true; }},
    } + batch.options() + std::vector<Option>{ratesOption()};
    if (!parseOptions(argv, table, "calc", paths)) return showHelp(kCalcHelp);
    if (paths.empty()) throw InputError{"calc needs a file"};
    if (!options.entryName.empty() && !FindFormEntry(options.entryName.c_str()))
        throw InputError{"no form entry named " + options.entryName + " (see 'ct600 entries')"};

    if (!isBatch(paths)) {
        const PrivateTempDir folder("run");
        const CalcRun run = runCalc(paths[0], options);
        // Only a return recalculated as a whole may be written back over itself.
        checkNotAnInput(outPath, paths, run.wholeReturn);
        if (run.wholeReturn) writeOut(outPath, run.rebuilt.str() + "\n");
        else writeOut(outPath, options.json ? calcJson(run, false) : calcText(run, options.all));
        if (!reportDir.empty()) copyReport(folder.path(), reportDir, paths);
        return kExitOk;
    }

    const std::vector<InputFile> files = collectInputs(paths);
    if (!outPath.empty() || !reportDir.empty()) checkOutputNames(files, outPath, reportDir);
    if (!outPath.empty()) {
        std::error_code failed;
        std::filesystem::create_directories(outPath, failed);
        if (failed) throw InputError{"cannot create the folder " + outPath + ": " + reason(failed.value())};
    }
    const std::vector<std::string> inputs = pathsOf(files);
    const auto task = [&](const InputFile& file) {
        const CalcRun run = runCalc(file.path, options);
        FileResult result;
        result.status = run.errors.empty() ? FileStatus::Clean : FileStatus::Errors;
        const std::string stem = withoutExtension(file.relative);
        // An output that cannot be written fails the file, and with it the batch.
        try {
            if (!outPath.empty()) {
                const std::filesystem::path out = std::filesystem::path(outPath) / stem;
                std::error_code failed;
                std::filesystem::create_directories(out.parent_path(), failed);
                if (failed)
                    throw InputError{"cannot create the folder " + out.parent_path().string() + ": " +
                                     reason(failed.value())};
                if (run.wholeReturn) writeFileSafely(out.string() + ".xml", run.rebuilt.str() + "\n");
                else if (options.json) writeFileSafely(out.string() + ".json", calcJson(run, false));
                else writeFileSafely(out.string() + ".txt", calcText(run, options.all));
            }
            if (!reportDir.empty())
                copyReport(GetTempDir().str(), (std::filesystem::path(reportDir) / stem).string(), inputs);
        } catch (const InputError& e) {
            result.status = FileStatus::Unwritten;
            result.err += "ct600: " + file.path + ": " + e.message + "\n";
        }
        if (options.json && outPath.empty()) {
            result.out = calcJson(run, true, file.path);
        } else {
            result.out = file.path + ": " + calcSummary(run) + "\n";
            for (const ErrorLine& e : run.errors)
                result.out += file.path + ": " + toUtf8(e.field) + ": " + toUtf8(e.text) + "\n";
        }
        return result;
    };
    return runBatch(files, batch.settings("calculated"), task);
}

// ---------------------------------------------------------------- validate

// A file name as the value of an attribute of a document declared ISO-8859-1:
// what Latin-1 holds as itself, anything else as a character reference.
std::string fileAttribute(const std::string& path) {
    std::string out;
    for (std::size_t at = 0; at < path.size();) {
        std::size_t end = at + 1;
        while (end < path.size() && (static_cast<unsigned char>(path[end]) & 0xC0) == 0x80) ++end;
        const std::string ch = path.substr(at, end - at);
        std::string bad;
        const std::string latin = toLatin1(ch, &bad);
        if (bad.empty() && !latin.empty()) {
            out += escapeMarkup(latin);
        } else {
            // "'ł' (U+0142)" gives the code point; a byte that is no UTF-8 stands for itself.
            const auto plus = bad.find("(U+");
            out += plus != std::string::npos ? "&#x" + bad.substr(plus + 3, bad.find(')', plus) - plus - 3) + ";"
                                             : "&#" + std::to_string(static_cast<unsigned char>(ch[0])) + ";";
        }
        at = end;
    }
    return out;
}

constexpr const char* kFilePlaceholder = "ct600-file-attribute";

std::string withFileAttribute(std::string saved, const std::string& path) {
    const std::string placeholder = std::string("file=\"") + kFilePlaceholder + "\"";
    const auto at = saved.find(placeholder);
    if (at != std::string::npos) saved.replace(at, placeholder.size(), "file=\"" + fileAttribute(path) + "\"");
    return saved;
}

int commandValidate(const std::vector<std::string>& argv) {
    bool xml = false;
    bool submission = false;
    BatchOptions batch;
    std::vector<std::string> paths;
    const std::vector<Option> table =
        std::vector<Option>{{"--xml", false, [&](const std::string&) { xml = true; }},
                            {"--submission", false, [&](const std::string&) { submission = true; }}} +
        batch.options() + std::vector<Option>{ratesOption()};
    if (!parseOptions(argv, table, "validate", paths)) return showHelp(kValidateHelp);
    if (paths.empty()) throw InputError{"validate needs a file"};
    requireTemplate();
    const auto validate = submission ? runValidateSubmission : runValidate;

    if (!isBatch(paths)) {
        const PrivateTempDir folder("run");
        const ValidateRun run = validate(paths[0], xml, "");
        printOut(run.text);
        return run.errorsFound ? kExitErrorsFound : kExitOk;
    }

    const std::vector<InputFile> files = collectInputs(paths);
    // In the XML document a return that gives no Errors of its own still has its element.
    const auto problemElement = [](const InputFile& file, const std::string& why) {
        CXMLVar element("Errors");
        element.SetAttr("file", kFilePlaceholder);
        std::string bad;
        element.SetAttr("unreadable", toLatin1(why, &bad).c_str());
        CString text;
        element.Save(text, 0);
        return withFileAttribute(text.str(), file.path) + "\n";
    };
    const auto task = [&](const InputFile& file) {
        FileResult result;
        try {
            const ValidateRun run = validate(file.path, xml, xml ? kFilePlaceholder : std::string());
            result.status = run.errorsFound ? FileStatus::Errors : FileStatus::Clean;
            if (xml) {
                result.out = withFileAttribute(run.text, file.path);
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
    std::string outPath;
    std::vector<std::string> paths;
    const std::vector<Option> table = {
        {"--entry", true, [&](const std::string& v) { options.entryName = v; }},
        {"-o", true, [&](const std::string& v) { outPath = v; }},
        ratesOption(),
    };
    if (!parseOptions(argv, table, "report", paths)) return showHelp(kReportHelp);
    if (paths.empty()) throw InputError{"report needs a file"};
    if (paths.size() > 1) throw InputError{"report takes one file"};
    checkNotAnInput(outPath, paths);
    writeOut(outPath, buildReport(paths[0], options));
    return kExitOk;
}

int commandMessage(const std::vector<std::string>& argv) {
    bool submission = false, test = false, passwordStdin = false;
    std::string outPath;
    std::vector<std::string> paths;
    const std::vector<Option> table = {
        {"--submission", false, [&](const std::string&) { submission = true; }},
        {"--test", false, [&](const std::string&) { test = true; }},
        {"--password-stdin", false, [&](const std::string&) { passwordStdin = true; }},
        {"-o", true, [&](const std::string& v) { outPath = v; }},
        ratesOption(),
    };
    if (!parseOptions(argv, table, "message", paths)) return showHelp(kMessageHelp);
    if (paths.size() != 1) throw InputError{"message takes one file"};
    if ((test || passwordStdin) && !submission) throw InputError{"--test and --password-stdin go with --submission"};
    if (!outPath.empty() && outPath != "-") checkNotAnInput(outPath, paths);
    const PrivateTempDir folder("run");
    if (submission) {
        SubmissionSettings settings = submissionCredentials(passwordStdin);
        settings.test = test;
        writeSubmission(paths[0], settings, outPath);
        return kExitOk;
    }
    CMapStringToString boxes = loadBoxes(paths[0]);
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    if (!message) requireTemplate();
    if (!message) throw InputError{paths[0] + ": no message could be built from the return"};
    CString text;
    message->Save(text);
    if (outPath.empty() || outPath == "-") printOut(text.str() + "\n");
    else writeFileSafely(outPath, text.str() + "\n");
    return kExitOk;
}

int commandEntries(const std::vector<std::string>& argv) {
    std::vector<std::string> paths;
    if (!parseOptions(argv, {}, "entries", paths)) return showHelp(kEntriesHelp);
    if (!paths.empty()) throw InputError{"entries takes no argument"};
    int count = 0;
    const FormEntryInfo* entries = FormEntries(&count);
    char line[128];
    for (int i = 0; i < count; ++i) {
        std::snprintf(line, sizeof line, "%-12s %s\n", entries[i].name, entries[i].calculator);
        printOut(line);
    }
    const char* const others[][2] = {{"do_calc", "return tree"},       {"do_calc2", "return as XML text"},
                                     {"do_validate", "business rules"}, {"LiabilityCalc", "box map"},
                                     {"AtoT", "date text"}};
    for (const auto& other : others) {
        std::snprintf(line, sizeof line, "%-12s %s\n", other[0], other[1]);
        printOut(line);
    }
    return kExitOk;
}

// --rates WORD (or --rates=WORD) of calc, validate, message and report sets
// the process's choice of law, which workers of a batch inherit; a return's
// own box 'rates' still wins. Taken out of args before the command reads them.

// The calculator's errors are printed with the boxes; the error dialog stays quiet.
void quietErrorSink(const CObList&, const CStringList*, void*) {}

using Command = int (*)(const std::vector<std::string>&);

int runCommand(const std::string& command, const std::vector<std::string>& args) {
    const std::pair<const char*, Command> commands[] = {{"calc", commandCalc},       {"validate", commandValidate},
                                                        {"report", commandReport},   {"message", commandMessage},
                                                        {"entries", commandEntries}};
    try {
        for (const auto& [name, run] : commands)
            if (command == name) return run(args);
        throw InputError{"unknown command " + command + " (try 'ct600 --help')"};
    } catch (const InputError& e) {
        std::fprintf(stderr, "ct600: %s\n", e.message.c_str());
    } catch (const OutputLost&) {
        // already said
    } catch (const std::exception& e) {
        std::fprintf(stderr, "ct600: %s\n", e.what());
    }
    return kExitBadInput;
}

}  // namespace

int main(int argc, char** argv) {
    SetErrorSink(quietErrorSink, nullptr);
    // A file size limit shows as a failed write (EFBIG), not as the end of the process.
    signal(SIGXFSZ, SIG_IGN);
    installCleanupHandlers();
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        std::fputs(kUsage, args.empty() ? stderr : stdout);
        return finishOut() && !args.empty() ? kExitOk : kExitBadInput;
    }
    const std::string command = args[0];
    args.erase(args.begin());
    const int status = runCommand(command, args);
    return finishOut() ? status : kExitBadInput;
}
