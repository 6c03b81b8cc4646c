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

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
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

// Encodings at the edge, each generation's own boxes, and messages that name
// the file and say what is wrong: cases in tests/data/cli_safety_cases.txt.
TEST(Safety, CommandCases) {
    const fs::path folder = freshFolder("cases");
    put(folder / "deep.xml", [] { std::string deep; for (int i = 0; i < 10001; ++i) deep += "<a>"; return deep; }());
    runCases(folder, "cli_safety_cases.txt");
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
