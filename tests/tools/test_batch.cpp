// calc and validate over many returns, in worker processes.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "common/xmlvar.h"
#include "support/run_cli.h"
#include "tools/cli_files.h"

namespace {

using namespace clitest;
namespace fs = std::filesystem;

// The sample returns validate clean on this day.
const std::string kToday = "CT600_TODAY=2018-06-30";
const std::string kFaulty = R"({"form": "ctv3", "from": "01/04/2016", "to": "31/03/2017", "Q155": "10"})";

// A folder of returns: two clean, two with errors, two unreadable, and two
// files that are no returns of the folder's (a text file, a hidden folder).
std::string returnsFolder(const std::string& name) {
    const fs::path root = scratch(name);
    fs::remove_all(root);
    put(root / "clean.json", slurp(example("full-return.json")));
    put(root / "more" / "clean.xml", slurp(example("full-return.xml")));
    put(root / "faulty.json", kFaulty);
    put(root / "sample.json", slurp(example("sample-return.json")));
    put(root / "garbage.json", "{\"Q155\": ");
    put(root / "more" / "broken.xml", "<Return><Boxes>");
    put(root / "notes.txt", "no return");
    put(root / ".hidden" / "skipped.json", kFaulty);
    return root.string();
}

TEST(Batch, ValidateGivesTheSameWhateverTheNumberOfJobs) {
    const std::string root = returnsFolder("returns");
    const CliOutcome one = RunCli("validate --jobs 1 " + root, kToday);
    const CliOutcome two = RunCli("validate --jobs 2 " + root, kToday);
    EXPECT_EQ(one.status, 2) << one.out;
    EXPECT_EQ(two.status, 2);
    EXPECT_EQ(one.out, two.out);

    const std::string& out = two.out;
    EXPECT_EQ(out.substr(out.rfind('\n', out.size() - 2) + 1),
              "validated 6 files: 2 clean, 2 with errors, 2 unreadable\n");
    // Each file's output in the order of the paths, lines prefixed by the path.
    const auto faulty = out.find(root + "/faulty.json: 9148:Box 165 must be completed if Box 155 is greater than 0");
    const auto garbage = out.find("ct600: " + root + "/garbage.json: not a valid JSON box map");
    const auto broken = out.find("ct600: " + root + "/more/broken.xml: not well-formed XML");
    const auto sample = out.find(root + "/sample.json: ");
    ASSERT_NE(faulty, std::string::npos) << out;
    ASSERT_NE(sample, std::string::npos) << out;
    EXPECT_LT(faulty, garbage);
    EXPECT_LT(garbage, broken);
    EXPECT_LT(broken, sample);
    EXPECT_EQ(out.find("notes.txt"), std::string::npos);
    EXPECT_EQ(out.find("skipped"), std::string::npos);
    EXPECT_EQ(out.find(root + "/clean.json"), std::string::npos);  // clean returns say nothing

    // A file's lines are its single run's, prefixed.
    const CliOutcome single = RunCli("validate " + root + "/sample.json", kToday);
    std::string prefixed;
    for (std::size_t at = 0, end; (end = single.out.find('\n', at)) != std::string::npos; at = end + 1)
        prefixed += root + "/sample.json: " + single.out.substr(at, end - at + 1);
    EXPECT_NE(out.find(prefixed), std::string::npos) << single.out;
}

// Exit status, summary and bad usage: cases in tests/data/cli_batch_cases.txt.
TEST(Batch, CommandCases) {
    const fs::path folder = freshFolder("batch-cases");
    returnsFolder("batch-cases/returns");
    runCases(folder, "cli_batch_cases.txt");
    EXPECT_EQ(slurp(scratch("batch-cases/returns/clean.json")), slurp(example("full-return.json")));
}

TEST(Batch, ValidateXmlIsOneDocument) {
    const std::string root = returnsFolder("xml");
    const std::string out = stdoutOf("validate --xml --jobs 2 " + root, kToday);
    CXMLVar doc;
    ASSERT_TRUE(doc.Open(CString(out))) << out;
    EXPECT_EQ(doc.name, "Batch");
    ASSERT_EQ(doc.GetChildCount(), 6);
    EXPECT_EQ(doc.children[0]->GetAttr("file"), CString(root + "/clean.json"));
    EXPECT_EQ(doc.children[0]->GetChildCount(), 0);
    EXPECT_GT(doc.children[1]->CountChildren("Error"), 0);
    EXPECT_EQ(doc.children[2]->GetAttr("file"), CString(root + "/garbage.json"));
    EXPECT_NE(doc.children[2]->GetAttr("unreadable").Find("not a valid JSON box map"), -1);
}

TEST(Batch, CalcWritesALineOrAFilePerReturn) {
    const std::string root = returnsFolder("calc");
    const CliOutcome lines = RunCli("calc --jobs 2 " + root + " " CT600_SOURCE_DIR "/tests/data/cli/address.json");
    EXPECT_EQ(lines.status, 2);
    EXPECT_NE(lines.out.find(root + "/sample.json: tax chargeable 36199.21, tax payable 36199.21\n"),
              std::string::npos) << lines.out;
    EXPECT_NE(lines.out.find("address.json: tax chargeable 200.00, tax payable 200.00\n"), std::string::npos);
    EXPECT_NE(lines.out.find("address.json: Address1: Maximum 35 chars\n"), std::string::npos);

    // With -o, each return's output is what calc gives for it alone.
    const fs::path out = scratch("calc-out");
    fs::remove_all(out);
    ASSERT_EQ(RunCli("calc -j 2 -o " + out.string() + " " + root).status, 2);
    const struct {
        const char *input, *output, *options;
    } files[] = {{"sample.json", "sample.txt", ""}, {"more/clean.xml", "more/clean.xml", ""},
                 {"sample.json", "sample.json", "--json"}};
    fs::remove_all(scratch("calc-json"));
    ASSERT_EQ(RunCli("calc --json -o " + scratch("calc-json").string() + " " + root + "/sample.json " + root +
                     "/faulty.json")
                  .status,
              0);
    for (const auto& f : files) {
        const fs::path written = (*f.options ? scratch("calc-json") : out) / f.output;
        EXPECT_EQ(slurp(written), RunCli(std::string("calc ") + f.options + " " + root + "/" + f.input).out)
            << written;
    }
    EXPECT_FALSE(fs::exists(out / "garbage.txt"));

    // --json alone: one object a line, with its file.
    const std::string json = stdoutOf("calc --json " + root + "/faulty.json " + root + "/sample.json");
    EXPECT_EQ(count(json, "\n"), 2);
    EXPECT_EQ(json.rfind("{\"file\":\"" + root + "/faulty.json\",\"boxes\":{", 0), 0u) << json;
}

TEST(Batch, AWorkerThatStopsIsReportedAndTheRestGoOn) {
    // A pipe with no writer never opens: the worker waits on it until stopped.
    const std::string root = returnsFolder("stuck");
    const std::string fifo = scratch("stuck.json").string();
    fs::remove(fifo);
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (const char* jobs : {"1", "2"}) {
        const CliOutcome o = RunCli(std::string("validate --timeout 1 --jobs ") + jobs + " " + root + "/clean.json " +
                                        fifo + " " + root + "/faulty.json",
                                    kToday + " timeout 60");
        EXPECT_EQ(o.status, 2) << o.out;
        const auto stuck = o.out.find("ct600: " + fifo + ": still running after 1 second; its worker was stopped\n");
        EXPECT_NE(stuck, std::string::npos) << o.out;
        EXPECT_LT(stuck, o.out.find(root + "/faulty.json: 9148:"));
        EXPECT_NE(o.out.find("validated 3 files: 1 clean, 1 with errors, 0 unreadable, 1 lost with their worker\n"),
                  std::string::npos) << o.out;
    }
}

}  // namespace
