// quick_govtalk over the form's own template: the shape of the document, the
// message around it, the attachments, and the template's folder.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/library.h"
#include "entry/exports.h"
#include "envelope_support.h"

namespace {

using envtest::compact;

struct ModelNode {
    std::string name;
    bool repeats = false;
    std::vector<ModelNode> children;
};

// Reads names and bracketed lists of children from the text at pos.
void parseChildren(const std::string& text, std::size_t& pos, ModelNode& parent) {
    while (pos < text.size()) {
        const char c = text[pos];
        if (c == ')') {
            ++pos;
            return;
        }
        if (c == ' ' || c == '\n') {
            ++pos;
            continue;
        }
        const std::size_t end = text.find_first_of(" \n()", pos);
        ModelNode node{text.substr(pos, end - pos), false, {}};
        pos = end == std::string::npos ? text.size() : end;
        if (node.name.back() == '*') {
            node.repeats = true;
            node.name.pop_back();
        }
        if (pos < text.size() && text[pos] == '(') parseChildren(text, ++pos, node);
        parent.children.push_back(std::move(node));
    }
}

ModelNode parseModel() {
    ModelNode root{"CompanyTaxReturn", false, {}};
    std::size_t pos = 0;
    std::string text = readFile(CT600_SOURCE_DIR "/tests/data/return_model.txt");
    while (text[0] == '#') text.erase(0, text.find('\n') + 1);
    parseChildren(text, pos, root);
    return root;
}

// Each element must be one the model has at that place, siblings must keep
// the model's order, and only repeating elements may stand twice.
void checkAgainstModel(const CXMLVar* node, const ModelNode& model, const std::string& path,
                       std::vector<std::string>& faults, std::set<std::string>& present) {
    int lastIndex = -1;
    std::string lastName;
    for (const CXMLVar* child : node->children) {
        const std::string name = child->name.str();
        const std::string childPath = path + "/" + name;
        present.insert(childPath);
        int index = -1;
        for (std::size_t i = 0; i < model.children.size(); ++i)
            if (model.children[i].name == name) index = static_cast<int>(i);
        if (index < 0) {
            faults.push_back("not in the model: " + childPath);
            continue;
        }
        const ModelNode& m = model.children[static_cast<std::size_t>(index)];
        if (index < lastIndex) faults.push_back("out of order: " + childPath + " after " + lastName);
        if (index == lastIndex && !m.repeats) faults.push_back("twice: " + childPath);
        lastIndex = index;
        lastName = name;
        checkAgainstModel(child, m, childPath, faults, present);
    }
}

void modelPaths(const ModelNode& node, const std::string& path, std::vector<std::string>& out) {
    for (const ModelNode& child : node.children) {
        const std::string p = path + "/" + child.name;
        out.push_back(p);
        modelPaths(child, p, out);
    }
}

class Message : public ::testing::Test {
protected:
    // The source tree's template, whatever may be installed on this machine.
    envtest::EnvGuard templates_{"CT600_TEMPLATE_DIR", envtest::templateFolder()};

    static const CXMLVar* returnOf(const CXMLVar* message) {
        return nodeAt(message, "Body/IRenvelope/CompanyTaxReturn");
    }
};

// A text each kind turns into a value, for boxes that are all filled.
const char* filledText(const CString& kind) {
    if (kind == "amount" || kind == "int") return "7";
    if (kind == "date") return "01/04/2016";
    if (kind == "flag" || kind == "yesno") return "yes";
    return "Filled text";
}

TEST_F(Message, EveryElementOfTheModelComesFromSomeBoxAndStandsInItsPlace) {
    const auto templ = envtest::loadTemplate();
    CMapStringToString boxes;
    for (const BoxMapEntry& entry : ListBoxMap(templ.get())) {
        Placeholder p;
        ASSERT_TRUE(ParsePlaceholder(entry.sources.view(), p)) << entry.path;
        for (const PlaceholderSource& source : p.sources) {
            if (source.literal) continue;
            for (const char* row : {"1", "2"}) {
                CString key = source.text;
                key.Replace("#", row);
                boxes[key] = filledText(entry.kind);
            }
        }
    }
    boxes["fileattach1"] = "accounts.html";
    boxes["fileattach2"] = "computations-ctcomp.html";
    boxes["fileattach3"] = "notice.pdf";

    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    ASSERT_NE(message, nullptr);
    const CXMLVar* doc = returnOf(message.get());
    ASSERT_NE(doc, nullptr);

    const ModelNode model = parseModel();
    std::vector<std::string> faults;
    std::set<std::string> present;
    checkAgainstModel(doc, model, "CompanyTaxReturn", faults, present);
    for (const auto& f : faults) ADD_FAILURE() << f;
    std::vector<std::string> wanted;
    modelPaths(model, "CompanyTaxReturn", wanted);
    ASSERT_EQ(wanted.size(), 480u) << "elements in the model";
    for (const auto& path : wanted) EXPECT_TRUE(present.count(path)) << "no box reaches " << path;
    EXPECT_EQ(doc->GetAttr("ReturnType"), "Filled text");

    // Rows 1 and 2 of every repeated group.
    const struct {
        const char* group;
        const char* element;
    } rows[] = {
        {"LoansByCloseCompanies/LoansInformation", "Loan"},
        {"LoansByCloseCompanies/ReliefEarlierThan", "Loan"},
        {"LoansByCloseCompanies/LoanLaterReliefNow", "Loan"},
        {"ControlledForeignCompanies", "CompanyInformation"},
        {"GroupAndConsortium/ClaimToGroupRelief/CompanyInformation", "Company"},
        {"GroupAndConsortium/SurrenderedGroupRelief/SurrenderInformation", "Company"},
        {"TonnageTax/TonnageTax/QualifyingShips", "Ship"},
        {"CrossBorderRoyalties", "Royalties"},
        {"TaxAvoidanceSchemes", "AvoidanceSchemes"},
    };
    for (const auto& r : rows) {
        const CXMLVar* group = nodeAt(doc, r.group);
        ASSERT_NE(group, nullptr) << r.group;
        EXPECT_EQ(group->CountChildren(r.element), 2) << r.group;
    }
}

TEST_F(Message, AnEmptyBoxMapGivesTheMinimalDocument) {
    const std::string minimal =
        "GovTalkMessage(Body(IRenvelope(CompanyTaxReturn[ReturnType=new](CompanyInformation(CompanyType=0) "
        "ReturnInfoSummary(Accounts Computations) CompanyTaxCalculation(Income) "
        "CalculationOfTaxOutstandingOrOverpaid Declaration))))";
    CMapStringToString boxes;
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    EXPECT_EQ(compact(message.get()), minimal);
    const std::unique_ptr<CXMLVar> fromNull(quick_govtalk(nullptr, "ctv3_16"));
    EXPECT_EQ(compact(fromNull.get()), minimal);
}

TEST_F(Message, ARecalculatedReturnShowsNoUnusedPage) {
    CMapStringToString boxes = envtest::boxesOf({{"name", "Example Trading Limited"}, {"tax_reference", "1234567890"},
                                                 {"from", "01/04/2015"}, {"to", "31/03/2016"}, {"Q155", "185000"},
                                                 {"Q160", "12500"}, {"Q170", "1250"}, {"Q205", "2400"},
                                                 {"Q210", "18000"}, {"Q215", "3000"}, {"Q240", "4000"},
                                                 {"Q250", "1500"}});
    CMapStringToString result;
    CString prefix;
    ctv3_16(&boxes, &prefix, &result);
    // The calculator has written the pages' totals as noughts.
    ASSERT_NE(boxes.PLookup("QA15"), nullptr);
    ASSERT_NE(boxes.PLookup("QF10G.1"), nullptr);

    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    const CXMLVar* doc = returnOf(message.get());
    ASSERT_NE(doc, nullptr);
    for (const char* page : {"LoansByCloseCompanies", "ControlledForeignCompanies", "GroupAndConsortium",
                             "Charity", "TonnageTax", "CrossBorderRoyalties", "RingFenceTrade", "EnhancedExpenditure",
                             "OverpaymentsAndRepayments"})
        EXPECT_EQ(doc->FindChild(page), nullptr) << page;
    // 185000 - 12500 + 1250 + 2400 + 15000 - 4000 - 1500 = 185650, all in FY 2015 at 20%.
    const struct {
        const char* path;
        const char* value;
    } expected[] = {
        {"CompanyTaxCalculation/Income/Trading/NetProfits", "172500.00"},
        {"CompanyTaxCalculation/ChargeableProfits", "185650.00"},
        {"CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Year", "2015"},
        {"CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Details/Profit", "185650.00"},
        {"CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Details/Tax", "37130.00"},
        {"CompanyTaxCalculation/TaxReliefsAndDeductions/TotalReliefsAndDeductions", "0.00"},
        {"CalculationOfTaxOutstandingOrOverpaid/TaxPayable", "37130.00"},
        {"TaxReconciliation/TaxOutstandingOrOverpaid/TaxOutstanding", "37130.00"},
    };
    for (const auto& e : expected) {
        const CXMLVar* node = nodeAt(doc, e.path);
        ASSERT_NE(node, nullptr) << e.path;
        EXPECT_EQ(node->value, e.value) << e.path;
    }
    EXPECT_EQ(nodeAt(doc, "CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearTwo"), nullptr);
    EXPECT_EQ(nodeAt(doc, "CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne")->CountChildren("Details"),
              1);
}

TEST_F(Message, AttachmentsDecideTheHeader) {
    struct Case {
        const char* what;
        std::vector<std::pair<const char*, const char*>> boxes;
        bool header;
        bool files;
    };
    const Case cases[] = {
        {"no files", {}, false, false},
        {"a PDF", {{"fileattach1", "notice.pdf"}}, true, true},
        {"inline XBRL only", {{"fileattach1", "accounts.html"}, {"fileattach2", "comp-ctcomp.html"}}, false, true},
        {"a PDF named second", {{"fileattach1", "accounts.html"}, {"fileattach2", "notice.pdf"}}, true, true},
        {"no first file", {{"fileattach2", "notice.pdf"}}, false, false},
    };
    for (const Case& c : cases) {
        CMapStringToString boxes = envtest::boxesOf(c.boxes);
        const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
        ASSERT_NE(message, nullptr) << c.what;
        EXPECT_EQ(message->FindChild("Header") != nullptr, c.header) << c.what;
        if (c.header) {
            EXPECT_EQ(nodeAt(message.get(), "Header/MessageDetails/Class")->value, "HMRC-SA-SA100-ATT");
        }
        EXPECT_EQ(nodeAt(returnOf(message.get()), "AttachedFiles") != nullptr, c.files) << c.what;
    }
}

class TemplateFolders : public ::testing::Test {
protected:
    void SetUp() override {
        base_ = std::filesystem::path(GetTempDir().str()) / "template-folders";
        std::filesystem::remove_all(base_);
        std::filesystem::create_directories(base_ / "ct");
        std::filesystem::create_directories(base_ / "suite");
        std::filesystem::create_directories(base_ / "empty");
        write(base_ / "ct" / "ctmove.xml",
              "<CompanyTaxReturn><A>{Q1}</A><MoveToParent><B>{Q2}</B><C>fixed</C></MoveToParent></CompanyTaxReturn>");
        write(base_ / "suite" / "sa100.xml", "<SA><A>{Q1}</A><MoveToParent><B>{Q2}</B></MoveToParent></SA>");
        write(base_ / "suite" / "ctmove.xml", "<Wrong/>");
    }
    void TearDown() override { std::filesystem::remove_all(base_); }

    static void write(const std::filesystem::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }

    std::filesystem::path base_;
};

// CT forms come from the template folder and lose MoveToParent; others come
// from the suite's folder and keep it.
TEST_F(TemplateFolders, EachFormFromItsFolder) {
    envtest::EnvGuard ct("CT600_TEMPLATE_DIR", (base_ / "ct").string());
    envtest::EnvGuard suite("CT600_SUITE_DIR", (base_ / "suite").string());
    CMapStringToString boxes = envtest::boxesOf({{"Q1", "a"}, {"Q2", "b"}});
    LogCapture log;
    const std::unique_ptr<CXMLVar> message(quick_govtalk(&boxes, "ctmove"));
    EXPECT_EQ(compact(message.get()), "GovTalkMessage(Body(IRenvelope(CompanyTaxReturn(A=a B=b C=fixed))))");
    EXPECT_TRUE(log.Has("quick_govtalk() template=" + (base_ / "ct").string() + "/ctmove.xml")) << log.lines.size();
    const std::unique_ptr<CXMLVar> other(quick_govtalk(&boxes, "sa100"));
    EXPECT_EQ(compact(other.get()), "GovTalkMessage(Body(IRenvelope(SA(A=a MoveToParent(B=b)))))");
}

TEST_F(TemplateFolders, AMissingTemplateGivesNullAndALogLine) {
    envtest::EnvGuard ct("CT600_TEMPLATE_DIR", (base_ / "empty").string());
    const std::string path = (base_ / "empty").string() + "/ctv3_16.xml";
    std::filesystem::remove(GetTempDir().str() + "/t.xml");
    CMapStringToString boxes = envtest::boxesOf({{"fileattach1", "a.pdf"}});
    LogCapture log;
    EXPECT_EQ(quick_govtalk(boxes), nullptr);
    EXPECT_TRUE(log.Has("quick_govtalk() template=" + path));
    EXPECT_TRUE(log.Has("quick_govtalk() " + path + " missing"));
    EXPECT_FALSE(std::filesystem::exists(GetTempDir().str() + "/t.xml"));
    EXPECT_EQ(boxes.PLookup("fileattach2"), nullptr);  // the attachments were never looked at
}

TEST_F(TemplateFolders, ABrokenTemplateStillGivesAMessage) {
    write(base_ / "ct" / "ctbroken.xml", "<CompanyTaxReturn><A>{Q1}</A><B>");
    write(base_ / "ct" / "ctempty.xml", "");
    envtest::EnvGuard ct("CT600_TEMPLATE_DIR", (base_ / "ct").string());
    CMapStringToString boxes = envtest::boxesOf({{"Q1", "a"}, {"fileattach1", "x.pdf"}});
    const std::unique_ptr<CXMLVar> broken(quick_govtalk(&boxes, "ctbroken"));
    EXPECT_EQ(compact(nodeAt(broken.get(), "Body/IRenvelope")),
              "IRenvelope(CompanyTaxReturn(A=a B AttachedFiles(Attachment[Filename=x.pdf][FileFormat=pdf]="
              "JVBERi0xLjQKJe++)))");
    const std::unique_ptr<CXMLVar> empty(quick_govtalk(&boxes, "ctempty"));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(nodeAt(empty.get(), "Body/IRenvelope")->children.size(), 1u);
}

TEST(MessageDefaults, TheTemplateIsFoundWithoutAnySetting) {
    if (std::getenv("CT600_TEMPLATE_DIR")) GTEST_SKIP() << "the template folder is set from outside";
    EXPECT_TRUE(exists(JoinPath(GetCTdir(), "ctv3_16", ".xml")));
    CMapStringToString boxes;
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    EXPECT_NE(message, nullptr);
}

}  // namespace
