// 'ct600 report': the recalculated return and its worked computation as one page.
#include <gtest/gtest.h>

#include <string>

#include "support/run_cli.h"
#include "tools/cli_files.h"

namespace {

using namespace clitest;

std::string reportOf(const std::string& file, const std::string& options = "") {
    const std::string out = scratch("report.html").string();
    const CliOutcome o = RunCli("report " + options + " -o " + out + " " + file);
    EXPECT_EQ(o.status, 0) << o.out;
    EXPECT_EQ(o.out, "");  // nothing but the page, and that in the file
    return slurp(out);
}

// The page's own elements open and close in pairs (the worked fragment is the
// library's, with its <td/> and unclosed <BR>, and is left out of the count).
void expectBalanced(const std::string& page) {
    for (const char* tag : {"html", "head", "body", "header", "main", "section", "h1", "h2", "h3", "dl", "dt", "dd",
                            "thead", "tbody", "ul", "li", "footer", "style", "title"}) {
        const int opened = count(page, std::string("<") + tag + ">") + count(page, std::string("<") + tag + " ");
        EXPECT_EQ(opened, count(page, std::string("</") + tag + ">")) << tag;
    }
}

TEST(ReportPage, TheSampleReturnAsAStandalonePage) {
    const std::string page = reportOf(example("sample-return.json"));
    EXPECT_EQ(page.rfind("<!DOCTYPE html>\n<html lang=\"en-GB\">", 0), 0u);
    EXPECT_NE(page.find("<meta charset=\"utf-8\">"), std::string::npos);
    for (const char* external : {"src=", "href=", "@import", "url(", "<link", "<script"})
        EXPECT_EQ(page.find(external), std::string::npos) << external;
    expectBalanced(page);

    // Sections in the order of the form (the rows in tests/data/cli_report_cases.txt).
    EXPECT_LT(page.find("<h3>Company information"), page.find("<h3>Tax calculation</h3>"));
    EXPECT_LT(page.find("<h3>Tax calculation</h3>"), page.find("<h3>Tax outstanding"));
}

TEST(ReportPage, EmbedsTheWorkedComputationAsTheLibraryWroteIt) {
    const auto dir = scratch("worked");
    ASSERT_EQ(RunCli("calc --report " + dir.string() + " " + example("sample-return.json")).status, 0);
    const std::string fragment = slurp(dir / "calc.htm");
    ASSERT_NE(fragment.find("182/365 x 185650 = 92571<BR>"), std::string::npos) << fragment;
    const std::string page = reportOf(example("sample-return.json"));
    EXPECT_NE(page.find("<div class=\"worked\">\n" + fragment + "\n</div>"), std::string::npos);
}

TEST(ReportPage, WithoutDatesNoProfitOrOutputFile) {
    // A return without dates gets no computation, and none of an earlier run.
    ASSERT_EQ(RunCli("calc " + example("sample-return.json")).status, 0);
    const std::string undated =
        reportOf(put(scratch("undated.json"), R"({"form": "ctv3", "name": "Undated Ltd", "Q155": "1000"})"));
    EXPECT_NE(undated.find("The run left no worked computation"), std::string::npos);
    EXPECT_EQ(undated.find("Financial year"), std::string::npos);
    EXPECT_NE(undated.find("<dd>not given</dd>"), std::string::npos);  // no tax reference, no period

    const std::string nil = reportOf(put(
        scratch("nil.json"), R"({"form": "ctv3", "from": "01/04/2016", "to": "31/03/2017", "Q155": "0"})"));
    EXPECT_NE(nil.find("<div class=\"worked\">\nx no profit\n"), std::string::npos);
    EXPECT_NE(nil.find("<h1>Company tax return</h1>"), std::string::npos);  // nameless

    const CliOutcome toStdout = RunCli("report " + example("sample-return.json"));
    EXPECT_EQ(toStdout.status, 0);
    EXPECT_EQ(toStdout.out.rfind("<!DOCTYPE html>", 0), 0u);
    EXPECT_EQ(toStdout.out.substr(toStdout.out.size() - 8), "</html>\n");
}

// Escapes, UTF-8, bad input and usage: cases in tests/data/cli_report_cases.txt.
TEST(ReportPage, CommandCases) {
    runCases(freshFolder("report-cases"), "cli_report_cases.txt");
}

// What a browser makes of the page: the DOM after parsing, fragment included.
TEST(ReportPage, RendersInHeadlessChromium) {
    if (RunShell("command -v chromium >/dev/null").status != 0) GTEST_SKIP() << "chromium is not on PATH; the page is not rendered";
    const std::string page = scratch("render.html").string();
    ASSERT_EQ(RunCli("report -o " + page + " " + example("sample-return.json")).status, 0);
    const std::string profile = scratch("chromium-profile").string();
    const std::string command = "timeout 120 chromium --headless --disable-gpu --no-sandbox --user-data-dir=" +
                                profile + " --dump-dom file://" + page + " 2>/dev/null";
    const CliOutcome rendered = RunShell(command);
    const std::string& dom = rendered.out;
    ASSERT_EQ(rendered.status, 0) << dom;

    EXPECT_NE(dom.find("<title>Corporation tax computation: Example Trading Limited</title>"), std::string::npos);
    EXPECT_NE(dom.find("<h1>Example Trading Limited</h1>"), std::string::npos) << dom;
    EXPECT_NE(dom.find("<td class=\"box\">165</td><td>Net trading profits</td><td class=\"value\">172,500.00</td>"),
              std::string::npos);
    // The fragment became elements, and the sections after it stand outside it.
    EXPECT_NE(dom.find("<div class=\"worked\">\n<h1>Corporation tax chargeable</h1>"), std::string::npos);
    EXPECT_NE(dom.find("<td><b>Tax Chargeable</b></td><td align=\"right\">36199.21</td>"), std::string::npos);
    EXPECT_NE(dom.find("</div>\n</section>\n<section id=\"errors\">"), std::string::npos);
    EXPECT_NE(dom.find("<footer>Recalculated by ct600 from"), std::string::npos);
}

}  // namespace
