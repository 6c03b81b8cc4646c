// The model of the tax calculation, the reconciliation, the declaration and
// the supplementary pages, on a valid return with one fault per case.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "schema/table.h"
#include "support.h"

using namespace schematest;

namespace {

// Every section once, with its required elements and a few optional ones.
const std::string kValidReturn = readFile(CT600_SOURCE_DIR "/tests/data/schema_valid_return.xml");

const std::string R = "CompanyTaxReturn/";
const std::string CTC = R + "CompanyTaxCalculation/";
const std::string FY1 = CTC + "CorporationTaxChargeable/FinancialYearOne/";
const std::string OR = R + "OverpaymentsAndRepayments/";
const std::string PTP = OR + "PaymentToPerson/";
const std::string LCC = R + "LoansByCloseCompanies/";
const std::string CFC = R + "ControlledForeignCompanies/CompanyInformation/CFCTaxCalculation/";
const std::string GC = R + "GroupAndConsortium/";
const std::string CH = R + "Charity/";
const std::string TT = R + "TonnageTax/TonnageTax/";
const std::string SHIP = TT + "QualifyingShips/Ship/";
const std::string CBR = R + "CrossBorderRoyalties/Royalties/";
const std::string RF = R + "RingFenceTrade/CalculationOfSupplementaryCharge/";
const std::string XBRL = R + "AttachedFiles/XBRLsubmission/";

const std::string kAmount = "-?(([1-9][0-9]*)|0)\\.[0-9]{2}";
const std::string kPounds = ".*\\.00";

std::string v(const std::string& label, const std::string& value, const std::string& message) {
    return label + ": value \"" + value + "\" - " + message;
}
std::vector<std::string> times(int n, const std::vector<std::string>& texts) {
    std::vector<std::string> out;
    for (int i = 0; i < n; ++i) out.insert(out.end(), texts.begin(), texts.end());
    return out;
}

// n copies of the node at path, added after it under the same parent.
struct Copies {
    std::string path;
    int n;
};

struct SectionCase {
    const char* what;
    Edits edits;
    std::vector<std::string> expected;
    Copies copies{};
};

void runCases(const std::vector<SectionCase>& cases) {
    for (const SectionCase& c : cases) {
        auto doc = parse(kValidReturn);
        for (const Edit& e : c.edits) apply(doc.get(), e);
        if (CXMLVar* node = c.copies.n ? at(doc.get(), c.copies.path) : nullptr)
            for (int i = 0; i < c.copies.n; ++i)
                node->parent->AddChild(new CXMLVar(node->name, node->value), node)->CloneChildren(node);
        EXPECT_EQ(walk(doc.get()), c.expected) << c.what;
    }
}

TEST(Sections, TheValidReturnGivesNoErrors) {
    auto doc = parse(kValidReturn);
    EXPECT_EQ(walk(doc.get()), std::vector<std::string>{});
}

TEST(Sections, TaxCalculation) {
    const std::string rate = FY1 + "Details/TaxRate";
    runCases({
        {"a rate above 100, tested by both rows of the pair", {set(rate, "100.01")},
         times(2, {v("Tax Rate", "100.01", "must be less than or equal to 100.00")})},
        {"rates of 100 and 0", {set(rate, "100.00"), set(CTC + "CorporationTaxChargeable/FinancialYearTwo/Details/TaxRate", "0.00")}, {}},
        {"chargeable profits with pence", {set(CTC + "ChargeableProfits", "10.50")}, {v("Chargeable Profits", "10.50", fails(kPounds))}},
        {"corporation tax with pence", {set(CTC + "CorporationTax", "10.51")}, {}},
        {"a year without details", {drop(FY1 + "Details")}, {"FinancialYearOne: need at least 1 Details"}},
        {"a year with four details", {}, {"FinancialYearOne: At most 3 Details allowed"}, {FY1 + "Details", 3}},
        {"a year of 1899", {set(FY1 + "Year", "1899")}, {v("Year", "1899", "must be valid year")}},
        {"no marginal relief at nought", {set(CTC + "MarginalReliefForRingFenceTrades", "0.00")},
         {v("Marginal Relief For Ring Fence Trades", "0.00", "must be greater than 0.00")}},
        {"ring fence profits above the maximum", {set(CTC + "RingFenceProfitsIncluded", "100000000000.00")},
         {v("Ring Fence Profits Included", "100000000000.00", "must be less than or equal to 99999999999.00")}},
        {"ring fence profits below nought fail the minimum twice", {set(CTC + "RingFenceProfitsIncluded", "-1.00")},
         times(2, {v("Ring Fence Profits Included", "-1.00", "must be greater than of equal to 0.00")})},
        {"gains without the net gains", {drop(CTC + "ChargeableGains/NetChargeableGains")},
         {"ChargeableGains: need at least 1 NetChargeableGains"}},
        {"income stated net not yes", {set(CTC + "Income/IncomeStatedNet", "no")}, {v("Income Stated Net", "no", "must be \"yes\"")}},
        {"a stray under deductions", {add(CTC + "DeductionsAndReliefs", "Other", "1.00")},
         {"DeductionsAndReliefs: Element Other unexpected"}},
        {"no net tax chargeable", {drop(CTC + "NetCorporationTaxChargeable")},
         {"CompanyTaxCalculation: need at least 1 NetCorporationTaxChargeable"}},
        {"relief of nought", {set(CTC + "TaxReliefsAndDeductions/DoubleTaxation/DoubleTaxationRelief", "0.00")},
         {v("Double Taxation Relief", "0.00", "must be greater than 0.00")}},
    });
}

TEST(Sections, ReconciliationToDeclaration) {
    runCases({
        {"no tax payable", {drop(R + "CalculationOfTaxOutstandingOrOverpaid/TaxPayable")},
         {"CalculationOfTaxOutstandingOrOverpaid: need at least 1 TaxPayable"}},
        {"tax repayable in words", {set(R + "CalculationOfTaxOutstandingOrOverpaid/IncomeTax/TaxRepayable", "x")},
         {v("Tax Repayable", "x", "must be a decimal number"), v("Tax Repayable", "x", fails(kAmount))}},
        {"two reconciliations", {add(R, "TaxReconciliation")}, {"CompanyTaxReturn: At most 1 TaxReconciliation allowed"}},
        {"a negative company count", {set(R + "IndicatorsAndInformation/NumberOf51groupCompanies", "-1")},
         {v("Number Of51group Companies", "-1", "must be non negative integer")}},
        {"land remediation with pence", {set(R + "LandRemediationEnhancedExpenditure", "1.50")},
         {v("Land Remediation Enhanced Expenditure", "1.50", fails(kPounds))}},
        {"a pool with a stray", {add(R + "AllowancesAndCharges/MachineryAndPlantMainPool", "Extra")},
         {"MachineryAndPlantMainPool: Element Extra unexpected"}},
        {"two losses of loans", {add(R + "LossesDeficitsAndExcess/AmountArising", "Loans")},
         {"AmountArising: At most 1 Loans allowed"}},
        {"a surrender of nought", {set(OR + "Surrender/Amount", "0.00")}, {v("Amount", "0.00", "must be greater than 0.00")}},
        {"a joint notice without a child", {drop(OR + "Surrender/JointNotice/Attached")},
         {"JointNotice: One of Attached, WillFollow expected"}},
        {"a joint notice with both", {add(OR + "Surrender/JointNotice", "WillFollow", "yes")}, {}},
        {"a sort code of five digits", {set(OR + "BankAccountDetails/SortCode", "40123")},
         {v("Sort Code", "40123", "less than minimum 6 characters"), v("Sort Code", "40123", fails("[0-9]{6}"))}},
        {"an account name of 29 characters", {set(OR + "BankAccountDetails/AccountName", std::string(29, 'a'))},
         {v("Account Name", std::string(29, 'a'), "greater than maximum 28 characters")}},
        {"a nominee reference of 21 characters", {set(PTP + "NomineeReference", std::string(21, 'a'))},
         {v("Nominee Reference", std::string(21, 'a'), "greater than maximum 20 characters")}},
        {"an address of one line", {drop(PTP + "Address/Line")}, {"Address: need at least 2 Line"}},
        {"an address of four lines", {}, {"Address: At most 3 Line allowed"}, {PTP + "Address/Line", 2}},
        {"a payee's postcode of nine characters", {set(PTP + "Address/PostCode", "HX7 8AA 1")},
         {v("Post Code", "HX7 8AA 1", "greater than maximum 8 characters")}},
        {"a declaration name of one letter, tested by both rows", {set(R + "Declaration/Name", "M")},
         times(2, {v("Name", "M", "less than minimum 2 characters")})},
        {"a declaration without status", {drop(R + "Declaration/Status")}, {"Declaration: need at least 1 Status"}},
        {"declining the declaration", {set(R + "Declaration/AcceptDeclaration", "no")},
         times(2, {v("Accept Declaration", "no", "must be \"yes\"")})},
    });
}

TEST(Sections, PagesAToD) {
    runCases({
        {"a loan's bad name, three times", {set(LCC + "LoansInformation/Loan/Name", "")},
         times(3, {v("Name", "", fails("[^\xA3$#~\x82\xAC]+")), v("Name", "", "less than minimum 2 characters")})},
        {"a repayment of nought, twice", {set(LCC + "ReliefEarlierThan/Loan/AmountRepaid", "0.00")},
         times(2, {v("Amount Repaid", "0.00", "must be greater than 0.00")})},
        {"a loan without its date", {drop(LCC + "ReliefEarlierThan/Loan/Date")}, {"Loan: need at least 1 Date"}},
        {"total loans above the maximum, tested once more", {set(LCC + "LoansInformation/TotalLoans", "100000000000.00")},
         times(2, {v("Total Loans", "100000000000.00", "must be less than or equal to 99999999999.00")})},
        {"total loans later: the maximum once", {set(LCC + "LoanLaterReliefNow/TotalLoans", "100000000000.00")},
         {v("Total Loans", "100000000000.00", "must be less than or equal to 99999999999.00")}},
        {"page A without tax payable", {drop(LCC + "TaxPayable")}, {"LoansByCloseCompanies: need at least 1 TaxPayable"}},
        {"the children of a named type are not counted", {add(LCC + "LoansInformation", "Extra")}, {}},
        {"a CFC page without a company", {drop(R + "ControlledForeignCompanies/CompanyInformation")},
         {"ControlledForeignCompanies: need at least 1 CompanyInformation"}},
        {"a percentage of nought", {set(CFC + "Percentage", "0.00")}, {v("Percentage", "0.00", "must be greater than 0.00")}},
        {"a percentage above 100", {set(CFC + "Percentage", "100.01")},
         {v("Percentage", "100.01", "must be less than or equal to 100.00")}},
        {"a percentage of 1000", {set(CFC + "Percentage", "1000.00")},
         {v("Percentage", "1000.00", fails("[0-9]{1,3}\\.[0-9]{2}")), v("Percentage", "1000.00", "must be less than or equal to 100.00")}},
        {"a group company's short reference, twice", {set(GC + "ClaimToGroupRelief/CompanyInformation/Company/TaxReference", "AB12")},
         times(2, {v("Tax Reference", "AB12", "less than minimum 8 characters")})},
        {"a claim without companies", {drop(GC + "ClaimToGroupRelief/CompanyInformation/Company")},
         {"CompanyInformation: need at least 1 Company"}},
        {"an authorisation first child out of the list", {renameTo(GC + "ClaimToGroupRelief/ClaimAuthorisation/AuthorisationForSimplifiedArrangements", "Other")},
         {"ClaimAuthorisation: One of CopyOfNoticesOfConsentAttached, AuthorisationForSimplifiedArrangements expected"}},
        {"an empty surrendered amount", {set(GC + "SurrenderedGroupRelief/SurrenderInformation/Company/AmountSurrendered", "")},
         {v("Amount Surrendered", "", "must be a decimal number"), v("Amount Surrendered", "", fails(kAmount)), v("Amount Surrendered", "", fails(kPounds))}},
        {"a consent declaration with a short reference",
         {set(GC + "SurrenderedGroupRelief/ConsentToSurrender/Declaration/TaxReference", "123")},
         {v("Tax Reference", "123", "must be 10 characters"), v("Tax Reference", "123", fails("[0-9]{10}"))}},
        {"a consent declaration's period without its end",
         {drop(GC + "SurrenderedGroupRelief/ConsentToSurrender/Declaration/AccountingPeriod/To")},
         {"AccountingPeriod: need at least 1 To"}},
        {"page D's declaration is not counted, its name is tested twice", {set(R + "Insurance/Declaration/Name", "A")},
         times(2, {v("Name", "A", "less than minimum 2 characters")})},
    });
}

TEST(Sections, PagesEToJ) {
    runCases({
        {"a charity reference of another scheme", {set(CH + "ClaimExemption/RepaymentReference", "AB123")},
         {v("Repayment Reference", "AB123", fails("(X[NRT]?|C[RH]|Z[BCDEFGHJKN]|EW|ST|NI)[0-9]{1,9}"))}},
        {"a charity registration of five characters", {add(CH + "ClaimExemption", "RegistrationNumber", "12345")},
         {v("Registration Number", "12345", "less than minimum 6 characters")}},
        {"all charitable without a child", {drop(CH + "ClaimExemption/Status/AllCharitable/AllExempt")},
         {"AllCharitable: One of AllExempt, SomeNotOnlyCharitable expected"}},
        {"a charity's income without its total", {drop(CH + "InformationRequired/Income/Total")}, {"Income: need at least 1 Total"}},
        {"a thousand subsidiaries", {set(CH + "InformationRequired/Assets/SubsidiaryOrAssociatedCompanies", "1000")},
         {v("Subsidiary Or Associated Companies", "1000", "must be less than or equal to 999")}},
        {"two tonnage tax elements", {}, {"TonnageTax: At most 1 TonnageTax allowed"}, {R + "TonnageTax/TonnageTax", 1}},
        {"a training certificate missing", {drop(TT + "Information/TrainingCertificate")},
         {"Information: need at least 1 TrainingCertificate"}},
        {"a limit answer outside the list", {set(TT + "Information/CompanyMetCharteredInLimit", "maybe")},
         {v("Company Met Chartered In Limit", "maybe", "must be one of \"no\", \"yes\", \"na\"")}},
        {"other shipping profits with another first child", {renameTo(TT + "RelevantShippingProfits/Other/Profit", "Gain")},
         {"Other: One of Profit, Loss expected"}},
        {"a ship number of six digits", {set(SHIP + "IMOnumber", "999999")},
         {v("IMOnumber", "999999", fails("[1-9][0-9]{6,7}")), v("IMOnumber", "999999", "must be greater than of equal to 1000000")}},
        {"367 days", {set(SHIP + "NumberDays", "367")}, {v("Number Days", "367", "must be less than or equal to 366")}},
        {"an interest outside the list", {set(SHIP + "InterestInShip", "X")},
         {v("Interest In Ship", "X", "must be one of \"O\", \"F\", \"T\", \"G\"")}},
        {"200 ships", {}, {}, {SHIP, 199}},
        {"201 ships", {}, {"QualifyingShips: At most 200 Ship allowed"}, {SHIP, 200}},
        {"royalties missing", {drop(CBR)}, {"CrossBorderRoyalties: need at least 1 Royalties"}},
        {"a recipient address of one line", {drop(CBR + "AddressOfRecipient/Line")}, {"AddressOfRecipient: need at least 2 Line"}},
        {"a deduction above the maximum, tested once more", {set(CBR + "DeductionAmount", "100000000000.00")},
         times(2, {v("Deduction Amount", "100000000000.00", "must be less than or equal to 99999999999.99")})},
        {"a trade with another child", {add(RF + "Trade", "Gains", "yes")}, {"Trade: Element Gains unexpected"}},
        {"a trade's profits flag not yes", {set(RF + "Trade/Profits", "no")}, {v("Profits", "no", "must be \"yes\"")}},
        {"profits under the charge are amounts", {set(RF + "Profits", "yes")},
         {v("Profits", "yes", "must be a decimal number"), v("Profits", "yes", fails(kAmount)), v("Profits", "yes", fails(kPounds))}},
        {"page I without the charge", {drop(RF)}, {"RingFenceTrade: need at least 1 CalculationOfSupplementaryCharge"}},
        {"eleven schemes", {}, {"TaxAvoidanceSchemes: At most 10 AvoidanceSchemes allowed"},
         {R + "TaxAvoidanceSchemes/AvoidanceSchemes", 10}},
        {"a scheme number of seven digits", {set(R + "TaxAvoidanceSchemes/AvoidanceSchemes/ReferenceNumber", "1234567")},
         {v("Reference Number", "1234567", fails("[0-9]{8}"))}},
        {"a Welsh return not yes", {set(R + "WelshReturn", "no")}, {v("Welsh Return", "no", "must be \"yes\"")}},
        {"XBRL documents hold no children, under accounts and computations",
         {add(XBRL + "Computation/Instance/InlineXBRLDocument", "X"), add(XBRL + "Computation/Extension/Taxonomy", "Y")},
         {"InlineXBRLDocument: Element X unexpected", "Taxonomy: Element Y unexpected"}},
    });
}

}  // namespace
