// The filing message: its envelope, its IRmark checked by a second route
// (xmllint's canonical form, openssl's SHA-1, base64), the rules on its
// IRheader, the host export, and where the password may and may not go.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "common/library.h"
#include "entry/submission.h"
#include "entry/validate.h"
#include "envelope_support.h"
#include "support/table.h"
#include "rules/rules.h"
#include "support/run_cli.h"

namespace {

namespace fs = std::filesystem;
using envtest::boxesFromJsonFile;
using envtest::sourcePath;

const std::string kSample = sourcePath("examples/sample-return.json");
const std::string kFull = sourcePath("examples/full-return.json");

CMapStringToString sample() { return boxesFromJsonFile(kSample); }

SubmissionSettings credentials(bool test = false) {
    SubmissionSettings s;
    s.senderId = "CT600SENDER";
    s.password = "pass&<word>";
    s.vendorId = "8001";
    s.test = test;
    return s;
}

std::string submissionText(CMapStringToString boxes, const SubmissionSettings& settings) {
    CString text;
    EXPECT_TRUE(SubmissionText(boxes, settings, text));
    return text.str();
}

std::string irmarkIn(const std::string& text) {
    const std::string open = "<IRmark Type=\"generic\">";
    const std::size_t from = text.find(open), to = text.find("</IRmark>");
    return from == std::string::npos || to == std::string::npos ? "" : text.substr(from + open.size(), to - from - open.size());
}

// The second route: the Body cut out as text, the envelope's namespace put on
// it and the IRmark element taken out, then xmllint --c14n | SHA-1 | base64.
std::string irmarkByTools(const std::string& message) {
    const std::size_t open = message.find("<Body>"), close = message.find("</Body>");
    if (open == std::string::npos || close == std::string::npos) return "no Body";
    std::string body = message.substr(open, close + 7 - open);
    body.replace(0, 6, "<Body xmlns=\"http://www.govtalk.gov.uk/CM/envelope\">");
    if (const std::size_t mark = body.find("<IRmark"); mark != std::string::npos) {
        const std::size_t end = body.find('>', mark);
        const std::size_t close = body[end - 1] == '/' ? end + 1 : body.find("</IRmark>", mark) + 9;
        body.erase(mark, close - mark);
    }
    const fs::path file = fs::path(GetTempDir().str()) / "body.xml";
    std::ofstream(file, std::ios::binary) << "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n" << body;
    std::string mark = RunShell("xmllint --c14n " + file.string() + " | openssl dgst -sha1 -binary | base64").out;
    while (!mark.empty() && mark.back() == '\n') mark.pop_back();
    return mark;
}

int occurrences(const std::string& text, const std::string& word) {
    int n = 0;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++n;
    return n;
}

// ---------------------------------------------------------------- the IRmark

TEST(Submission, TheIRmarkAgreesWithASecondRoute) {
    struct Case {
        const char* what;
        std::vector<std::pair<const char*, const char*>> changes;
        bool test;
    };
    const Case cases[] = {
        {"the sample return, live", {}, false},
        {"the sample return, test service", {}, true},
        // é is one byte (E9) in the message and two in the canonical UTF-8.
        {"Latin-1 letters and markup in a name", {{"name", "Caf\xe9 & Fils <Ltd> \"Nord\""}}, false},
        {"attachments of both kinds",
         {{"fileattach1", "accounts-2017.html"}, {"fileattach2", "ctcomp-2017.html"}, {"fileattach3", "notes.pdf"}},
         false},
        {"no tax reference and no period", {{"tax_reference", ""}, {"to", ""}, {"from", ""}}, false},
    };
    for (const Case& c : cases) {
        CMapStringToString boxes = sample();
        for (const auto& [key, value] : c.changes) boxes[key] = value;
        const std::string text = submissionText(boxes, credentials(c.test));
        const std::string mark = irmarkIn(text);
        EXPECT_EQ(mark.size(), 28u) << c.what;  // 20 bytes in base64
        EXPECT_EQ(irmarkByTools(text), mark) << c.what;
        // A message with its IRmark filled in gives the same mark again.
        EXPECT_EQ(ComputeIRmark(text.c_str()).str(), mark) << c.what;
    }
}

// Only the Body counts, and only as canonical XML: an edit anywhere in it
// (layout included) changes the mark; an edit outside it, to the mark's own
// text or to how the same XML is written does not.
TEST(Submission, TheIRmarkFollowsTheBodyAlone) {
    const std::string base = submissionText(sample(), credentials());
    const std::string mark = irmarkIn(base);
    struct Case {
        const char* what;
        const char* from;
        const char* to;
        bool changes;
    };
    const Case cases[] = {
        {"one letter of the company name", "Example Trading", "Example Tradinh", true},
        {"a date of the return", "<From>2016-10-01</From>", "<From>2016-10-02</From>", true},
        {"the IRheader's period end", "<PeriodEnd>2017-09-30", "<PeriodEnd>2017-09-29", true},
        {"one more blank of layout in the Body", "\n      <IRheader>", "\n       <IRheader>", true},
        {"the return type attribute", "ReturnType=\"new\"", "ReturnType=\"amended\"", true},
        {"the sender id", "CT600SENDER", "CT600SENDEX", false},
        {"the password", "pass&amp;", "pass&amp;x", false},
        {"the test flag", "<GatewayTest>0</GatewayTest>", "<GatewayTest>1</GatewayTest>", false},
        {"the IRmark's own text", mark.c_str(), "AAAAAAAAAAAAAAAAAAAAAAAAAAA=", false},
        {"a quote style in the Body", "Key Type=\"UTR\">1234567890</Key>\n        </Keys>\n        <PeriodEnd>",
         "Key Type='UTR'>1234567890</Key>\n        </Keys>\n        <PeriodEnd>", false},
        {"a character reference for a letter", "<Sender>Company</Sender>", "<Sender>&#67;ompany</Sender>", false},
    };
    for (const Case& c : cases) {
        std::string edited = base;
        const std::size_t at = edited.find(c.from);
        ASSERT_NE(at, std::string::npos) << c.what;
        edited.replace(at, std::strlen(c.from), c.to);
        const CString again = ComputeIRmark(edited.c_str());
        EXPECT_EQ(again.str() != mark, c.changes) << c.what;
        EXPECT_EQ(irmarkByTools(edited), again.str()) << c.what;
    }
}

TEST(Submission, NoIRmarkForWhatIsNoMessage) {
    const char* texts[] = {
        "",
        "<GovTalkMessage xmlns=\"http://www.govtalk.gov.uk/CM/envelope\"><Body>",  // cut short
        "<GovTalkMessage><Body/></GovTalkMessage>",                                 // no namespace
        "<GovTalkMessage xmlns=\"http://www.govtalk.gov.uk/CM/envelope\"><Header/></GovTalkMessage>",
    };
    for (const char* text : texts) {
        CString problem;
        EXPECT_TRUE(ComputeIRmark(text, &problem).IsEmpty()) << text;
        EXPECT_FALSE(problem.IsEmpty()) << text;
    }
}

// ---------------------------------------------------------------- the envelope

TEST(Submission, TheEnvelopeHoldsTheHeaderAndTheValidationsReturn) {
    for (const bool test : {false, true}) {
        CMapStringToString boxes = sample();
        const std::unique_ptr<CXMLVar> message(submission_govtalk(boxes, credentials(test)));
        ASSERT_NE(message, nullptr);
        int checked = 0;
        for (const std::vector<std::string>& f : testdata::rows("submission_envelope.tsv", 2)) {
            std::string p = f[0], attribute;
            const std::string& path = f[0];
            const std::string value = f[1] == "{test}" ? (test ? "1" : "0") : f[1];
            ++checked;
            if (const auto at = p.find('@'); at != std::string::npos) {
                attribute = p.substr(at + 1);
                p = at ? p.substr(0, at - 1) : "";
            }
            const CXMLVar* node = nodeAt(message.get(), p);
            ASSERT_NE(node, nullptr) << path;
            EXPECT_EQ((attribute.empty() ? node->value : node->GetAttr(attribute.c_str())).str(), value) << path;
        }
        EXPECT_EQ(checked, 24);
        // The order of the parts, as the envelope's schema has it.
        EXPECT_EQ(envtest::compact(message->FindChild("GovTalkDetails")).substr(0, 40),
                  "GovTalkDetails(Keys(Key[Type=UTR]=123456");
        std::string order;
        for (const CXMLVar* child : nodeAt(message.get(), "Body/IRenvelope/IRheader")->children)
            order += child->name.str() + " ";
        EXPECT_EQ(order, "Keys PeriodEnd DefaultCurrency IRmark Sender ");
    }

    // The return document is the validation's, byte for byte, attachments included.
    CMapStringToString boxes = boxesFromJsonFile(kFull);
    CMapStringToString same = boxes;
    const std::unique_ptr<CXMLVar> validation(quick_govtalk(boxes));
    const std::unique_ptr<CXMLVar> message(submission_govtalk(same, credentials()));
    const CXMLVar* envelope = nodeAt(message.get(), "Body/IRenvelope");
    ASSERT_EQ(envelope->GetChildCount(), 2);
    CString expected, got;
    nodeAt(validation.get(), "Body/IRenvelope/CompanyTaxReturn")->Save(expected, 0);
    envelope->children[1]->Save(got, 0);
    EXPECT_EQ(got, expected);
    EXPECT_NE(got.Find("<Attachment Filename=\"group-relief-notices.pdf\""), -1);
}

// ---------------------------------------------------------------- validation

TEST(Submission, ValidationOfTheFullMessageChecksTheKeys) {
    envtest::EnvGuard today("CT600_TODAY", "2018-06-30");
    const std::string noKey = "5004:At least one key must exist in the IRHeader";
    const std::string keysDiffer = "5005:Keys in the GovTalkDetails do not match those in the IRheader.";

    // The full example is clean as a return and as a filed message alike.
    CMapStringToString full = boxesFromJsonFile(kFull);
    const std::unique_ptr<CXMLVar> clean(ValidateSubmission(full, credentials()));
    EXPECT_EQ(errorTexts(*clean), std::vector<std::string>{});

    // Without a tax reference the IRheader has no key: 5004, beyond what the return shows.
    CMapStringToString bare = boxesFromJsonFile(kFull);
    bare.RemoveKey("tax_reference");
    CMapStringToString bareToo = bare;
    const std::unique_ptr<CXMLVar> plain(ValidateReturn(bare));
    const std::unique_ptr<CXMLVar> filed(ValidateSubmission(bareToo, credentials()));
    const auto plainTexts = errorTexts(*plain), filedTexts = errorTexts(*filed);
    EXPECT_EQ(std::count(plainTexts.begin(), plainTexts.end(), noKey), 0);
    EXPECT_EQ(std::count(filedTexts.begin(), filedTexts.end(), noKey), 1);

    // A GovTalkDetails key that is not the IRheader's: 5005, once for the one key.
    CMapStringToString boxes = boxesFromJsonFile(kFull);
    const std::unique_ptr<CXMLVar> message(submission_govtalk(boxes, credentials()));
    for (const char* utr : {"1234567890", "1234567891"}) {
        nodeAt(message.get(), "GovTalkDetails/Keys/Key")->value = utr;
        CXMLVar errors("Errors");
        RunRules(message.get(), &errors);
        const auto texts = errorTexts(errors);
        EXPECT_EQ(std::count(texts.begin(), texts.end(), keysDiffer), utr[9] == '0' ? 0 : 1) << utr;
    }
}

// ---------------------------------------------------------------- the host export

TEST(Submission, TheExportGivesTheSameMessageAndLeavesTheBoxes) {
    void* handle = dlopen(CT600_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    using Build = int (*)(CMapStringToString*, const char*, const char*, const char*, int, CString*);
    const auto build = reinterpret_cast<Build>(dlsym(handle, "ct600lib_submission"));
    ASSERT_NE(build, nullptr);
    CMapStringToString boxes = sample();
    const int before = boxes.GetCount();
    CString text;
    EXPECT_EQ(build(&boxes, "CT600SENDER", "pass&<word>", "8001", 1, &text), 1);
    EXPECT_EQ(boxes.GetCount(), before);  // no attachment keys added
    EXPECT_EQ(text.str(), submissionText(sample(), credentials(true)));
    EXPECT_EQ(build(nullptr, nullptr, nullptr, nullptr, 0, nullptr), 1);  // nulls are empty
    {
        envtest::EnvGuard nowhere("CT600_TEMPLATE_DIR", "/no/such/folder");
        EXPECT_EQ(build(&boxes, "a", "b", "c", 0, &text), 0);
        EXPECT_TRUE(text.IsEmpty());
    }
    dlclose(handle);
}

// ---------------------------------------------------------------- the command

// The password reaches the message's Authentication/Value and nothing else:
// not the other output, not the log, not the temporary folder, not an error.
TEST(SubmissionCommand, ThePasswordGoesOnlyIntoAuthenticationValue) {
    const std::string password = "Pw7-unlikely-Qz9";
    const fs::path dir = fs::path(GetTempDir().str()) / "password";
    fs::remove_all(dir);
    fs::create_directories(dir / "tmp");
    fs::create_directories(dir / "out");
    const std::string env = "CT600_TEMP_DIR=" + (dir / "tmp").string() + " CT600_LOG_FILE=" +
                            (dir / "tmp/ct600.log").string() + " CT600_SENDER_ID=S1 CT600_VENDOR_ID=V1 ";
    const std::string out = (dir / "out/filed.xml").string();
    struct Case {
        std::string environment, arguments;
        int status;
        int inOutput;  // the password in standard output and error together
    };
    const Case cases[] = {
        {env + "CT600_SENDER_PASSWORD=" + password, "message --submission --test " + kSample, 0, 1},
        {"printf '" + password + "\\n' | " + env, "message --submission --password-stdin -o " + out + " " + kSample,
         0, 0},
        {env + "CT600_SENDER_PASSWORD=" + password, "message --submission -o /no/such/folder/x.xml " + kSample, 2, 0},
        {env + "CT600_SENDER_PASSWORD=" + password, "message --submission /no/such/return.json", 2, 0},
        {env + "CT600_SENDER_PASSWORD=" + password, "validate --submission " + kSample, 1, 0},
        {env + "CT600_SENDER_PASSWORD=" + password, "validate --submission --xml " + kSample, 1, 0},
    };
    for (const Case& c : cases) {
        const CliOutcome o = RunCli(c.arguments, c.environment);
        EXPECT_EQ(o.status, c.status) << c.arguments << "\n" << o.out;
        EXPECT_EQ(occurrences(o.out, password), c.inOutput) << c.arguments;
        if (c.inOutput) {
            EXPECT_EQ(occurrences(o.out, "<Value>" + password + "</Value>"), 1) << c.arguments;
        }
    }
    const std::string written = readFile(out);
    EXPECT_EQ(occurrences(written, password), 1);
    EXPECT_EQ(occurrences(written, "<Value>" + password + "</Value>"), 1);
    EXPECT_EQ(fs::status(out).permissions() & fs::perms::all, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir / "out"), fs::directory_iterator()), 1);  // no temp left

    int scanned = 0;
    for (const auto& entry : fs::recursive_directory_iterator(dir / "tmp")) {
        if (!entry.is_regular_file()) continue;
        ++scanned;
        EXPECT_EQ(occurrences(readFile(entry.path().string()), password), 0) << entry.path();
    }
    EXPECT_GE(scanned, 1);  // the log at least; each run removes its own folder, t.xml with it
}

}  // namespace
