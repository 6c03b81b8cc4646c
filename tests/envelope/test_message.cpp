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

// The return document below CompanyTaxReturn, element by element in the
// order of its sequences: a name, then its children in brackets; "*" where an
// element may repeat. A choice lists its alternatives in their order too.
const char* const kModel = R"(
CompanyInformation(CompanyName RegistrationNumber Reference CompanyType PeriodCovered(From To))
ReturnInfoSummary(ThisPeriod EarlierPeriod MultipleReturns ProvisionalFigures PartOfNonSmallGroup
  RegisteredAvoidanceScheme TransferPricing(Adjustment SME) Accounts(ThisPeriodAccounts DifferentPeriod
  NoAccountsReason) Computations(ThisPeriodComputations DifferentPeriod NoComputationsReason)
  SupplementaryPages(CT600A CT600B CT600C CT600D CT600E CT600F CT600G CT600H CT600I CT600J))
Turnover(Total OtherFinancialConcerns)
CompanyTaxCalculation(Income(Trading(Profits LossesBroughtForward NetProfits)
  NonTradingLoanProfitsAndGains IncomeStatedNet NonLoanAnnuitiesAnnualPaymentsDiscounts NonUKdividends
  DeductedIncome PropertyBusinessIncome NonTradingGainsIntangibles TonnageTaxProfits OtherIncome)
  ChargeableGains(GrossGains AllowableLosses NetChargeableGains) LossesBroughtForward
  NonTradeDeficitsOnLoans ProfitsBeforeOtherDeductions DeductionsAndReliefs(UnquotedShares
  ManagementExpenses UKpropertyBusinessLosses CapitalAllowances NonTradeDeficits
  NonTradingLossIntangibles TradingLosses TradingLossesCarriedBack NonTradeCapitalAllowances Total)
  ChargesAndReliefs(ProfitsBeforeDonationsAndGroupRelief QualifyingDonations GroupRelief)
  ChargeableProfits RingFenceProfitsIncluded CorporationTaxChargeable(FinancialYearOne(Year
  Details*(Profit TaxRate Tax)) FinancialYearTwo(Year Details*(Profit TaxRate Tax))) CorporationTax
  MarginalReliefForRingFenceTrades NetCorporationTaxChargeable
  TaxReliefsAndDeductions(CommunityInvestmentRelief DoubleTaxation(DoubleTaxationRelief UnderlyingRate
  AmountCarriedBack) AdvancedCorporationTax TotalReliefsAndDeductions))
CalculationOfTaxOutstandingOrOverpaid(NetCorporationTaxLiability LoansToParticipators CT600AreliefDue
  CFCtaxPayable BankLevyPayable CFCandBankLevyTotal SupplementaryCharge TaxChargeable
  IncomeTax(DeductedIncomeTax TaxRepayable) TaxPayable)
TaxReconciliation(ResearchAndDevelopmentCredit VaccineCredit CreativeCredit
  ResearchAndDevelopmentVaccineOrCreativeTaxCredit LandRemediationCredit LifeAssuranceCompanyCredit
  LandOrLifeCredit CapitalAllowancesFirstYearCredit
  SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable LandOrLifeCreditPayable
  CapitalAllowancesFirstYearCreditPayable RingFenceCorpTaxIncluded RingFenceSupplementaryChargeIncluded
  TaxAlreadyPaid TaxOutstandingOrOverpaid(TaxOutstanding TaxOverpaid) RefundsSurrendered
  RandDExpenditureCreditsSurrendered)
IndicatorsAndInformation(FrankedInvestmentIncome NumberOf51groupCompanies InstalmentPayments
  GroupPayment IntangibleAssets CrossBorderRoyalty)
EnhancedExpenditure(SMEclaim LargeCompanyClaim RandDEnhancedExpenditure CreativeEnhancedExpenditure
  RandDAndCreativeEnhancedExpenditure SMEclaimAsLargeCompany VaccineResearch)
LandRemediationEnhancedExpenditure
AllowancesAndCharges(AIACapitalAllowancesInc MachineryAndPlantSpecialRatePool(BalancingCharges
  CapitalAllowances) MachineryAndPlantMainPool(BalancingCharges CapitalAllowances)
  BusinessPremisesRenovationIncluded(BalancingCharges CapitalAllowances) Others(BalancingCharges
  CapitalAllowances))
NotIncluded(AIACapitalAllowancesNotInc BusinessPremisesRenovationNotIncluded(BalancingCharges
  CapitalAllowances) OtherAllowancesAndCharges(BalancingCharges CapitalAllowances))
QualifyingExpenditure(MachineryAndPlantExpenditure DesignatedEnvironmentallyFriendlyMachineryAndPlant
  MachineryAndPlantLongLife OtherMachineryAndPlant)
LossesDeficitsAndExcess(AmountArising(LossesOfTradesUK(Arising SurrenderMaximum) LossesOfTradesOutsideUK
  Loans(Arising SurrenderMaximum) UKpropertyBusinessLosses(Arising SurrenderMaximum)
  OverseasPropertyBusinessLosses MiscLosses CapitalLosses NonTradingLossesIntangibles(Arising
  SurrenderMaximum)) ExcessAmounts(NonTradeCapital QualifyingDonations ManagementExpenses(Arising
  SurrenderMaximum)))
OverpaymentsAndRepayments(OwnRepaymentsLowerLimit
  RepaymentsForThePeriodCoveredByThisReturn(CorporationTax IncomeTax RandDTaxCredit
  RandDExpenditureCredit CreativeCredit LandRemediationCredit PayableCapitalAllowancesFirstYearCredit)
  Surrender(Amount JointNotice(Attached WillFollow) StopUntilNotice) BankAccountDetails(BankName
  SortCode AccountNumber AccountName BuildingSocReference) PaymentToPerson(Recipient Address(Line*
  AdditionalLine PostCode) NomineeReference))
Declaration(AcceptDeclaration Name Status)
LoansByCloseCompanies(BeforeEndPeriod LoansInformation(Loan*(Name AmountOfLoan) TotalLoans
  TaxChargeable) ReliefEarlierThan(Loan*(Name AmountRepaid AmountReleasedOrWrittenOff Date)
  TotalAmountRepaid TotalAmountReleasedOrWritten TotalLoans ReliefDue) LoanLaterReliefNow(Loan*(Name
  AmountRepaid AmountReleasedOrWrittenOff Date) TotalAmountRepaid TotalAmountReleasedOrWritten
  TotalLoans ReliefDue) TotalLoansOutstanding TaxPayable)
ControlledForeignCompanies(CompanyInformation*(Name Territory ExemptionDue CFCTaxCalculation(Percentage
  ChargeableProfits TaxOnChargeable CreditableTax ReliefsInTaxTerms ACTrestricted CFCchargeDue))
  TotalTaxChargeable TotalCreditableTax TotalReliefInTaxTerms TotalACTrestricted TotalCFCtaxChargeble
  ForeignPermanentEstablishmentExemption)
GroupAndConsortium(ClaimToGroupRelief(CompanyInformation(Company*(Name AccountingPeriod(From To)
  TaxReference AmountClaimed) TotalAmountClaimed) NonResidentCompany LossesGeneratedAbroad
  ClaimAuthorisation(CopyOfNoticesOfConsentAttached
  AuthorisationForSimplifiedArrangements(AuthorisationWhereSimplifiedArrangement CompanyName
  NameOfAuthorisedPerson Status))) SurrenderedGroupRelief(TradingLosses ExcessNonTrading
  NonTradingDeficit ExcessDonations ExcessLosses ExcessManagementExpenses
  NonTradingLossesOnIntangibleFixedAssets TotalSurrender SurrenderInformation(Company*(Name
  AccountingPeriod(From To) TaxReference AmountSurrendered) AmountSurrenderedTotal)
  ConsentToSurrender(ConsentOptions(SimplifiedArrangementInForce NoticeOfConsentCompleted
  CopyOfNoticesOfConsentAttached) Declaration(CompanyName TaxReference AccountingPeriod(From To)
  AcceptDeclaration Name Status))))
Insurance(Declaration(AcceptDeclaration Name Status))
Charity(ClaimExemption(RepaymentReference RegistrationNumber Status(ClaimingExemptionAllOrPart
  AllCharitable(AllExempt SomeNotOnlyCharitable))) Repayments(OverclaimedTax)
  InformationRequired(Income(TotalTurnover InvestmentIncome UKlandBuildings GiftAid OtherCharities
  GiftsOfShares GiftOfRealProperty OtherSources Total) Expenditure(TradingCosts UKlandBuildings
  GeneralAdminCosts GrantsDonationsWithinUK GrantsDonationsOutsideUK OtherExpenditure Total)
  Assets(TangibleFixed(Disposals Held) UKinvestments(Disposals Held) SharesAndLoans(Disposals Held)
  OverseasInvestments(Disposals Held) LoansAndNonTradeDebtors(Held) OtherCurrent(Held)
  InvestmentsOrLoans(Qualifying ValueOfNonQualifying) SubsidiaryOrAssociatedCompanies)))
TonnageTax(TonnageTax(Information(TonnageGroup(GroupElection Name) TrainingCertificate
  CompanyMetCharteredInLimit GroupMetCharteredInLimit NotRegistered Flagging OffshoreActivities)
  OffshoreTrainingAllowance(OffsetAgainstCorpTax CarriedForward) RelevantShippingProfits(Other(Profit
  Loss) DisposalOfAssets(Profit Loss) GrossDividends) QualifyingShips(Ship*(Name IMOnumber
  InterestInShip GrossTonnage NetTonnage NumberDays Profits Flagged FirstTime) Total)))
CrossBorderRoyalties(Royalties*(RecipientName AddressOfRecipient(Line* AdditionalLine PostCode)
  PaymentType Amount RoyaltiesAgreement(InterestAndRoyalties DoubleTaxationAgreement) DeductionRate
  DeductionAmount AdditionalNotes))
RingFenceTrade(CalculationOfSupplementaryCharge(Trade(Amount Profits Losses)
  DisallowedFinancingCosts(RelatedToCompany RelatedToLossRelief Total) Profits DecommissioningAdjustment
  RevisedProfits MinusLosses DecommissioningReduction FieldAllowance NetProfits Tax) LossesArising
  NetRingFenceTrade(RingFenceCorpTaxIncluded SupplementaryChargeTax))
TaxAvoidanceSchemes(AvoidanceSchemes*(ReferenceNumber AccountingPeriod))
WelshReturn
JointAccounts
AttachedFiles(XBRLsubmission(Computation(Instance(EncodedInlineXBRLDocument))
  Accounts(Instance(EncodedInlineXBRLDocument))) Attachment*)
)";

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
    parseChildren(kModel, pos, root);
    return root;
}

// Each element must be one the model has at that place, siblings must keep
// the model's order, and only repeating elements may stand twice.
void checkAgainstModel(const CXMLVar* node, const ModelNode& model, const std::string& path,
                       std::vector<std::string>& faults) {
    int lastIndex = -1;
    std::string lastName;
    for (const CXMLVar* child : node->children) {
        const std::string name = child->name.str();
        const std::string childPath = path + "/" + name;
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
        checkAgainstModel(child, m, childPath, faults);
    }
}

void modelPaths(const ModelNode& node, const std::string& path, std::vector<std::string>& out) {
    for (const ModelNode& child : node.children) {
        const std::string p = path.empty() ? child.name : path + "/" + child.name;
        out.push_back(p);
        modelPaths(child, p, out);
    }
}

void documentPaths(const CXMLVar* node, const std::string& path, std::set<std::string>& out) {
    for (const CXMLVar* child : node->children) {
        const std::string p = path.empty() ? child->name.str() : path + "/" + child->name.str();
        out.insert(p);
        documentPaths(child, p, out);
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
    checkAgainstModel(doc, model, "CompanyTaxReturn", faults);
    for (const auto& f : faults) ADD_FAILURE() << f;

    std::set<std::string> present;
    documentPaths(doc, "", present);
    std::vector<std::string> wanted;
    modelPaths(model, "", wanted);
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

TEST_F(Message, TheFullExampleGivesEveryPageInTheModelsShape) {
    CMapStringToString boxes = envtest::boxesFromJsonFile(envtest::sourcePath("examples/full-return.json"));
    ASSERT_GT(boxes.GetCount(), 150);
    const std::unique_ptr<CXMLVar> message(quick_govtalk(boxes));
    ASSERT_NE(message, nullptr);
    const CXMLVar* doc = returnOf(message.get());
    ASSERT_NE(doc, nullptr);

    std::vector<std::string> faults;
    checkAgainstModel(doc, parseModel(), "CompanyTaxReturn", faults);
    for (const auto& f : faults) ADD_FAILURE() << f;

    struct Expect {
        const char* path;
        const char* value;
    };
    const Expect expected[] = {
        {"CompanyInformation/CompanyName", "Northwind Shipping Limited"},
        {"CompanyInformation/RegistrationNumber", "04567891"},
        {"CompanyInformation/Reference", "1234567890"},
        {"CompanyInformation/CompanyType", "0"},
        {"CompanyInformation/PeriodCovered/From", "2016-04-01"},
        {"CompanyInformation/PeriodCovered/To", "2017-03-31"},
        {"ReturnInfoSummary/RegisteredAvoidanceScheme", "yes"},
        {"ReturnInfoSummary/Accounts/ThisPeriodAccounts", "yes"},
        {"ReturnInfoSummary/Computations/ThisPeriodComputations", "yes"},
        {"ReturnInfoSummary/SupplementaryPages/CT600J", "yes"},
        {"Turnover/Total", "2450000.00"},
        {"CompanyTaxCalculation/Income/Trading/Profits", "412000.00"},
        {"CompanyTaxCalculation/Income/TonnageTaxProfits", "24330.00"},
        {"CompanyTaxCalculation/ChargeableGains/NetChargeableGains", "30000.00"},
        {"CompanyTaxCalculation/ChargeableProfits", "455000.00"},
        {"CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Year", "2016"},
        {"CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Details/TaxRate", "20.00"},
        {"CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/Details/Tax", "91000.00"},
        {"CompanyTaxCalculation/TaxReliefsAndDeductions/DoubleTaxation/DoubleTaxationRelief", "1500.00"},
        {"CalculationOfTaxOutstandingOrOverpaid/LoansToParticipators", "11250.00"},
        {"CalculationOfTaxOutstandingOrOverpaid/CT600AreliefDue", "yes"},
        {"CalculationOfTaxOutstandingOrOverpaid/TaxPayable", "127625.00"},
        {"TaxReconciliation/TaxOutstandingOrOverpaid/TaxOutstanding", "27625.00"},
        {"AllowancesAndCharges/MachineryAndPlantMainPool/CapitalAllowances", "8000.00"},
        {"Declaration/AcceptDeclaration", "yes"},
        {"Declaration/Name", "Mary Evans"},
        {"LoansByCloseCompanies/LoansInformation/Loan[2]/Name", "Alice Jones"},
        {"LoansByCloseCompanies/LoansInformation/Loan[2]/AmountOfLoan", "20000.00"},
        {"LoansByCloseCompanies/ReliefEarlierThan/Loan/Date", "2017-06-15"},
        {"LoansByCloseCompanies/LoanLaterReliefNow/ReliefDue", "1250.00"},
        {"ControlledForeignCompanies/CompanyInformation/CFCTaxCalculation/Percentage", "40.00"},
        {"GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/Company[2]/AccountingPeriod/From", "2016-01-01"},
        {"GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/TotalAmountClaimed", "19000.00"},
        {"Insurance/Declaration/Status", "Director"},
        {"Charity/InformationRequired/Income/Total", "37500.00"},
        {"Charity/InformationRequired/Assets/SubsidiaryOrAssociatedCompanies", "1"},
        {"TonnageTax/TonnageTax/Information/TonnageGroup/GroupElection", "no"},
        {"TonnageTax/TonnageTax/QualifyingShips/Ship[2]/IMOnumber", "9185463"},
        {"TonnageTax/TonnageTax/QualifyingShips/Ship/Profits", "19710.00"},
        {"TonnageTax/TonnageTax/QualifyingShips/Total", "24330.00"},
        {"CrossBorderRoyalties/Royalties/AddressOfRecipient/Line[3]", "India"},
        {"CrossBorderRoyalties/Royalties/RoyaltiesAgreement/DoubleTaxationAgreement",
         "UK India Double Taxation Convention"},
        {"RingFenceTrade/CalculationOfSupplementaryCharge/Tax", "20000.00"},
        {"TaxAvoidanceSchemes/AvoidanceSchemes/ReferenceNumber", "12345678"},
        {"TaxAvoidanceSchemes/AvoidanceSchemes/AccountingPeriod", "2017-03-31"},
    };
    for (const Expect& e : expected) {
        const CXMLVar* node = nodeAt(doc, e.path);
        ASSERT_NE(node, nullptr) << e.path;
        EXPECT_EQ(node->value, e.value) << e.path;
    }
    EXPECT_EQ(doc->GetAttr("ReturnType"), "new");
    // Boxes left empty leave no element: no CT600G tick, no repayment section.
    for (const char* absent : {"ReturnInfoSummary/SupplementaryPages/CT600G", "OverpaymentsAndRepayments",
                               "ReturnInfoSummary/ThisPeriod", "WelshReturn"})
        EXPECT_EQ(nodeAt(doc, absent), nullptr) << absent;
    // The attachments come last, sorted, and the PDF puts the class in the header.
    EXPECT_EQ(doc->children.back()->name, "AttachedFiles");
    EXPECT_EQ(compact(nodeAt(doc, "AttachedFiles")).substr(0, 50),
              "AttachedFiles(XBRLsubmission(Computation(Instance(");
    EXPECT_EQ(compact(nodeAt(message.get(), "Header")), "Header(MessageDetails(Class=HMRC-SA-SA100-ATT))");
    EXPECT_EQ(message->children.front()->name, "Header");
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

TEST_F(Message, TheMessageIsWrittenToTheTemporaryFolder) {
    const std::string path = GetTempDir().str() + "/t.xml";
    std::filesystem::remove(path);
    CMapStringToString boxes = envtest::boxesOf({{"name", "First Limited"}});
    const std::unique_ptr<CXMLVar> first(quick_govtalk(boxes));
    boxes["name"] = "Second Limited";
    const std::unique_ptr<CXMLVar> second(quick_govtalk(boxes));
    ASSERT_TRUE(std::filesystem::exists(path));
    CXMLVar written;
    ASSERT_TRUE(written.OpenPath(path.c_str()));
    EXPECT_EQ(compact(&written), compact(second.get()));  // overwritten by the later call
    EXPECT_NE(readFile(path).find("Second Limited"), std::string::npos);
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

TEST_F(TemplateFolders, CtFormsComeFromTheTemplateFolderAndMoveToParentIsUnwrapped) {
    envtest::EnvGuard ct("CT600_TEMPLATE_DIR", (base_ / "ct").string());
    envtest::EnvGuard suite("CT600_SUITE_DIR", (base_ / "suite").string());
    CMapStringToString boxes = envtest::boxesOf({{"Q1", "a"}, {"Q2", "b"}});
    LogCapture log;
    const std::unique_ptr<CXMLVar> message(quick_govtalk(&boxes, "ctmove"));
    EXPECT_EQ(compact(message.get()), "GovTalkMessage(Body(IRenvelope(CompanyTaxReturn(A=a B=b C=fixed))))");
    EXPECT_TRUE(log.Has("quick_govtalk() template=" + (base_ / "ct").string() + "/ctmove.xml")) << log.lines.size();
}

TEST_F(TemplateFolders, OtherFormsComeFromTheSuiteFolderAndKeepMoveToParent) {
    envtest::EnvGuard ct("CT600_TEMPLATE_DIR", (base_ / "ct").string());
    envtest::EnvGuard suite("CT600_SUITE_DIR", (base_ / "suite").string());
    CMapStringToString boxes = envtest::boxesOf({{"Q1", "a"}, {"Q2", "b"}});
    const std::unique_ptr<CXMLVar> message(quick_govtalk(&boxes, "sa100"));
    EXPECT_EQ(compact(message.get()), "GovTalkMessage(Body(IRenvelope(SA(A=a MoveToParent(B=b)))))");
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
