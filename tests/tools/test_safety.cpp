// The command and the user's files: outputs written whole or not at all,
// nothing written over an input, standard output checked, temporary files
// that stay private and go away, text encodings at the edge, plain messages
// and each generation's own boxes.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli_files.h"
#include "support/run_cli.h"

namespace {

namespace fs = std::filesystem;
using namespace clitest;

// A shell script run in folder with $CT600 the command; standard error and
// standard output together.
CliOutcome shell(const fs::path& folder, const std::string& script) {
    return RunShell("cd '" + folder.string() + "' && CT600='" + std::string(CT600_CLI) + "' && { " + script + "\n} 2>&1");
}

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
}

// A folder of its own, emptied.
fs::path freshFolder(const std::string& name) {
    const fs::path folder = scratch(name);
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

const std::string kFaulty = R"({"form": "ctv3", "from": "01/04/2016", "to": "31/03/2017", "Q155": "10"})";

TEST(Safety, OutputsAreWholeOrNotThereAndNeverReplaceAnInput) {
    struct Case {
        const char* what;
        std::string script;
        int status;
        const char* message;
        std::vector<std::string> files;  // what the folder holds afterwards, nothing else
    };
    const Case cases[] = {
        // full-return.xml is 5,228 bytes and rebuilt larger: four blocks of 1 KiB cannot hold it.
        {"in-place recalculation, disk full", "ulimit -f 4; $CT600 calc R.xml -o R.xml", 2, "file size limit",
         {"R.xml", "r.json", "page.html"}},
        {"page over an older one, disk full", "ulimit -f 4; $CT600 report r.json -o page.html", 2,
         "cannot write page.html", {"R.xml", "r.json", "page.html"}},
        {"page over its own return", "$CT600 report r.json -o r.json", 2, "is the input r.json",
         {"R.xml", "r.json", "page.html"}},
        {"page over its return through a link", "ln -s r.json link.json; $CT600 report link.json -o r.json", 2,
         "is the input link.json", {"R.xml", "r.json", "page.html", "link.json"}},
        {"box map over itself", "$CT600 calc r.json -o r.json", 2, "would replace it", {"R.xml", "r.json", "page.html"}},
        {"a folder no one may write to", "$CT600 calc R.xml -o /sys/ct600-out.xml", 2, "permission denied",
         {"R.xml", "r.json", "page.html"}},
        {"a folder given for a file", "mkdir d; $CT600 report r.json -o d", 2, "it is a folder",
         {"R.xml", "r.json", "page.html", "d"}},
    };
    const std::string xml = slurp(example("full-return.xml"));
    for (const Case& c : cases) {
        const fs::path folder = freshFolder("outputs");
        put(folder / "R.xml", xml);
        put(folder / "r.json", kFaulty);
        put(folder / "page.html", "an older page\n");
        const CliOutcome o = shell(folder, c.script);
        EXPECT_EQ(o.status, c.status) << c.what << "\n" << o.out;
        EXPECT_NE(o.out.find(c.message), std::string::npos) << c.what << "\n" << o.out;
        EXPECT_EQ(slurp(folder / "R.xml"), xml) << c.what;
        EXPECT_EQ(slurp(folder / "r.json"), kFaulty) << c.what;
        EXPECT_EQ(slurp(folder / "page.html"), "an older page\n") << c.what;
        EXPECT_EQ(namesIn(folder), std::set<std::string>(c.files.begin(), c.files.end())) << c.what;
    }
    // The documented in-place recalculation still works, and a box map's text goes where -o says.
    const fs::path folder = freshFolder("outputs");
    put(folder / "R.xml", xml);
    put(folder / "r.json", kFaulty);
    const CliOutcome o = shell(folder, "$CT600 calc R.xml -o R.xml && $CT600 calc r.json -o out.txt");
    EXPECT_EQ(o.status, 0) << o.out;
    EXPECT_NE(slurp(folder / "R.xml").find("<Boxes>"), std::string::npos);
    EXPECT_EQ(slurp(folder / "out.txt").rfind("Tax chargeable:\n", 0), 0u) << slurp(folder / "out.txt");
    EXPECT_EQ(namesIn(folder), (std::set<std::string>{"R.xml", "r.json", "out.txt"}));
}

TEST(Safety, RunsSharingTheTemporaryFolderKeepToTheirOwn) {
    // Six runs at once over one temporary folder, each its own profit.
    const fs::path folder = freshFolder("shared");
    const fs::path temp = folder / "tmp";
    std::string script = "export CT600_TEMP_DIR='" + temp.string() + "'; ";
    for (int i = 1; i <= 6; ++i) {
        put(folder / ("r" + std::to_string(i) + ".json"),
            R"({"form": "ctv3", "from": "01/04/2016", "to": "31/03/2017", "Q155": ")" + std::to_string(100000 * i) +
                "\"}");
        script += "$CT600 calc --report d" + std::to_string(i) + " r" + std::to_string(i) + ".json >/dev/null & ";
    }
    const CliOutcome o = shell(folder, script + "wait");
    EXPECT_EQ(o.out, "");
    for (int i = 1; i <= 6; ++i) {
        // FY2016 at 20% on the whole profit: 100,000 x i x 20%.
        const std::string line = std::to_string(100000 * i) + " @ 20% = " + std::to_string(20000 * i) + ".00";
        EXPECT_NE(slurp(folder / ("d" + std::to_string(i)) / "calc.htm").find(line), std::string::npos) << line;
    }
    // Nothing of the runs is left behind but the library's log.
    std::set<std::string> left = namesIn(temp);
    left.erase("ct600.log");
    EXPECT_TRUE(left.empty()) << *left.begin();
}

TEST(Safety, AnInterruptedBatchLeavesNoHalfWrittenFile) {
    const fs::path folder = freshFolder("interrupted");
    // Box maps of 16 MB each, whose JSON takes a while to write; the signal
    // comes as soon as the first output shows under its name.
    const std::string big(16 << 20, 'x');
    for (int i = 0; i < 8; ++i)
        put(folder / "in" / ("r" + std::to_string(i) + ".json"), R"({"Q1": ")" + big + R"(", "Q155": "5"})");
    const CliOutcome o = shell(folder, "export CT600_TEMP_DIR=\"$PWD/tmp\"; "
                                       "$CT600 calc --json --jobs 2 -o out in >/dev/null & pid=$!; "
                                       "until [ -n \"$(ls out 2>/dev/null)\" ]; do :; done; "
                                       "kill -INT $pid; wait $pid; echo \"status $?\"");
    EXPECT_NE(o.out.find("status 130"), std::string::npos) << o.out;
    int whole = 0;
    for (const auto& entry : fs::directory_iterator(folder / "out")) {
        const std::string name = entry.path().filename().string();
        EXPECT_NE(name[0], '.') << "a temporary file is left: " << name;
        const std::string text = slurp(entry.path());
        EXPECT_EQ(text.substr(text.size() - 2), "}\n") << name << " is cut short at " << text.size() << " bytes";
        ++whole;
    }
    EXPECT_GT(whole, 0);
    EXPECT_LT(whole, 8) << "the batch ended before the signal";
    std::set<std::string> left = namesIn(folder / "tmp");
    left.erase("ct600.log");
    EXPECT_TRUE(left.empty()) << *left.begin();
}

TEST(Safety, TextIsIso88591InsideAndUtf8InJson) {
    const fs::path folder = freshFolder("text");
    put(folder / "utf8.json", "{\"name\": \"Caf\xC3\xA9 \xC2\xA3 Ltd\", \"Q155\": \"5\"}");
    put(folder / "latin1.xml", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
                               "<Return><Boxes><name>Caf\xE9 \xA3 Ltd</name><Q155>5</Q155></Boxes></Return>");
    // Latin-1 bytes that happen to read as UTF-8: the two letters A-tilde and the copyright sign.
    put(folder / "tilde.xml", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
                              "<Return><Boxes><name>\xC3\xA9tude</name></Boxes></Return>");
    put(folder / "polish.json", "{\"name\": \"\xC5\x81\xC3\xB3\x64\xC5\xBA\"}");
    put(folder / "nul.json", R"({"name": "A\u0000B"})");
    put(folder / "batch/caf\xC3\xA9.json", kFaulty);
    put(folder / "batch/plain.json", kFaulty);
    const struct {
        const char* script;
        int status;
        std::string expected;
    } cases[] = {
        // The message is declared ISO-8859-1: one byte each for the e acute and the pound.
        {"$CT600 message utf8.json", 0, "Caf\xE9 \xA3 Ltd"},
        {"$CT600 calc --json --entry ctv3_16 latin1.xml", 0, "\"name\": \"Caf\xC3\xA9 \xC2\xA3 Ltd\""},
        {"$CT600 calc --json --entry ctv3_16 utf8.json", 0, "\"name\": \"Caf\xC3\xA9 \xC2\xA3 Ltd\""},
        {"$CT600 report --entry ctv3_16 tilde.xml", 0, "<h1>\xC3\x83\xC2\xA9tude</h1>"},
        {"$CT600 validate --xml --jobs 1 batch", 1, "file=\"batch/caf\xE9.json\""},
        {"$CT600 calc polish.json", 2, "polish.json: box name has the character '\xC5\x81' (U+0141)"},
        {"$CT600 calc nul.json", 2, "nul.json: box name holds a NUL character"},
    };
    for (const auto& c : cases) {
        const CliOutcome o = shell(folder, c.script);
        EXPECT_EQ(o.status, c.status) << c.script << "\n" << o.out;
        EXPECT_NE(o.out.find(c.expected), std::string::npos) << c.script << "\n" << o.out;
    }
}

TEST(Safety, EachGenerationShowsItsOwnBoxes) {
    const fs::path folder = freshFolder("generations");
    // Trading profit 100,000 for a year inside one financial year, no associates:
    // small companies' rate 19% in FY2002 and FY2005, so 19,000 chargeable and payable.
    put(folder / "g1.json", R"({"From": "01/04/2002", "To": "31/03/2003", "Q3": "100000"})");
    put(folder / "g2.json", R"({"from": "01/04/2005", "to": "31/03/2006", "Q3": "100000"})");
    put(folder / "g2b.json", R"({"from": "01/04/2005", "to": "31/03/2006", "Q3": "100000"})");
    const struct {
        const char* script;
        std::vector<std::string> expected;
    } cases[] = {
        {"$CT600 calc --entry ct600_03 g1.json",
         {"financial year 2002: 100000.00 at 19% = 19000.00", "tax payable (Q72): 19000.00"}},
        {"$CT600 calc --entry ct600_05 g2.json",
         {"financial year 2005: 100000.00 at 19% = 19000.00", "tax payable (Q86): 19000.00"}},
        {"$CT600 calc --jobs 1 --entry ct600_05 g2.json g2b.json",
         {"g2.json: tax chargeable 19000.00, tax payable 19000.00"}},
        {"$CT600 calc --entry ct600_03 --report rep g1.json >/dev/null && ls rep", {"calc.htm\n"}},
        // A second-generation Q3 is the trading profit, not the tax reference.
        {"$CT600 report --entry ct600_05 g2.json",
         {"<dt>Tax reference</dt><dd>not given</dd>", "<dt>Period</dt><dd>01/04/2005 to 31/03/2006</dd>",
          "Tax payable (Q86)</th><td class=\"value\">19,000.00"}},
    };
    for (const auto& c : cases) {
        const CliOutcome o = shell(folder, c.script);
        EXPECT_EQ(o.status, 0) << c.script << "\n" << o.out;
        for (const std::string& part : c.expected) EXPECT_NE(o.out.find(part), std::string::npos) << c.script << "\n" << o.out;
    }
}

// Bad input and lost writes exit 2 with a message naming the file; one line,
// and one more for a batch's summary.
TEST(Safety, MessagesNameTheFileAndSayWhatIsWrong) {
    const fs::path folder = freshFolder("messages");
    put(folder / "huge.json", R"({"Q155": 1e400})");
    put(folder / "bad.json", "{\"Q155\":\n  tru}");
    put(folder / "bad.xml", "<Return><Boxes>\n<Q1></Q2></Boxes></Return>");
    put(folder / "deep.xml", [] { std::string deep; for (int i = 0; i < 10001; ++i) deep += "<a>"; return deep; }());
    put(folder / "r.json", kFaulty);
    put(folder / "in/a.json", kFaulty);
    put(folder / "in/b.json", kFaulty);
    put(folder / "reports/a", "a file where a folder should be\n");
    fs::create_directories(folder / "empty");
    const struct {
        const char* script;
        const char* message;
        int lines = 1;
    } cases[] = {
        {"$CT600 calc missing.json", "cannot read missing.json: no such file"},
        {"$CT600 report empty", "cannot read empty: it is a folder"},
        {"$CT600 calc huge.json", "huge.json: a number is too large"},
        {"$CT600 calc bad.json", "bad.json: not a valid JSON box map: line 2, column 6: unexpected '}'"},
        {"$CT600 calc bad.xml", "bad.xml: not well-formed XML: line 2, column 7: a closing tag that does not match"},
        {"$CT600 calc deep.xml", "deep.xml: elements nested deeper than 10000 levels"},
        {"CT600_TEMP_DIR=/sys/ct600-tmp $CT600 calc --report rep r.json", "temporary folder /sys/ct600-tmp cannot be used"},
        {"CT600_TEMPLATE_DIR=\"$PWD/empty\" $CT600 validate r.json", "set CT600_TEMPLATE_DIR"},
        {"$CT600 calc in/a.json >/dev/full", "cannot write to standard output: the disk is full"},
        {"$CT600 message in/a.json >/dev/full", "cannot write to standard output"},
        {"$CT600 report in/a.json >/dev/full", "cannot write to standard output"},
        {"$CT600 entries >/dev/full", "cannot write to standard output"},
        {"$CT600 validate --jobs 1 in >/dev/full", "cannot write to standard output", 2},
        {"$CT600 calc --jobs 1 --report reports in >/dev/null", "in/a.json: cannot create the folder reports/a", 2},
    };
    for (const auto& c : cases) {
        const CliOutcome o = shell(folder, c.script);
        EXPECT_EQ(o.status, 2) << c.script << "\n" << o.out;
        EXPECT_NE(o.out.find(c.message), std::string::npos) << c.script << "\n" << o.out;
        EXPECT_EQ(o.out.find("json.exception"), std::string::npos) << o.out;
        EXPECT_EQ(std::count(o.out.begin(), o.out.end(), '\n'), c.lines) << o.out;
    }
}

TEST(Safety, AnInstalledCommandFindsTheTemplatesOfItsTree) {
    // PREFIX/bin/ct600 reads PREFIX/share/ct600/templates: an empty one says so.
    const fs::path prefix = freshFolder("prefix");
    fs::create_directories(prefix / "bin");
    fs::create_directories(prefix / "share/ct600/templates");
    fs::copy_file(CT600_CLI, prefix / "bin/ct600");
    const CliOutcome o = shell(prefix, "unset CT600_TEMPLATE_DIR; bin/ct600 message '" + example("sample-return.json") + "'");
    EXPECT_EQ(o.status, 2) << o.out;
    EXPECT_NE(o.out.find("missing from " + (prefix / "share/ct600/templates").string()), std::string::npos) << o.out;
}

TEST(Safety, TheReportPageShowsValidationAndKeepsInternalKeysApart) {
    const fs::path folder = freshFolder("page");
    put(folder / "r.json", kFaulty);
    const CliOutcome o = shell(folder, "CT600_TODAY=2018-06-30 $CT600 report r.json");
    EXPECT_EQ(o.status, 0) << o.out;
    const auto validation = o.out.find("<h2>Errors found by validation");
    ASSERT_NE(validation, std::string::npos) << o.out;
    EXPECT_NE(o.out.find("<li>9148:Box 165 must be completed", validation), std::string::npos);
    const auto internal = o.out.find("<section id=\"internal\">");
    ASSERT_NE(internal, std::string::npos);
    EXPECT_NE(o.out.find("<td class=\"box\">form</td>", internal), std::string::npos);
    EXPECT_EQ(o.out.find("<td class=\"box\">form</td>"), o.out.find("<td class=\"box\">form</td>", internal));
}

}  // namespace
