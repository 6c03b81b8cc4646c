// The model of the message frame, the header, CompanyInformation,
// ReturnInfoSummary and Turnover, on a valid message with one fault per case.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "schema/table.h"
#include "support.h"

using namespace schematest;

namespace {

// Every optional element of the first sections once, with valid values, and
// the sections every return has, valid as the schema gives them.
const std::string kValidMessage = readFile(CT600_SOURCE_DIR "/tests/data/schema_valid_message.xml");

const std::string H = "Body/IRenvelope/IRheader/";
const std::string R = "Body/IRenvelope/CompanyTaxReturn/";
const std::string CI = R + "CompanyInformation/";
const std::string RIS = R + "ReturnInfoSummary/";

std::string v(const std::string& label, const std::string& value, const std::string& message) {
    return label + ": value \"" + value + "\" - " + message;
}

const std::string kPlain = "[A-Za-z0-9 ,\\.\\(\\)/&'\\-\"!%\\*_\\+:@<>\\?=;]*";
const std::string kName = "[^\xA3$#~\x82\xAC]+";
const std::string kAddress =
    "[A-Za-z0-9 ~!\"@#$%&'\\(\\)\\*\\+,\\-\\./:;<=>\\?\\[\\\\\\]^_\\{\\}\xA3\x82\xAC]*";
const std::string kHeader = "[A-Za-z0-9 &'\\(\\)\\*,\\-\\./]*";
const std::string kDate = "\\d{4}-\\d{2}-\\d{2}";
const std::string kPerson = "[A-Za-z][A-Za-z'\\-]*";
const std::string kSenders =
    "\"Individual\", \"Company\", \"Agent\", \"Bureau\", \"Partnership\", \"Trust\", \"Employer\", "
    "\"Government\", \"Acting in Capacity\", \"Other\"";

struct ModelCase {
    const char* what;
    Edits edits;
    std::vector<std::string> expected;
};

// The table builds without a fault.
TEST(Model, TheReturnTableHasNoFaults) {
    const CStringArray& problems = ReturnSchema().Problems();
    EXPECT_EQ(std::vector<std::string>(problems.begin(), problems.end()), std::vector<std::string>{});
}

TEST(Model, TheValidMessageGivesNoErrors) {
    auto doc = parse(kValidMessage);
    EXPECT_EQ(walk(doc.get()), std::vector<std::string>{});
    // The walk reaches schemawalk's table: the same document with one fault does report.
    at(doc.get(), CI + "CompanyType")->value = "x";
    EXPECT_FALSE(walk(doc.get()).empty());
    // No document, nothing to walk.
    CXMLVar errors("Errors");
    schemawalk(nullptr, &errors);
    EXPECT_TRUE(errors.children.empty());
}

void runCases(const std::vector<ModelCase>& cases) {
    for (const ModelCase& c : cases) {
        auto doc = parse(kValidMessage);
        for (const Edit& e : c.edits) apply(doc.get(), e);
        EXPECT_EQ(walk(doc.get()), c.expected) << c.what;
    }
}

TEST(Model, CompanyInformation) {
    runCases({
        {"company type above 10", {set(CI + "CompanyType", "11")},
         {v("Company Type", "11", "must be less than or equal to 10")}},
        {"company type below 0", {set(CI + "CompanyType", "-1")},
         {v("Company Type", "-1", "must be greater than of equal to 0")}},
        {"company type not whole", {set(CI + "CompanyType", "1.5")}, {v("Company Type", "1.5", "must be integer")}},
        {"company type 10", {set(CI + "CompanyType", "10")}, {}},
        {"one-character registration number", {set(CI + "RegistrationNumber", "A")},
         {v("Registration Number", "A", "less than minimum 2 characters"),
          v("Registration Number", "A", fails("[A-Z0-9]{2,8}"))}},
        {"registration number in lower case", {set(CI + "RegistrationNumber", "sc123456")},
         {v("Registration Number", "sc123456", fails("[A-Z0-9]{2,8}"))}},
        {"registration number with a blank: plain text, not the pattern", {set(CI + "RegistrationNumber", "SC 12345")},
         {v("Registration Number", "SC 12345", fails("[A-Z0-9]{2,8}"))}},
        {"registration number with a hash", {set(CI + "RegistrationNumber", "SC#12345")},
         {v("Registration Number", "SC#12345", fails(kPlain)), v("Registration Number", "SC#12345", fails("[A-Z0-9]{2,8}"))}},
        {"company name with a pound sign", {set(CI + "CompanyName", "\xA3" "5 Stores")},
         {v("Company Name", "\xA3" "5 Stores", fails(kPlain)), v("Company Name", "\xA3" "5 Stores", fails(kName))}},
        {"empty company name", {set(CI + "CompanyName", "")},
         {v("Company Name", "", fails(kName)), v("Company Name", "", "less than minimum 2 characters")}},
        {"company name of 57 characters", {set(CI + "CompanyName", std::string(57, 'A'))},
         {v("Company Name", std::string(57, 'A'), "greater than maximum 56 characters")}},
        {"company name of 56 characters", {set(CI + "CompanyName", std::string(56, 'A'))}, {}},
        {"company name with bytes of another code page", {set(CI + "CompanyName", "Caf\xC3\xA9")},
         {v("Company Name", "Caf\xC3\xA9", fails(kPlain))}},
        {"eleven digits in the reference", {set(CI + "Reference", "12345678901")},
         {v("Reference", "12345678901", "must be 10 characters"), v("Reference", "12345678901", fails("[0-9]{10}"))}},
        {"a reference with a letter", {set(CI + "Reference", "123456789X")},
         {v("Reference", "123456789X", fails("[0-9]{10}"))}},
        {"period starting before April 2015", {set(CI + "PeriodCovered/From", "2015-03-31")},
         {v("From", "2015-03-31", "must be greater than of equal to 2015-04-01")}},
        {"period starting on 1 April 2015", {set(CI + "PeriodCovered/From", "2015-04-01")}, {}},
        {"a start date in the text form", {set(CI + "PeriodCovered/From", "01/04/2023")},
         {v("From", "01/04/2023", fails(kDate)), v("From", "01/04/2023", "must be greater than of equal to 2015-04-01")}},
        {"an end date in the text form", {set(CI + "PeriodCovered/To", "31/03/2024")},
         {v("To", "31/03/2024", fails(kDate))}},
        {"period without its end", {drop(CI + "PeriodCovered/To")}, {"PeriodCovered: need at least 1 To"}},
        {"period with two ends", {add(CI + "PeriodCovered", "To", "2024-03-31")},
         {"PeriodCovered: At most 1 To allowed"}},
        {"no registration number is fine", {drop(CI + "RegistrationNumber")}, {}},
        {"no company name", {drop(CI + "CompanyName")}, {"CompanyInformation: need at least 1 CompanyName"}},
        {"a name in lower case", {renameTo(CI + "CompanyName", "companyName")},
         {"CompanyInformation: need at least 1 CompanyName", "CompanyInformation: Element companyName unexpected"}},
        {"an element not in the list", {add(R + "CompanyInformation", "Website", "x")},
         {"CompanyInformation: Element Website unexpected"}},
        {"children in another order raise nothing",
         {drop(CI + "CompanyName"), add(R + "CompanyInformation", "CompanyName", "Brookfield Joinery")}, {}},
        {"attributes are not examined", {attr(CI + "CompanyName", "lang", "??"), attr(CI + "Reference", "x", "")}, {}},
        {"an element under a parent of another name has no test of its own",
         {add(R + "ReturnInfoSummary", "CompanyName", "")}, {"ReturnInfoSummary: Element CompanyName unexpected"}},
    });
}

TEST(Model, ReturnInfoSummary) {
    const std::string computations =
        "Computations: One of ThisPeriodComputations, DifferentPeriod, NoComputationsReason expected";
    runCases({
        {"two ThisPeriod", {add(R + "ReturnInfoSummary", "ThisPeriod", "yes")},
         {"ReturnInfoSummary: At most 1 ThisPeriod allowed"}},
        {"a flag that is not yes", {set(RIS + "ThisPeriod", "no")}, {v("This Period", "no", "must be \"yes\"")}},
        {"a flag in capitals", {set(RIS + "TransferPricing/SME", "YES")}, {v("SME", "YES", "must be \"yes\"")}},
        {"CT600G, even with yes", {add(RIS + "SupplementaryPages", "CT600G", "yes")},
         {"SupplementaryPages: At most 0 CT600G allowed"}},
        {"CT600A not yes", {set(RIS + "SupplementaryPages/CT600A", "no")}, {v("CT600A", "no", "must be \"yes\"")}},
        {"CT600A under another parent runs nothing of its own", {add(R + "Turnover", "CT600A", "no")},
         {"Turnover: Element CT600A unexpected"}},
        {"no accounts", {drop(RIS + "Accounts")}, {"ReturnInfoSummary: need at least 1 Accounts"}},
        {"no computations", {drop(RIS + "Computations")}, {"ReturnInfoSummary: need at least 1 Computations"}},
        {"computations without a child", {drop(RIS + "Computations/NoComputationsReason")}, {computations}},
        {"computations with a stray first child",
         {drop(RIS + "Computations/NoComputationsReason"), add(RIS + "Computations", "Other", "x"),
          add(RIS + "Computations", "ThisPeriodComputations", "yes")},
         {computations}},
        {"computations with a stray second child", {add(RIS + "Computations", "Other", "x")}, {}},
        {"both different periods under computations",
         {drop(RIS + "Computations/NoComputationsReason"), add(RIS + "Computations", "DifferentPeriod", "yes"),
          add(RIS + "Computations", "ThisPeriodComputations", "yes")},
         {}},
        {"a reason for no accounts outside the list", {set(RIS + "Accounts/NoAccountsReason", "Dormant")},
         {v("No Accounts Reason", "Dormant",
            "must be one of \"PoA differs from AP-a/cs with sep rtn\", \"Company in liquidation\", "
            "\"Not within charge to CT\", \"Company dormant\", \"Amendment - a/cs already submitted\", "
            "\"Other - PDF attached with explanation\", \"PDF accounts attached with explanation\"")}},
        {"a one-letter reason for no computations", {set(RIS + "Computations/NoComputationsReason", "X")},
         {v("No Computations Reason", "X", "less than minimum 2 characters"),
          v("No Computations Reason", "X",
            "must be one of \"PoA differs from AP-comp with sep rtn\", \"Company in liquidation\", "
            "\"Not within charge to CT\", \"Company dormant\", \"Amendment - comps already submitted\", "
            "\"Other - PDF attached with explanation\"")}},
        {"an empty transfer pricing", {drop(RIS + "TransferPricing/Adjustment"), drop(RIS + "TransferPricing/SME")}, {}},
        {"a stray under the supplementary pages", {add(RIS + "SupplementaryPages", "CT600K", "yes")},
         {"SupplementaryPages: Element CT600K unexpected"}},
    });
}

TEST(Model, Turnover) {
    runCases({
        {"turnover with pence", {set(R + "Turnover/Total", "100.50")}, {v("Total", "100.50", fails(".*\\.00"))}},
        {"turnover at the limit, as doubles hold it", {set(R + "Turnover/Total", "1000000000000000000.00")}, {}},
        {"turnover above the limit", {set(R + "Turnover/Total", "2000000000000000000.00")},
         {v("Total", "2000000000000000000.00", "must be less than or equal to 999999999999999999.00")}},
        {"negative turnover", {set(R + "Turnover/Total", "-5.00")},
         {v("Total", "-5.00", "must be greater than of equal to 0.00")}},
        {"turnover without decimals", {set(R + "Turnover/Total", "250000")},
         {v("Total", "250000", fails("-?(([1-9][0-9]*)|0)\\.[0-9]{2}")), v("Total", "250000", fails(".*\\.00"))}},
        {"turnover in words", {set(R + "Turnover/Total", "lots")},
         {v("Total", "lots", "must be a decimal number"), v("Total", "lots", fails("-?(([1-9][0-9]*)|0)\\.[0-9]{2}")),
          v("Total", "lots", fails(".*\\.00"))}},
        {"two turnovers", {add(R, "Turnover")}, {"CompanyTaxReturn: At most 1 Turnover allowed"}},
        {"no turnover", {drop(R + "Turnover")}, {}},
    });
}

TEST(Model, CompanyTaxReturn) {
    runCases({
        {"no company information", {drop(R + "CompanyInformation")},
         {"CompanyTaxReturn: need at least 1 CompanyInformation"}},
        {"no tax calculation", {drop(R + "CompanyTaxCalculation")},
         {"CompanyTaxReturn: need at least 1 CompanyTaxCalculation"}},
        {"no declaration", {drop(R + "Declaration")}, {"CompanyTaxReturn: need at least 1 Declaration"}},
        {"a section of the supplementary pages", {add(R, "JointAccounts", "yes")}, {}},
        {"a section that is not in the return", {add(R, "Extras", "x")},
         {"CompanyTaxReturn: Element Extras unexpected"}},
        {"a return under a parent of another name has no sequence test",
         {renameTo("Body/IRenvelope", "Envelope"), drop("Body/Envelope/CompanyTaxReturn/CompanyInformation")}, {}},
        {"errors in document order, and the check order within an element",
         {set(CI + "CompanyName", ""), set(CI + "CompanyType", "x"), set(RIS + "ThisPeriod", "no"),
          drop(CI + "PeriodCovered/From")},
         {v("Company Name", "", fails(kName)), v("Company Name", "", "less than minimum 2 characters"),
          v("Company Type", "x", "must be integer"), "PeriodCovered: need at least 1 From",
          v("This Period", "no", "must be \"yes\"")}},
    });
}

TEST(Model, Header) {
    runCases({
        {"a key outside the header text", {set(H + "Keys/Key", "12_34")}, {v("Key", "12_34", fails(kHeader))}},
        {"the message's own keys are tested too", {set("GovTalkDetails/Keys/Key", "12_34")},
         {v("Key", "12_34", fails(kHeader))}},
        {"keys without a key", {drop(H + "Keys/Key"), drop(H + "Keys/Key")}, {"Keys: need at least 1 Key"}},
        {"keys with a stray", {add(H + "Keys", "Lock", "1")}, {"Keys: Element Lock unexpected"}},
        {"a period end in the text form", {set(H + "PeriodEnd", "31/03/2024")},
         {v("Period End", "31/03/2024", fails(kDate))}},
        {"a principal without its contact", {drop(H + "Principal/Contact")}, {"Principal: need at least 1 Contact"}},
        {"a contact with two names and a mobile",
         {add(H + "Principal/Contact", "Name"), add(H + "Principal/Contact", "Mobile", "07700 900000")},
         {"Contact: At most 1 Name allowed", "Contact: Element Mobile unexpected"}},
        {"emails are not tested", {set(H + "Principal/Contact/Email", "not an email \xA3")}, {}},
        {"a title too long", {set(H + "Principal/Contact/Name/Ttl", "Major")},
         {v("Ttl", "Major", "greater than maximum 4 characters")}},
        {"a title with a point", {set(H + "Principal/Contact/Name/Ttl", "Mrs.")}, {v("Ttl", "Mrs.", fails(kPerson))}},
        {"an empty forename", {set(H + "Agent/Contact/Name/Fore", "")},
         {v("Fore", "", "less than minimum 1 characters"), v("Fore", "", fails(kPerson))}},
        {"a surname with an underscore", {set(H + "Agent/Contact/Name/Sur", "a_b")},
         {v("Sur", "a_b", fails("[A-Za-z0-9 ,\\.\\(\\)/&\\-']+"))}},
        {"a title under any Name, here the declaration's", {add(R + "Declaration/Name", "Ttl", "1x")},
         {v("Ttl", "1x", fails(kPerson))}},
        {"an agent id too long", {set(H + "Agent/AgentID", std::string(36, 'A'))},
         {v("Agent ID", std::string(36, 'A'), "greater than maximum 35 characters")}},
        {"an empty agent company", {set(H + "Agent/Company", "")}, {v("Company", "", "less than minimum 1 characters")}},
        {"an agent company with an at sign", {set(H + "Agent/Company", "Tax@Home")},
         {v("Company", "Tax@Home", fails(kHeader))}},
        {"an address of five lines", {add(H + "Agent/Address", "Line", "x"), add(H + "Agent/Address", "Line", "y"),
                                      add(H + "Agent/Address", "Line", "z")},
         {"Address: At most 4 Line allowed"}},
        {"an address without lines", {drop(H + "Agent/Address/Line"), drop(H + "Agent/Address/Line")},
         {"Address: need at least 1 Line"}},
        {"an empty address line", {set(H + "Agent/Address/Line", "")}, {v("Line", "", "less than minimum 1 characters")}},
        {"an address line: the lengths run ahead of the pattern",
         {set(H + "Agent/Address/Line[2]", std::string(36, '|'))},
         {v("Line", std::string(36, '|'), "greater than maximum 35 characters"), v("Line", std::string(36, '|'), fails(kAddress))}},
        {"an address line with the pound sign and the other two bytes", {set(H + "Agent/Address/Line", "\xA3\x82\xAC")}, {}},
        {"a postcode of nine characters", {set(H + "Agent/Address/PostCode", "HX7 8AA 1")},
         {v("Post Code", "HX7 8AA 1", "greater than maximum 8 characters")}},
        {"a country with a tab", {set(H + "Agent/Address/Country", "Eng\tland")},
         {v("Country", "Eng\tland", fails(kAddress))}},
        {"a currency other than sterling", {set(H + "DefaultCurrency", "EUR")},
         {v("Default Currency", "EUR", "must be \"GBP\"")}},
        {"a manifest holds no children", {add(H + "Manifest", "Contains")}, {"Manifest: Element Contains unexpected"}},
        {"the reference of a manifest",
         {add(H + "Manifest", "Contains"), add(H + "Manifest/Contains", "Reference"),
          add(H + "Manifest/Contains/Reference", "Namespace", "anything at all \xA3"),
          add(H + "Manifest/Contains/Reference", "SchemaVersion", "2022-v1.99"),
          add(H + "Manifest/Contains/Reference", "TopElementName", "")},
         {"Manifest: Element Contains unexpected"}},
        {"a manifest reference without a namespace and with a bad version",
         {add(H + "Manifest", "Contains"), add(H + "Manifest/Contains", "Reference"),
          add(H + "Manifest/Contains/Reference", "SchemaVersion", "2022-v1.99.1000"),
          add(H + "Manifest/Contains/Reference", "TopElementName", "CompanyTaxReturn")},
         {"Manifest: Element Contains unexpected", "Reference: need at least 1 Namespace",
          v("Schema Version", "2022-v1.99.1000", "greater than maximum 13 characters"),
          v("Schema Version", "2022-v1.99.1000", fails("[0-9]{4}\\-v[0-9]{1,3}\\.[0-9]{1,3}(\\.[0-9]{1,3})?"))}},
        {"a version with an underscore fails the header text first",
         {add(H + "Manifest", "Contains"), add(H + "Manifest/Contains", "Reference"),
          add(H + "Manifest/Contains/Reference", "Namespace", "x"),
          add(H + "Manifest/Contains/Reference", "SchemaVersion", "2022_v1.9"),
          add(H + "Manifest/Contains/Reference", "TopElementName", "x")},
         {"Manifest: Element Contains unexpected", v("Schema Version", "2022_v1.9", fails(kHeader)),
          v("Schema Version", "2022_v1.9", fails("[0-9]{4}\\-v[0-9]{1,3}\\.[0-9]{1,3}(\\.[0-9]{1,3})?"))}},
        {"the IR mark is never looked at", {set(H + "IRmark", "!!"), add(H + "IRmark", "Child", "x")}, {}},
        {"a sender type outside the list", {set(H + "Sender", "Robot")},
         {v("Sender", "Robot", "must be one of " + kSenders)}},
        {"a sender type of several words", {set(H + "Sender", "Acting in Capacity")}, {}},
        {"the header's own children are not counted", {add("Body/IRenvelope/IRheader", "Keys"),
                                                       add("Body/IRenvelope/IRheader", "Extra", "x")},
         {"Keys: need at least 1 Key"}},
    });
}

}  // namespace
