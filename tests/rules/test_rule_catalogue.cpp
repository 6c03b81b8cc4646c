// The catalogue: for every rule code, a return on which it reports its exact
// text and a neighbouring one on which it stays silent; a clean return on
// which nothing reports; the shape of the catalogue itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/basics.h"
#include "rules/catalogue/catalogue.h"
#include "support.h"
#include "support/capture.h"

namespace {

using namespace rulestest;


#define HEADER "/Body/IRenvelope/IRheader/"
#define PERIOD "CompanyInformation/PeriodCovered/"
#define RIS "ReturnInfoSummary/"
#define PAGES "ReturnInfoSummary/SupplementaryPages/"
#define CTC "CompanyTaxCalculation/"
#define INCOME "CompanyTaxCalculation/Income/"
#define GAINS "CompanyTaxCalculation/ChargeableGains/"
#define DEDUCT "CompanyTaxCalculation/DeductionsAndReliefs/"
#define CHARGES "CompanyTaxCalculation/ChargesAndReliefs/"
#define FY1 "CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearOne/"
#define FY2 "CompanyTaxCalculation/CorporationTaxChargeable/FinancialYearTwo/"
#define RELIEFS "CompanyTaxCalculation/TaxReliefsAndDeductions/"
#define XBRL "AttachedFiles/XBRLsubmission/"
#define DUE "CalculationOfTaxOutstandingOrOverpaid/"
#define REC "TaxReconciliation/"
#define BOTH "TaxReconciliation/TaxOutstandingOrOverpaid/"
#define ENH "EnhancedExpenditure/"
#define REPAY "OverpaymentsAndRepayments/RepaymentsForThePeriodCoveredByThisReturn/"
#define SURRENDER "OverpaymentsAndRepayments/Surrender/"
#define LOANS "LoansByCloseCompanies/LoansInformation/"
#define EARLY "LoansByCloseCompanies/ReliefEarlierThan/"
#define LATER "LoansByCloseCompanies/LoanLaterReliefNow/"
#define CFC "ControlledForeignCompanies/"
#define CFC1 "ControlledForeignCompanies/CompanyInformation/CFCTaxCalculation/"
#define CFC2 "ControlledForeignCompanies/CompanyInformation[2]/CFCTaxCalculation/"
#define CLAIM "GroupAndConsortium/ClaimToGroupRelief/"
#define DECLARATION "GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/Declaration"
#define CLAIMED "GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/"
#define CLAIMAP "GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/Company/AccountingPeriod/"
#define SURR "GroupAndConsortium/SurrenderedGroupRelief/"
#define SURRAP "GroupAndConsortium/SurrenderedGroupRelief/SurrenderInformation/Company/AccountingPeriod/"
#define SURRTOTAL "GroupAndConsortium/SurrenderedGroupRelief/SurrenderInformation/AmountSurrenderedTotal"
#define OPTIONS "GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/ConsentOptions/"
#define CONSENT "GroupAndConsortium/SurrenderedGroupRelief/ConsentToSurrender/Declaration/"
#define CHARITY "Charity/InformationRequired/"
#define TONNAGE "TonnageTax/TonnageTax/"
#define INFO "TonnageTax/TonnageTax/Information/"
#define ROYALTY "CrossBorderRoyalties/Royalties/"
#define RING "RingFenceTrade/CalculationOfSupplementaryCharge/"
#define NETRING "RingFenceTrade/NetRingFenceTrade/"
#define FILES "AttachedFiles/"

// The two clean returns the cases start from: a plain one, and one with
// every supplementary page.
constexpr const char* kCleanReturn = "clean_return.xml";
constexpr const char* kAllPages = "clean_return_all_pages.xml";

constexpr const char* kPdfReason = "PDF accounts attached with explanation";

template <typename T>
std::vector<T> operator+(std::vector<T> a, const std::vector<T>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// The edits of the silent neighbour: on their own, or (through also) after
// the edits that fire the rule.
struct Quiet {
    Edits edits;
    bool afterFire = false;
    Quiet(std::initializer_list<Edit> list) : edits(list) {}
    Quiet(Edits list, bool after = false) : edits(std::move(list)), afterFire(after) {}
};
Quiet also(Edits more) { return {std::move(more), true}; }

struct RuleCase {
    const char* code;
    Edits fire;   // the base return with these edits reports the code ...
    Quiet quiet;  // ... and with these it doesn't
    int times = 1;  // how often the exact text stands in the fired return
    const char* base = kCleanReturn;  // one of the two clean returns
    Edits quietEdits() const { return quiet.afterFire ? fire + quiet.edits : quiet.edits; }
};

// One element whose value fires the rule, and a value beside it that doesn't.
RuleCase edge(const char* code, const char* path, const char* fires, const char* quiet) {
    return {code, {set(path, fires)}, {set(path, quiet)}};
}

// A page element with something in it, so that it counts as present.
Edit page(const char* element) { return set((std::string(element) + "/Part").c_str(), "1"); }
Edit amended() { return attr("", "ReturnType", "amended"); }
// A calendar-year period: two financial years, 2022 and 2023.
Edits calendar2023() { return {set(PERIOD "From", "2023-01-01"), set(PERIOD "To", "2023-12-31")}; }

// A page ticked on a new return must be there; on a return of any other
// type (or none) it need not.
const struct {
    const char* code;
    const char* tick;
    const char* page;
} kDeclaredPages[] = {
    {"9120", PAGES "CT600A", "LoansByCloseCompanies"}, {"9121", PAGES "CT600B", "ControlledForeignCompanies"},
    {"9123", PAGES "CT600C", "GroupAndConsortium"},    {"9124", PAGES "CT600D", "Insurance"},
    {"9125", PAGES "CT600E", "Charity"},               {"9126", PAGES "CT600F", "TonnageTax"},
    {"9129", PAGES "CT600H", "CrossBorderRoyalties"},  {"9132", PAGES "CT600I", "RingFenceTrade"},
    {"9136", PAGES "CT600J", "TaxAvoidanceSchemes"},
};

std::vector<RuleCase> declaredPageCases() {
    std::vector<RuleCase> rows;
    for (const auto& p : kDeclaredPages) {
        rows.push_back({p.code, {set(p.tick, "yes")}, {set(p.tick, "yes"), page(p.page)}});
        rows.push_back({p.code, {set(p.tick, "yes")}, {set(p.tick, "yes"), attr("", "ReturnType", "")}});
    }
    return rows;
}

// n more empty Loan elements in one part of page CT600A.
Edits moreLoans(const char* part, int n) { return Edits(n, add((std::string(part) + "Loan").c_str(), "")); }
// No attachment at all: the full return has two PDFs.
Edits noAttachments() { return {drop(FILES "Attachment"), drop(FILES "Attachment")}; }
// A trade with a loss instead of a profit on page CT600I.
Edits ringFenceLoss() { return {drop(RING "Trade/Profits"), set(RING "Trade/Losses", "yes")}; }
// Amounts by powers of two, so that a total that leaves one out or counts
// one twice misses.
Edits charityIncome(const char* total) {
    return {set(CHARITY "Income/TotalTurnover", "1.00"),  set(CHARITY "Income/InvestmentIncome", "2.00"),
            set(CHARITY "Income/UKlandBuildings", "4.00"), set(CHARITY "Income/GiftAid", "8.00"),
            set(CHARITY "Income/OtherCharities", "16.00"), set(CHARITY "Income/GiftsOfShares", "32.00"),
            set(CHARITY "Income/GiftOfRealProperty", "64.00"), set(CHARITY "Income/OtherSources", "128.00"),
            set(CHARITY "Income/Total", total)};
}
Edits charityExpenditure(const char* total) {
    return {set(CHARITY "Expenditure/TradingCosts", "1.00"),
            set(CHARITY "Expenditure/UKlandBuildings", "2.00"),
            set(CHARITY "Expenditure/GeneralAdminCosts", "4.00"),
            set(CHARITY "Expenditure/GrantsDonationsWithinUK", "8.00"),
            set(CHARITY "Expenditure/GrantsDonationsOutsideUK", "16.00"),
            set(CHARITY "Expenditure/OtherExpenditure", "32.00"),
            set(CHARITY "Expenditure/Total", total)};
}
Edits surrendered(const char* total) {
    return {set(SURR "TradingLosses", "1.00"),     set(SURR "ExcessNonTrading", "2.00"),
            set(SURR "NonTradingDeficit", "4.00"), set(SURR "ExcessDonations", "8.00"),
            set(SURR "ExcessLosses", "16.00"),     set(SURR "ExcessManagementExpenses", "32.00"),
            set(SURR "NonTradingLossesOnIntangibleFixedAssets", "64.00"), set(SURR "TotalSurrender", total)};
}
// Credits beyond the tax: Box 525 of 1000 leaves 500 of Box 545 payable
// (Box 570) and then all 400 of Box 560 (Box 575).
Edits surplusCredits() {
    return {set(DUE "TaxPayable", "1000.00"), set(REC "SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable", "500.00"),
            set(REC "LandOrLifeCreditPayable", "400.00")};
}

// Each kind of loss that may be surrendered, against what arose of it.
std::vector<RuleCase> surrenderMaximumCases() {
    std::vector<RuleCase> rows;
    for (std::string kind : {"AmountArising/LossesOfTradesUK/", "AmountArising/Loans/",
                             "AmountArising/UKpropertyBusinessLosses/", "AmountArising/NonTradingLossesIntangibles/",
                             "ExcessAmounts/ManagementExpenses/"}) {
        const std::string arising = "LossesDeficitsAndExcess/" + kind + "Arising";
        const std::string maximum = "LossesDeficitsAndExcess/" + kind + "SurrenderMaximum";
        rows.push_back({"9952", {drop(arising.c_str()), set(maximum.c_str(), "0.00")},
                        {set(arising.c_str(), "0.01"), set(maximum.c_str(), "0.00")}});
        rows.push_back({"9953", {set(arising.c_str(), "100.00"), set(maximum.c_str(), "100.01")},
                        {set(arising.c_str(), "100.00"), set(maximum.c_str(), "100.00")}});
    }
    // No Arising beside a maximum above 0: both.
    rows.push_back({"9953", {drop("LossesDeficitsAndExcess/AmountArising/NonTradingLossesIntangibles/Arising")},
                    {set("LossesDeficitsAndExcess/AmountArising/NonTradingLossesIntangibles/Arising", "2000.00")}});
    return rows;
}

std::vector<RuleCase> onAllPages(std::vector<RuleCase> rows) {
    for (RuleCase& row : rows) row.base = kAllPages;
    return rows;
}

// The cases of the rules from Box 475 on, over the return with every page.
std::vector<RuleCase> fullReturnCases() {
    return surrenderMaximumCases() + std::vector<RuleCase>{
        // ---- tax outstanding or overpaid
        edge("9248", DUE "NetCorporationTaxLiability", "34500.01", "34500.0009"),
        {"9248", {set(RELIEFS "TotalReliefsAndDeductions", "649.00")},
         also({set(DUE "NetCorporationTaxLiability", "34501.00")})},
        edge("9339", DUE "TaxChargeable", "56000.01", "56000.0009"),
        {"9339", {set(DUE "BankLevyPayable", "1.00"), set(DUE "CFCandBankLevyTotal", "4001.00")},
         also({set(DUE "TaxChargeable", "56001.00")})},
        {"9252", {drop(PAGES "CT600A")}, also({amended()})},
        {"9252", {drop(PAGES "CT600A")}, also({set(DUE "LoansToParticipators", "0.00")})},
        edge("9249", DUE "LoansToParticipators", "0.00", "0.01"),
        {"9250", {drop(LATER "ReliefDue")}, also({set(DUE "CT600AreliefDue", "")})},
        {"9251", {drop(PAGES "CT600A")}, also({amended()})},
        {"9251", {drop(PAGES "CT600A")}, also({set(DUE "CT600AreliefDue", "")})},
        {"9353", {drop(PAGES "CT600B")}, also({amended()})},
        {"9354", {set(DUE "CFCandBankLevyTotal", "4000.01")},
         also({set(DUE "BankLevyPayable", "500.00"), set(DUE "CFCandBankLevyTotal", "4500.00")})},
        {"9254", {drop(PAGES "CT600I")}, also({set(DUE "SupplementaryCharge", "0.00")})},
        {"9344", {drop(DUE "NetCorporationTaxLiability"), set(DUE "TaxChargeable", "56000.01")},
         {drop(DUE "NetCorporationTaxLiability")}},
        {"9344", {drop(DUE "NetCorporationTaxLiability"), set(DUE "SupplementaryCharge", "7999.00")},
         also({set(DUE "TaxChargeable", "55999.00")})},
        {"9345", {set(DUE "IncomeTax/TaxRepayable", "10.00")},
         also({set(DUE "IncomeTax/DeductedIncomeTax", "56010.00")})},
        {"9346", {drop(DUE "TaxChargeable"), set(DUE "IncomeTax/TaxRepayable", "10.00")},
         also({set(DUE "IncomeTax/DeductedIncomeTax", "56010.00")})},
        {"9346", {drop(DUE "TaxChargeable"), set(DUE "IncomeTax/TaxRepayable", "10.00")},
         {set(DUE "IncomeTax/TaxRepayable", "10.00")}},
        edge("9347", DUE "TaxPayable", "55700.01", "55700.0009"),
        {"9347", {set(DUE "IncomeTax/DeductedIncomeTax", "56005.00"), set(DUE "TaxPayable", "1.00")},
         also({set(DUE "TaxPayable", "0.00")})},
        {"9347", {set(DUE "IncomeTax/DeductedIncomeTax", "56000.0005"), set(DUE "TaxPayable", "0.01")},
         also({set(DUE "TaxPayable", "0.00")})},
        {"9348", {drop(DUE "TaxChargeable"), set(DUE "TaxPayable", "55700.01")}, {drop(DUE "TaxChargeable")}},
        {"9348", {drop(DUE "TaxChargeable"), set(DUE "IncomeTax/DeductedIncomeTax", "56005.00"), set(DUE "TaxPayable", "1.00")},
         also({set(DUE "TaxPayable", "0.00")})},
        {"9348", {drop(DUE "TaxChargeable"), set(RELIEFS "TotalReliefsAndDeductions", "750.00")},
         also({set(DUE "TaxPayable", "55600.00")})},
        {"9351", {drop(DUE "CFCandBankLevyTotal")}, also({set(DUE "CFCtaxPayable", "0.00")})},
        {"9352", {set(DUE "BankLevyPayable", "10.00"), drop(DUE "CFCandBankLevyTotal")},
         also({set(DUE "BankLevyPayable", "0.00")})},
        {"9340", {drop(DUE "TaxChargeable")}, also({drop(DUE "NetCorporationTaxLiability")})},
        {"9341", {drop(DUE "TaxChargeable")}, also({drop(DUE "LoansToParticipators")})},
        {"9342", {drop(DUE "TaxChargeable")}, also({drop(DUE "CFCandBankLevyTotal")})},
        {"9343", {drop(DUE "TaxChargeable")}, also({drop(DUE "SupplementaryCharge")})},

        // ---- tax reconciliation
        {"9360", {set(REC "ResearchAndDevelopmentVaccineOrCreativeTaxCredit", "1500.01")},
         also({set(REC "VaccineCredit", "100.00"), set(REC "ResearchAndDevelopmentVaccineOrCreativeTaxCredit", "1600.00")})},
        {"9361", {set(REC "LandOrLifeCredit", "400.01")},
         also({set(REC "LifeAssuranceCompanyCredit", "50.00"), set(REC "LandOrLifeCredit", "450.00")})},
        edge("9261", REC "SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable", "0.01", ""),
        {"9261", {set(DUE "TaxPayable", "1000.00")}, surplusCredits()},
        // Below zero the box must be 0 exactly: the tolerance is on the other side.
        edge("9263", REC "LandOrLifeCreditPayable", "0.0009", "0"),
        {"9263", {set(DUE "TaxPayable", "1000.00"), set(REC "SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable", "500.00")},
         surplusCredits()},
        edge("9264", REC "LandOrLifeCreditPayable", "400.01", "400.00"),
        edge("9267", REC "CapitalAllowancesFirstYearCreditPayable", "100.01", "100.00"),
        {"9268", surplusCredits(),
         surplusCredits() + Edits{set(REC "CapitalAllowancesFirstYearCreditPayable", "100.00")}},
        {"9269", {drop(PAGES "CT600I")}, also({amended()})},
        edge("9270", DUE "TaxPayable", "7599.99", "7600.00"),
        edge("9271", NETRING "RingFenceCorpTaxIncluded", "7600.01", "7600"),
        {"9271", {drop(NETRING "RingFenceCorpTaxIncluded")}, also({amended()})},
        {"9272", {set(REC "RingFenceSupplementaryChargeIncluded", "8000.01")},
         also({set(DUE "SupplementaryCharge", "8000.01")})},
        {"9273", {drop(PAGES "CT600I")}, also({set(REC "RingFenceSupplementaryChargeIncluded", "0.00")})},
        edge("9274", NETRING "SupplementaryChargeTax", "8000.01", "8000"),
        {"9274", {drop(NETRING "SupplementaryChargeTax")},
         {drop(NETRING "SupplementaryChargeTax"), attr("", "ReturnType", "")}},
        {"9276", {set(BOTH "TaxOutstanding", "0.00")},
         also({set(REC "TaxAlreadyPaid", "50000.00"), set(BOTH "TaxOutstanding", "3700.00")})},
        {"9276", {set(REC "TaxAlreadyPaid", "50000.00"), set(BOTH "TaxOutstanding", "3700.01")},
         also({set(BOTH "TaxOutstanding", "3700.0009")})},
        edge("9277", BOTH "TaxOverpaid", "6300.01", "6300.0009"),
        {"9277", {set(REC "TaxAlreadyPaid", "50000.00"), set(BOTH "TaxOverpaid", "0.00")},
         also({set(REC "TaxAlreadyPaid", "55700.00"), set(BOTH "TaxOverpaid", "2000.00")})},
        {"9275", {set(BOTH "TaxOutstanding", "0.00")}, also({set(BOTH "TaxOverpaid", "0.00")})},
        {"9275", {set(BOTH "TaxOutstanding", "1.00"), set(BOTH "TaxOverpaid", "0.00")},
         also({set(BOTH "TaxOverpaid", "")})},
        {"9355", {drop(REC "ResearchAndDevelopmentVaccineOrCreativeTaxCredit")},
         also({drop(REC "ResearchAndDevelopmentCredit")})},
        {"9356", {set(REC "VaccineCredit", "10.00"), drop(REC "ResearchAndDevelopmentVaccineOrCreativeTaxCredit")},
         {set(REC "VaccineCredit", "10.00")}},
        {"9357", {drop(REC "ResearchAndDevelopmentVaccineOrCreativeTaxCredit")}, also({drop(REC "CreativeCredit")})},
        {"9358", {drop(REC "LandOrLifeCredit")}, also({drop(REC "LandRemediationCredit")})},
        {"9359", {set(REC "LifeAssuranceCompanyCredit", "10.00"), drop(REC "LandOrLifeCredit")},
         {set(REC "LifeAssuranceCompanyCredit", "10.00"), set(REC "LandOrLifeCredit", "410.00")}},

        // ---- enhanced expenditure
        {"9281", {drop(ENH "LargeCompanyClaim"), set(ENH "SMEclaim", "yes"), set(ENH "RandDAndCreativeEnhancedExpenditure", "0.00")},
         also({set(ENH "SMEclaimAsLargeCompany", "1.00")})},
        {"9282", {set(ENH "SMEclaim", "yes")}, also({drop(ENH "LargeCompanyClaim")})},
        {"9283", {set(ENH "RandDAndCreativeEnhancedExpenditure", "0.00")}, also({set(ENH "VaccineResearch", "5.00")})},
        {"9284", {set(ENH "SMEclaim", "yes")}, also({set(ENH "LargeCompanyClaim", "")})},
        {"9364", {drop(ENH "LargeCompanyClaim")}, also({set(ENH "SMEclaim", "yes")})},
        {"9365", {set(ENH "RandDAndCreativeEnhancedExpenditure", "12000.01")},
         also({set(ENH "CreativeEnhancedExpenditure", "0.00"), set(ENH "RandDAndCreativeEnhancedExpenditure", "10000.00")})},
        {"9287", {set(ENH "SMEclaimAsLargeCompany", "100.00")},
         also({set(ENH "SMEclaim", "yes"), drop(ENH "LargeCompanyClaim")})},
        {"9286", {set(ENH "VaccineResearch", "100.00"), drop(ENH "LargeCompanyClaim")},
         {set(ENH "VaccineResearch", "100.00")}},
        {"9362", {drop(ENH "RandDAndCreativeEnhancedExpenditure")}, also({drop(ENH "RandDEnhancedExpenditure")})},
        {"9363", {drop(ENH "RandDAndCreativeEnhancedExpenditure")}, also({drop(ENH "CreativeEnhancedExpenditure")})},

        // ---- repayments
        {"9296", {set(REPAY "IncomeTax", "10.00")}, also({set(DUE "IncomeTax/TaxRepayable", "10.00")})},
        {"9300", {set(REPAY "CreativeCredit", "0.01")},
         also({set(REC "SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable", "0.01")})},
        {"9301", {set(REPAY "LandRemediationCredit", "0.01")}, also({set(REC "LandOrLifeCreditPayable", "0.01")})},
        {"9302", {set(REPAY "PayableCapitalAllowancesFirstYearCredit", "0.01")},
         also({set(REC "CapitalAllowancesFirstYearCreditPayable", "0.01")})},
        {"9303", noAttachments(), noAttachments() + Edits{pdf("joint-notice.pdf")}},
        {"9303", {set(FILES "Attachment", "")}, {set(FILES "Attachment[2]", "")}},
        edge("9304", SURRENDER "StopUntilNotice", "2000.01", "2000.00"),

        // ---- page CT600A
        {"9401", {set(LOANS "TotalLoans", "60000.01")}, also({set(LOANS "Loan[2]/AmountOfLoan", "20000.01")})},
        {"9402", {set(LOANS "TaxChargeable", "15000.01")}, also({set(LOANS "TotalLoans", "60000.04")})},
        {"9400", moreLoans(LOANS, 998), moreLoans(LOANS, 997)},
        edge("9406", EARLY "Loan/Date", "2024-01-01", "2023-12-31"),
        edge("9429", EARLY "Loan/Date", "2023-03-31", "2023-04-01"),
        edge("9404", EARLY "Loan/AmountRepaid", "0.00", "0.01"),
        {"9404", {set(EARLY "Loan[2]/AmountReleasedOrWrittenOff", "0.00")},
         also({set(EARLY "Loan[2]/AmountRepaid", "0.01")})},
        {"9405", {drop("LoansByCloseCompanies/LoansInformation")},
         {drop("LoansByCloseCompanies/LoansInformation"), set(LOANS "TotalLoans", "0.00")}, 2},
        {"9407", {set(EARLY "TotalAmountRepaid", "8000.01")}, also({set(EARLY "Loan[2]/AmountRepaid", "0.01")})},
        {"9408", {set(EARLY "TotalAmountReleasedOrWritten", "4000.01")},
         also({set(EARLY "Loan/AmountReleasedOrWrittenOff", "0.01")})},
        {"9409", {set(EARLY "TotalLoans", "12000.01")},
         also({drop(EARLY "TotalAmountReleasedOrWritten"), set(EARLY "TotalLoans", "8000.00")})},
        edge("9411", EARLY "ReliefDue", "15000.01", "15000.00"),
        {"9410", {set(EARLY "ReliefDue", "3000.01")}, also({set(EARLY "TotalLoans", "12000.04")})},
        {"9403", moreLoans(EARLY, 998), moreLoans(EARLY, 997)},
        edge("9430", LATER "Loan/Date", "2023-12-31", "2024-01-01"),
        edge("9431", LATER "Loan/Date", "2024-10-01", "2024-09-30"),
        {"9419", {set(LATER "Loan/AmountRepaid", "0.00")},
         also({set(LATER "Loan/AmountReleasedOrWrittenOff", "0.01")})},
        {"9421", {set(LATER "TotalAmountRepaid", "10000.01")}, also({set(LATER "Loan/AmountRepaid", "10000.01")})},
        {"9422", {set(LATER "TotalAmountReleasedOrWritten", "0.01")},
         also({set(LATER "Loan/AmountReleasedOrWrittenOff", "0.01")})},
        {"9423", {set(LATER "TotalLoans", "10000.01")}, also({set(LATER "TotalAmountReleasedOrWritten", "0.01")})},
        edge("9425", LATER "ReliefDue", "15000.01", "15000.00"),
        {"9426", {drop(DUE "CT600AreliefDue")}, also({drop(LATER "ReliefDue")})},
        {"9424", {set(LATER "ReliefDue", "2500.01")}, also({set(LATER "TotalLoans", "10000.04")})},
        {"9418", moreLoans(LATER, 999), moreLoans(LATER, 998)},
        {"9427", {set("LoansByCloseCompanies/TaxPayable", "9500.01")}, also({set(LATER "ReliefDue", "2499.99")})},
        edge("9428", "LoansByCloseCompanies/TaxPayable", "9500.01", "9500"),
        {"9428", {set(DUE "LoansToParticipators", "0.00"), set("LoansByCloseCompanies/TaxPayable", "0.00")},
         also({set(DUE "LoansToParticipators", "0.01"), set("LoansByCloseCompanies/TaxPayable", "0.01")})},
        {"9305", {drop(PAGES "CT600A")}, also({drop("LoansByCloseCompanies")})},

        // ---- page CT600B
        {"9455", {set(CFC1 "CFCchargeDue", "3000.01")},
         also({set(CFC1 "ACTrestricted", "100.00"), set(CFC1 "CFCchargeDue", "2900.00")})},
        {"9455", {set(CFC1 "CFCchargeDue", "3000.01"), set(CFC2 "CFCchargeDue", "1140.00")},
         {set(CFC2 "ReliefsInTaxTerms", "0.00"), set(CFC2 "CFCchargeDue", "1140.00")}, 2},
        {"9456", {set(CFC "TotalTaxChargeable", "4940.01")}, also({set(CFC2 "TaxOnChargeable", "1140.01")})},
        {"9457", {set(CFC "TotalCreditableTax", "800.01")}, also({set(CFC2 "CreditableTax", "0.01")})},
        {"9458", {set(CFC "TotalReliefInTaxTerms", "140.01")}, also({set(CFC1 "ReliefsInTaxTerms", "0.01")})},
        {"9459", {set(CFC "TotalACTrestricted", "0.01")}, also({set(CFC1 "ACTrestricted", "0.01")})},
        edge("9463", CFC "TotalCFCtaxChargeble", "4000.01", "4000.0009"),
        {"9465", {drop(DUE "CFCtaxPayable")}, {set(DUE "CFCtaxPayable", "4000.0009")}},
        {"9465", {set(CFC "TotalCFCtaxChargeble", "0.00"), set(DUE "CFCtaxPayable", "0.00")},
         also({set(CFC "TotalCFCtaxChargeble", "0.01"), set(DUE "CFCtaxPayable", "0.01")})},
        {"9450", {drop(CFC "TotalTaxChargeable")},
         also({set(CFC1 "TaxOnChargeable", "0.00"), set(CFC2 "TaxOnChargeable", "0.00")})},
        {"9451", {drop(CFC "TotalCreditableTax")}, also({drop(CFC1 "CreditableTax")})},
        {"9452", {drop(CFC "TotalReliefInTaxTerms")}, also({drop(CFC2 "ReliefsInTaxTerms")})},
        {"9453", {set(CFC1 "ACTrestricted", "10.00")}, also({set(CFC "TotalACTrestricted", "10.00")})},
        {"9454", {drop(CFC "TotalCFCtaxChargeble")},
         also({drop(CFC "CompanyInformation/CFCTaxCalculation"), drop(CFC "CompanyInformation[2]/CFCTaxCalculation")})},
        {"9306", {drop(PAGES "CT600B")}, also({drop("ControlledForeignCompanies")})},

        // ---- page CT600C: claims
        edge("9502", CLAIMAP "From", "2023-04-01", "2023-03-31"),
        {"9503", {set(CLAIMAP "From", "2022-03-31")}, also({set(CLAIMAP "To", "2023-03-30")})},
        edge("9504", CLAIMAP "To", "2022-03-31", "2022-04-01"),
        {"9505", {set(CLAIMAP "From", "2021-04-01"), set(CLAIMAP "To", "2022-03-31")},
         also({set(CLAIMAP "From", "2021-04-02"), set(CLAIMAP "To", "2022-04-01")})},
        edge("9506", CHARGES "GroupRelief", "8000.01", "8000"),
        {"9506", {drop(CHARGES "GroupRelief")}, {set(CLAIMED "TotalAmountClaimed", "8000")}},
        {"9507", {set(CLAIMED "TotalAmountClaimed", "8000.01")},
         also({set(CLAIMED "Company/AmountClaimed", "8000.01")})},
        {"9510", noAttachments(), noAttachments() + Edits{pdf("consent.pdf", "Other")}},
        {"9510", noAttachments() + Edits{pdf("accounts-2023.pdf"), pdf("ctcomp-2023.pdf")},
         noAttachments() + Edits{pdf("accounts-2023.pdf"), pdf("scan-0001.pdf")}},
        edge("9973", CHARGES "GroupRelief", "0.00", "0.01"),
        {"9518", {drop(CLAIM "ClaimAuthorisation")}, also({amended()})},

        // ---- page CT600C: surrenders
        {"9511", surrendered("126.00"), surrendered("127.00")},
        edge("9513", SURRAP "From", "2023-04-01", "2023-03-31"),
        {"9514", {set(SURRAP "From", "2022-06-30")}, also({set(SURRAP "To", "2023-06-29")})},
        edge("9515", SURRAP "To", "2022-06-30", "2022-07-01"),
        {"9516", {set(SURRAP "From", "2021-04-01"), set(SURRAP "To", "2022-03-31")},
         also({set(SURRAP "From", "2021-04-02"), set(SURRAP "To", "2022-04-01")})},
        {"9517", {set(SURRTOTAL, "2000.01")},
         {set(SURR "SurrenderInformation/Company/AmountSurrendered", "2000.01"), set(SURRTOTAL, "2000.01")}},
        {"9974", {set(OPTIONS "SimplifiedArrangementInForce", "yes"), set(SURRTOTAL, "0.00")},
         {set(OPTIONS "SimplifiedArrangementInForce", "yes")}},
        {"9519", {drop(DECLARATION)}, {drop(DECLARATION), set(CONSENT "Name", "Margaret Ashworth")}},
        edge("9961", OPTIONS "CopyOfNoticesOfConsentAttached", "yes", ""),
        edge("9975", SURRTOTAL, "0.00", "0.01"),
        {"9521", {set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes")},
         {set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes"), drop(DECLARATION)}},
        {"9522", {set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes"), drop(FILES "Attachment"), drop(FILES "Attachment")},
         {set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes"), drop(FILES "Attachment"), drop(FILES "Attachment"), pdf("consent.pdf", "other")}},
        {"9522", noAttachments() + Edits{set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes"), pdf("scan.pdf", "accounts")},
         noAttachments() + Edits{set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes"), pdf("notices.pdf")}},
        {"9976", {set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes"), set(SURRTOTAL, "0.00")},
         {set(OPTIONS "CopyOfNoticesOfConsentAttached", "yes")}},
        {"9523", {set(CONSENT "CompanyName", "Harbourside Marine Holdings Ltd")},
         also({set("CompanyInformation/CompanyName", "Harbourside Marine Holdings Ltd")})},
        {"9523", {set("CompanyInformation/CompanyName", "123 Marine Limited"), set(CONSENT "CompanyName", "Marine 123 Limited")},
         also({set(CONSENT "CompanyName", "123 Other Limited")})},
        edge("9543", CONSENT "TaxReference", "2345678902", "02345678901"),
        {"9524", {set(CONSENT "AccountingPeriod/To", "2023-03-30")}, also({set(PERIOD "To", "2023-03-30")})},
        {"9524", {set(CONSENT "AccountingPeriod/From", "2022-04-02")}, also({set(PERIOD "From", "2022-04-02")})},
        {"9500", {drop("GroupAndConsortium/ClaimToGroupRelief"), drop("GroupAndConsortium/SurrenderedGroupRelief")},
         {drop("GroupAndConsortium/ClaimToGroupRelief")}},
        {"9307", {drop(PAGES "CT600C")}, also({drop("GroupAndConsortium")})},

        // ---- pages CT600D and CT600E
        {"9308", {drop(PAGES "CT600D")}, also({drop("Insurance")})},
        {"9614", charityIncome("254.00"), charityIncome("255.00")},
        edge("9611", CHARITY "Income/TotalTurnover", "0.00", "0.01"),
        edge("9612", CHARITY "Income/UKlandBuildings", "0.00", "0.01"),
        {"9615", charityExpenditure("62.00"), charityExpenditure("63.00")},
        edge("9613", CHARITY "Assets/InvestmentsOrLoans/ValueOfNonQualifying", "100.00", "0.00"),
        {"9309", {drop(PAGES "CT600E")}, also({drop("Charity")})},

        // ---- page CT600F
        {"9651", {drop(INFO "TonnageGroup/Name")}, also({set(INFO "TonnageGroup/GroupElection", "no")})},
        {"9652", {drop(INFO "GroupMetCharteredInLimit")}, also({set(INFO "TonnageGroup/GroupElection", "no")})},
        {"9653", {set(INFO "TonnageGroup/GroupElection", "no")}, {drop(INFO "TonnageGroup/GroupElection")}},
        {"9656", {set(INFO "CompanyMetCharteredInLimit", "yes")}, also({set(INFO "TonnageGroup/GroupElection", "no")})},
        {"9659", {set(INFO "TonnageGroup/GroupElection", "no")}, also({set(INFO "GroupMetCharteredInLimit", "")})},
        {"9665", {set(INFO "NotRegistered", "no")}, also({drop(INFO "Flagging")})},
        {"9660", {drop(TONNAGE "OffshoreTrainingAllowance")}, also({set(INFO "OffshoreActivities", "no")})},
        {"9664", {drop(INFO "Flagging")}, also({set(INFO "NotRegistered", "na")})},
        {"9666", {set(INFO "OffshoreActivities", "no")}, {drop(INFO "OffshoreActivities")}},
        {"9663", {set(TONNAGE "QualifyingShips/Ship/Profits", "9.50"), set(TONNAGE "QualifyingShips/Ship[2]/Profits", "0.00"), set(TONNAGE "QualifyingShips/Total", "10.00")},
         also({set(TONNAGE "QualifyingShips/Total", "9.00")})},
        edge("9663", TONNAGE "QualifyingShips/Total", "20346.07", "20346"),
        // 0.20 + 0.70 + 0.10 adds up a hair below 1 in doubles: the rule's 0.0001 lifts it back.
        {"9663", {set(TONNAGE "QualifyingShips/Ship/Profits", "0.20"), set(TONNAGE "QualifyingShips/Ship[2]/Profits", "0.70"), set(TONNAGE "QualifyingShips/Ship[3]/Profits", "0.10"), set(TONNAGE "QualifyingShips/Total", "0.00")},
         also({set(TONNAGE "QualifyingShips/Total", "1.00")})},
        {"9650", {drop(TONNAGE "QualifyingShips")},
         also({set(TONNAGE "RelevantShippingProfits/GrossDividends", "100.00")})},
        {"9310", {drop(PAGES "CT600F")}, also({drop("TonnageTax")})},

        // ---- page CT600H
        {"9750", {set(ROYALTY "Amount", "100.10"), set(ROYALTY "DeductionAmount", "20.03")},
         also({set(ROYALTY "DeductionAmount", "20.02")})},
        {"9750", {set(ROYALTY "Amount", "1.25"), set(ROYALTY "DeductionRate", "10.00"), set(ROYALTY "DeductionAmount", "0.12")},
         also({set(ROYALTY "DeductionAmount", "0.13")})},
        {"9750", {set(ROYALTY "DeductionAmount", "5000.01"), set("CrossBorderRoyalties/Royalties[2]/DeductionAmount", "333.29")},
         {set(ROYALTY "DeductionRate", "20.50"), set(ROYALTY "DeductionAmount", "5125.00")}, 2},
        {"9312", {drop(PAGES "CT600H")}, also({drop("CrossBorderRoyalties")})},

        // ---- page CT600I
        {"9802", {set(RING "DisallowedFinancingCosts/Total", "10000.01")},
         also({set(RING "DisallowedFinancingCosts/RelatedToLossRelief", "4000.01")})},
        edge("9803", RING "Profits", "60000.01", "60000.0009"),
        {"9803", {set(RING "Profits", "60000.01")}, also({set(RING "Trade/Profits", "")})},
        {"9804", ringFenceLoss(), ringFenceLoss() + Edits{set(RING "Profits", "0.00")}},
        {"9804", ringFenceLoss() + Edits{set(RING "Trade/Amount", "4000.00"), set(RING "Profits", "6000.01")},
         ringFenceLoss() + Edits{set(RING "Trade/Amount", "4000.00"), set(RING "Profits", "6000.00")}},
        {"9804", ringFenceLoss() + Edits{set(RING "Trade/Amount", "10000.00"), set(RING "Profits", "0.001")},
         ringFenceLoss() + Edits{set(RING "Trade/Amount", "10000.00"), set(RING "Profits", "-0.0009")}},
        edge("9805", RING "MinusLosses", "60000.01", "60000.00"),
        edge("9816", RING "FieldAllowance", "55000.01", "55000.00"),
        {"9817", {set(RING "NetProfits", "40000.01")},
         also({set(RING "DecommissioningReduction", "0.01"), set(RING "NetProfits", "39999.99")})},
        edge("9807", RING "Tax", "8000.01", "8000"),
        {"9807", {set(DUE "SupplementaryCharge", "0.00"), set(RING "Tax", "0.00")},
         also({set(DUE "SupplementaryCharge", "0.01"), set(RING "Tax", "0.01")})},
        {"9818", {set(RING "Tax", "8000.01")}, also({set(RING "NetProfits", "40000.05")})},
        edge("9813", REC "RingFenceCorpTaxIncluded", "7600.01", "7600"),
        {"9813", {drop(REC "RingFenceCorpTaxIncluded")}, also({drop(NETRING "RingFenceCorpTaxIncluded")})},
        edge("9814", REC "RingFenceSupplementaryChargeIncluded", "0.00", "8000"),
        {"9800", {drop(RING "Tax")}, also({set(RING "NetProfits", "0.00")})},
        {"9801", ringFenceLoss(), ringFenceLoss() + Edits{set("RingFenceTrade/LossesArising", "44000.00")}},
        {"9801", ringFenceLoss() + Edits{set(RING "Trade/Amount", "6000.01")},
         ringFenceLoss() + Edits{set(RING "Trade/Amount", "6000.0009")}},
        {"9313", {drop(PAGES "CT600I")}, also({drop("RingFenceTrade")})},

        // ---- page CT600J
        {"9314", {drop(PAGES "CT600J")}, also({drop("TaxAvoidanceSchemes")})},
    };
}

const std::vector<RuleCase>& cases() {
    static const std::vector<RuleCase> all = declaredPageCases() + onAllPages(fullReturnCases()) + std::vector<RuleCase>{
        // ---- the message and the period
        {"5005", {set("/GovTalkDetails/Keys/Key", "1234567891")}, {drop("/GovTalkDetails")}},
        {"5004", {drop(HEADER "Keys/Key")}, {drop(HEADER "Keys/Key"), add(HEADER "Keys/Key", "1234567890")}},
        edge("9103", PERIOD "From", "2024-09-30", "2024-09-29"),
        edge("9105", PERIOD "To", "2023-03-31", "2023-04-01"),
        edge("9106", PERIOD "To", "2024-10-01", "2024-09-30"),
        {"9106", {set(PERIOD "To", "2024-10-01"), set("CompanyInformation/CompanyType", "4")},
         also({set("CompanyInformation/CompanyType", "3")})},
        edge("9101", PERIOD "From", "2023-03-31", "2023-04-01"),
        {"9109", {set(RIS "RegisteredAvoidanceScheme", "yes")}, also({set(PAGES "CT600J", "yes")})},
        {"9109", {set(RIS "RegisteredAvoidanceScheme", "yes"), attr("", "ReturnType", "")},
         {set(RIS "RegisteredAvoidanceScheme", "yes"), amended()}},
        {"9110", {set(RIS "TransferPricing/Adjustment", "yes"), set(RIS "TransferPricing/SME", "yes")},
         {set(RIS "TransferPricing/Adjustment", "yes")}},

        // ---- accounts and computations
        {"9349", {set(RIS "Accounts/NoAccountsReason", "Company dormant")}, also({drop(XBRL "Accounts")})},
        {"9115", {set(RIS "Accounts/NoAccountsReason", "Amendment - a/cs already submitted")}, also({amended()})},
        {"9971", {set(RIS "Accounts/NoAccountsReason", kPdfReason)},
         {set(RIS "Accounts/NoAccountsReason", kPdfReason), pdf("accounts-2024.pdf")}},
        {"9971", {set(RIS "Accounts/NoAccountsReason", kPdfReason), pdf("ctcomp-2024.pdf")},
         {set(RIS "Accounts/NoAccountsReason", kPdfReason), pdf("scan.pdf")}},
        {"9112", {pdf("accounts-2024.pdf")}, {pdf("joint-notice.pdf")}},
        {"9113", {drop(XBRL "Accounts")}, also({set(RIS "Accounts/NoAccountsReason", "Company dormant")})},
        {"9114", {drop(RIS "Accounts/ThisPeriodAccounts")}, also({set(RIS "Accounts/DifferentPeriod", "yes")})},
        {"9116", {set(RIS "Accounts/NoAccountsReason", "Company dormant")},
         also({drop(RIS "Accounts/ThisPeriodAccounts")})},
        {"9117", {set(RIS "Computations/NoComputationsReason", "Company dormant"), pdf("ctcomp-2024.pdf")},
         {set(RIS "Computations/NoComputationsReason", "Company dormant"), pdf("notes.pdf")}},
        {"9118", {set(RIS "Computations/NoComputationsReason", "Company dormant")}, also({drop(XBRL "Computation")})},
        {"9119", {set(RIS "Computations/NoComputationsReason", "Amendment - comps already submitted")},
         also({amended()})},
        {"9965", {drop(XBRL "Computation")}, {drop(XBRL "Computation"), pdf("ctcomp-2024.pdf")}},
        {"9965", {drop(XBRL "Computation"), pdf("accounts.pdf")}, {drop(XBRL "Computation"), pdf("workings.pdf")}},
        {"9966", {pdf("ctcomp-2024.pdf")}, {pdf("board-minutes.pdf")}},
        {"9966", {pdf("scan.pdf", "computations")},
         {pdf("scan.pdf", "computations"), set(RIS "Computations/NoComputationsReason", "Company dormant")}},

        // ---- supplementary pages declared and present
        {"9120", {set(PAGES "CT600A", "yes"), set("LoansByCloseCompanies", "")},
         {set(PAGES "CT600A", "yes"), amended()}},
        {"9127", {set(PAGES "CT600F", "yes")}, also({set(INCOME "TonnageTaxProfits", "100.00")})},
        {"9130", {set(PAGES "CT600H", "yes")}, also({set("IndicatorsAndInformation/CrossBorderRoyalty", "yes")})},
        {"9134", {set(PAGES "CT600J", "yes")}, also({set(RIS "RegisteredAvoidanceScheme", "yes")})},

        // ---- income
        edge("9149", INCOME "Trading/LossesBroughtForward", "45001.00", "45000.00"),
        {"9149", {drop(INCOME "Trading/Profits"), set(INCOME "Trading/LossesBroughtForward", "5")},
         also({set(INCOME "Trading/LossesBroughtForward", "0")})},
        {"9150", {drop(INCOME "Trading/Profits")}, {set(INCOME "Trading/Profits", "0.01")}},
        edge("9151", INCOME "Trading/NetProfits", "40000.01", "40000.0009"),
        {"9321", {drop(CTC "ProfitsBeforeOtherDeductions")}, also({set(INCOME "Trading/NetProfits", "0.00")})},
        {"9148", {drop(INCOME "Trading/NetProfits")}, also({set(INCOME "Trading/Profits", "0.00")})},
        {"9322", {set(INCOME "NonTradingLoanProfitsAndGains", "100.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
         also({set(INCOME "NonTradingLoanProfitsAndGains", "0.00")})},
        {"9323", {set(INCOME "NonLoanAnnuitiesAnnualPaymentsDiscounts", "100.00"), set(CTC "ProfitsBeforeOtherDeductions", "")},
         {set(INCOME "NonLoanAnnuitiesAnnualPaymentsDiscounts", "100.00")}},
        {"9324", {set(INCOME "NonUKdividends", "100.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
         also({set(INCOME "NonUKdividends", "0.00")})},
        {"9325", {set(INCOME "DeductedIncome", "100.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
         also({set(INCOME "DeductedIncome", "0.00")})},
        {"9326", {drop(CTC "ProfitsBeforeOtherDeductions")}, also({set(INCOME "PropertyBusinessIncome", "0.00")})},
        {"9154", {set(INCOME "TonnageTaxProfits", "100.00")}, also({set(PAGES "CT600F", "yes")})},
        {"9155", {set(INCOME "TonnageTaxProfits", "100.00"), set("TonnageTax/TonnageTax/QualifyingShips/Total", "200.00")},
         also({set("TonnageTax/TonnageTax/QualifyingShips/Total", "100")})},
        {"9155", {set(INCOME "TonnageTaxProfits", "100.00"), set("TonnageTax/TonnageTax/QualifyingShips/Total", "x100")},
         also({set("TonnageTax/TonnageTax/QualifyingShips/Total", "100.00x")})},
        {"9327", {set(INCOME "OtherIncome", "10.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
         also({set(INCOME "OtherIncome", "0.00")})},

        // ---- gains, losses brought forward, profits before other deductions
        edge("9157", GAINS "AllowableLosses", "3000.01", "3000.00"),
        {"9158", {drop(GAINS "GrossGains")}, {set(GAINS "GrossGains", "0.01")}},
        edge("9159", GAINS "NetChargeableGains", "2001.00", "2000.0005"),
        {"9331", {drop(CTC "ProfitsBeforeOtherDeductions")}, also({set(GAINS "NetChargeableGains", "0.00")})},
        edge("9160", CTC "LossesBroughtForward", "4000.01", "4000.00"),
        {"9161", {set(CTC "NonTradeDeficitsOnLoans", "3000.01"), set(CTC "LossesBroughtForward", "1000.00")},
         also({set(CTC "NonTradeDeficitsOnLoans", "3000.00")})},
        {"9332", {set(CTC "ProfitsBeforeOtherDeductions", "44000.01")},
         also({set(CTC "ProfitsBeforeOtherDeductions", "43000.00"), set(CTC "LossesBroughtForward", "1000.00")})},

        // ---- deductions and reliefs
        edge("9166", DEDUCT "UnquotedShares", "44000.01", "44000.00"),
        {"9167", {set(DEDUCT "ManagementExpenses", "44000.01")},
         also({set(DEDUCT "ManagementExpenses", "40000.00"), set(DEDUCT "UnquotedShares", "4000.00")})},
        edge("9169", DEDUCT "UKpropertyBusinessLosses", "43000.01", "43000.00"),
        edge("9170", DEDUCT "CapitalAllowances", "43000.01", "43000.00"),
        edge("9171", DEDUCT "NonTradeDeficits", "43000.01", "43000.00"),
        {"9172", {set(DEDUCT "NonTradingLossIntangibles", "100.00")},
         also({set("LossesDeficitsAndExcess/AmountArising/NonTradingLossesIntangibles/Arising", "100.00")})},
        edge("9173", DEDUCT "NonTradingLossIntangibles", "43000.01", "43000.00"),
        {"9175", {set(DEDUCT "TradingLosses", "100.00")}, also({set(DEDUCT "TradingLossesCarriedBack", "yes")})},
        edge("9176", DEDUCT "TradingLosses", "43000.01", "43000.00"),
        {"9174", {set(DEDUCT "TradingLossesCarriedBack", "yes")}, also({set(DEDUCT "TradingLosses", "10.00")})},
        edge("9178", DEDUCT "NonTradeCapitalAllowances", "43000.01", "43000.00"),
        edge("9179", DEDUCT "Total", "44000.01", "44000.00"),
        {"9180", {set(DEDUCT "Total", "1000.01")},
         {set(DEDUCT "ManagementExpenses", "600.00"), set(DEDUCT "CapitalAllowances", "400.00")}},
        {"9318", {drop(DEDUCT "Total")}, also({set(DEDUCT "ManagementExpenses", "0.0009")})},

        // ---- charges and chargeable profits
        edge("9334", CHARGES "QualifyingDonations", "43000.01", "43000.00"),
        edge("9335", CTC "ChargeableProfits", "42500.01", "42500.0005"),
        {"9333", {set(CHARGES "ProfitsBeforeDonationsAndGroupRelief", "43000.01")},
         also({set(CHARGES "ProfitsBeforeDonationsAndGroupRelief", "42000.00"), set(DEDUCT "ManagementExpenses", "2000.00")})},
        {"9336", {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief"), set(CHARGES "QualifyingDonations", "43000.01")},
         also({set(CHARGES "QualifyingDonations", "43000.00")})},
        {"9954", {set(CHARGES "GroupRelief", "100.00")},
         also({set("GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/TotalAmountClaimed", "100.00")})},
        {"9185", {set(CHARGES "GroupRelief", "100.00")}, also({set(PAGES "CT600C", "yes")})},
        {"9955", {set(CHARGES "GroupRelief", "100.00")},
         also({set("GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/CopyOfNoticesOfConsentAttached", "yes")})},
        {"9955", {set(CHARGES "GroupRelief", "100.00")},
         also({set("GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/AuthorisationForSimplifiedArrangements", "yes")})},
        edge("9337", CHARGES "GroupRelief", "42500.01", "42500.00"),
        {"9186", {set(CTC "ChargeableProfits", "42500.01")},
         {set(FY1 "Details/Profit", "42000.00"), add(FY1 "Details", ""), set(FY1 "Details[2]/Profit", "500.00")}},
        {"9186", {set(CTC "ChargeableProfits", "0.30"), set(FY1 "Details/Profit", "0.10"), add(FY1 "Details", ""), set(FY1 "Details[2]/Profit", "0.20")},
         {set(CTC "ChargeableProfits", "0.30"), set(FY1 "Details/Profit", "0.30")}},
        {"9338", {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief"), set(CTC "ChargeableProfits", "42500.01")},
         {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief")}},
        {"9188", calendar2023(), calendar2023() + Edits{set(FY2 "Year", "2023")}},
        {"9188", calendar2023(), {set(PERIOD "From", "2022-01-01"), set(PERIOD "To", "2023-12-31")}},
        edge("9190", CTC "RingFenceProfitsIncluded", "42500.01", "42500.00"),
        {"9956", {set(CTC "RingFenceProfitsIncluded", "10.00")}, also({set(PAGES "CT600I", "yes")})},

        // ---- tax by financial year
        edge("9195", FY1 "Year", "2022", "2023"),
        {"9197", {set(FY1 "Details/Profit", "42000.00")},
         {set(FY1 "Details/Profit", "42000.00"), add(FY1 "Details", ""), set(FY1 "Details[2]/Profit", "500.00")}},
        {"9198", calendar2023() + Edits{set(FY1 "Year", "2022"), set(CTC "ChargeableProfits", "36500.00"), set(FY1 "Details/Profit", "9001.00")},
         calendar2023() + Edits{set(FY1 "Year", "2022"), set(CTC "ChargeableProfits", "36500.00"), set(FY1 "Details/Profit", "9000.00")}},
        {"9204", {set(FY1 "Details/Tax", "8075.01")},
         also({set(FY1 "Details/Profit", "1001.00"), set(FY1 "Details/Tax", "190.19")})},
        {"9204", {set(FY1 "Details/Profit", "3.00"), set(FY1 "Details/TaxRate", "19.50"), set(FY1 "Details/Tax", "0.58")},
         also({set(FY1 "Details/Tax", "0.59")})},
        edge("9207", FY2 "Year", "2025", "2024"),
        {"9213", {set(FY2 "Details/Profit", "1000.00"), set(FY2 "Details/TaxRate", "25.00"), set(FY2 "Details/Tax", "250.01")},
         also({set(FY2 "Details/Tax", "250.00")})},
        {"9206", {set(FY2 "Year", "2024")}, calendar2023() + Edits{set(FY2 "Year", "2024")}},

        // ---- tax and reliefs against it
        {"9214", {set(CTC "CorporationTax", "8075.01")},
         also({set(FY2 "Details/Tax", "25.00"), set(CTC "CorporationTax", "8100.00")})},
        edge("9216", CTC "MarginalReliefForRingFenceTrades", "8075.00", "8074.99"),
        {"9350", {set(CTC "MarginalReliefForRingFenceTrades", "10.00")}, also({set(PAGES "CT600I", "yes")})},
        {"9234", {set(CTC "NetCorporationTaxChargeable", "8075.01")},
         also({set(CTC "MarginalReliefForRingFenceTrades", "75.00"), set(CTC "NetCorporationTaxChargeable", "8000.00")})},
        edge("9241", RELIEFS "CommunityInvestmentRelief", "8075.01", "8075.00"),
        edge("9242", RELIEFS "DoubleTaxation/DoubleTaxationRelief", "8000.01", "8000.00"),
        {"9244", {set(RELIEFS "DoubleTaxation/UnderlyingRate", "yes")},
         also({set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00")})},
        {"9245", {set(RELIEFS "DoubleTaxation/AmountCarriedBack", "yes")},
         also({set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00")})},
        edge("9246", RELIEFS "AdvancedCorporationTax", "8000.01", "8000.00"),
        {"9247", {set(RELIEFS "TotalReliefsAndDeductions", "75.01")},
         also({set(RELIEFS "AdvancedCorporationTax", "25.00"), set(RELIEFS "TotalReliefsAndDeductions", "100.00")})},
        {"9236", {drop(RELIEFS "TotalReliefsAndDeductions")}, also({set(RELIEFS "CommunityInvestmentRelief", "")})},
        {"9237", {set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00"), drop(RELIEFS "TotalReliefsAndDeductions")},
         {set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00")}},
        {"9238", {set(RELIEFS "AdvancedCorporationTax", "10.00"), drop(RELIEFS "TotalReliefsAndDeductions")},
         {set(RELIEFS "AdvancedCorporationTax", "10.00")}},
        {"9140", {set("TonnageTax/TonnageTax/OffshoreTrainingAllowance/OffsetAgainstCorpTax", "100.00")},
         also({set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "100.00")})},
        {"9144", {drop(FY1 "Year")}, also({set(CTC "ChargeableProfits", "0.00")})},
        {"9146", {drop(CTC "CorporationTax")}, also({drop(FY1 "Details/Tax")})},
        {"9320", {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief")},
         also({set(CTC "ProfitsBeforeOtherDeductions", "0.00")})},

        // ---- attached files
        {"9970", {add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "page2")},
         {attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "Filename", "p1.html"), add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "page2", {{"Filename", "p2.html"}})}, 2},
        {"9970", {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1"), add(XBRL "Accounts/Instance/InlineXBRLDocument", "p2")},
         {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1")}, 2},
        {"9970", {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "page2")},
         {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "page2", {{"Filename", "c2.html"}}), attr(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "Filename", "c1.html")}, 2},
        {"9970", {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"Filename", "c1.html"}}), add(XBRL "Computation/Instance/InlineXBRLDocument", "c2")},
         {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"Filename", "c1.html"}}), add(XBRL "Computation/Instance/InlineXBRLDocument", "c2", {{"Filename", "c2.html"}})}},
        {"9900", {attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "Filename", "p1.html"), add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "p2", {{"Filename", "p2.html"}})},
         {attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "Filename", "p1.html"), attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "entryPoint", "true"), add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "p2", {{"Filename", "p2.html"}})}},
        {"9900", {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "c2", {{"entryPoint", "true"}}), attr(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "entryPoint", "true")},
         {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "c2", {{"entryPoint", "true"}})}},
        {"9901", {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1", {{"Filename", "p1.html"}}), add(XBRL "Accounts/Instance/InlineXBRLDocument", "p2", {{"Filename", "p2.html"}})},
         {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1", {{"Filename", "p1.html"}, {"entryPoint", "true"}}), add(XBRL "Accounts/Instance/InlineXBRLDocument", "p2", {{"Filename", "p2.html"}})}},
        {"9901", {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"entryPoint", "true"}}), add(XBRL "Computation/Instance/InlineXBRLDocument", "c2", {{"entryPoint", "true"}})},
         {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"entryPoint", "true"}})}},
        {"9902", {set(XBRL "Accounts/Extension/Taxonomy", "t"), set(XBRL "Accounts/Instance/RawXBRLDocument", "raw")},
         {set(XBRL "Accounts/Extension/Taxonomy", "t")}},
        {"9902", {set(XBRL "Computation/Extension/Linkbase", "l"), set(XBRL "Computation/Instance/RawXBRLDocument", "raw")},
         {set(XBRL "Computation/Instance/RawXBRLDocument", "raw")}},
        {"9315", {drop(XBRL "Accounts")}, also({set(RIS "Accounts/NoAccountsReason", "Company dormant")})},
        {"9316", {drop(XBRL "Computation")}, also({set(RIS "Computations/NoComputationsReason", "Company dormant")})},
        {"9319", {drop("CalculationOfTaxOutstandingOrOverpaid/NetCorporationTaxLiability")},
         also({set(CTC "NetCorporationTaxChargeable", "0.00")})},
    };
    return all;
}

// The message the catalogue gives a code.
std::string messageOf(const std::string& code) {
    for (const RuleGroup& group : RuleCatalogue())
        for (const RuleRow& rule : group.rules)
            if (code == rule.code) return rule.message;
    return "<no such code>";
}

std::unique_ptr<CXMLVar> cleanReturn(const std::string& file) {
    static std::map<std::string, std::string> texts;
    if (!texts.count(file)) texts[file] = readFile(CT600_SOURCE_DIR "/tests/data/" + file);
    return parseXml(texts[file]);
}

std::vector<std::string> runWith(const Edits& edits, const char* base = kCleanReturn) {
    auto message = cleanReturn(base);
    for (const Edit& edit : edits) apply(message.get(), edit);
    return runRules(message.get());
}

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const auto& t : texts) all += "\n  " + t;
    return all;
}

class Catalogue : public ::testing::Test {
protected:
    void SetUp() override { fixToday(); }
};

TEST_F(Catalogue, CleanReturnsRaiseNothing) {
    for (const char* file : {kCleanReturn, kAllPages}) {
        SCOPED_TRACE(file);
        auto message = cleanReturn(file);
        ASSERT_NE(returnOf(message.get()), nullptr) << "the clean return must load";
        const auto errors = runRules(message.get());
        EXPECT_TRUE(errors.empty()) << joined(errors);
    }
}

// Every page of the return with every page is there, with something in it.
TEST_F(Catalogue, TheFullReturnHasEveryPage) {
    auto message = cleanReturn(kAllPages);
    CXMLVar* ret = returnOf(message.get());
    ASSERT_NE(ret, nullptr);
    for (const auto& p : kDeclaredPages) {
        SCOPED_TRACE(p.page);
        const CXMLVar* element = ret->FindChild(p.page);
        ASSERT_NE(element, nullptr);
        EXPECT_FALSE(element->children.empty());
    }
}

TEST_F(Catalogue, EachRuleReportsItsTextAndItsNeighbourDoesNot) {
    for (const RuleCase& c : cases()) {
        SCOPED_TRACE(std::string("rule ") + c.code);
        const std::string text = std::string(c.code) + ":" + messageOf(c.code);

        const auto fired = runWith(c.fire, c.base);
        EXPECT_EQ(std::count(fired.begin(), fired.end(), text), c.times) << "fired:" << joined(fired);

        const auto quiet = runWith(c.quietEdits(), c.base);
        for (const auto& error : quiet)
            EXPECT_NE(error.rfind(std::string(c.code) + ":", 0), 0u) << "quiet:" << joined(quiet);
    }
}

TEST_F(Catalogue, EveryCodeHasItsCase) {
    std::set<std::string> inCatalogue, inCases;
    for (const RuleGroup& group : RuleCatalogue())
        for (const RuleRow& rule : group.rules) inCatalogue.insert(rule.code);
    for (const RuleCase& c : cases()) inCases.insert(c.code);
    EXPECT_EQ(inCatalogue, inCases);
}

TEST_F(Catalogue, ShapeOfTheCatalogue) {
    const auto& groups = RuleCatalogue();
    int rules = 0;
    int previous = 0;
    int singleRuleGroups = 0;
    std::map<std::string, int> groupsOfCode;
    for (const RuleGroup& group : groups) {
        SCOPED_TRACE(group.number);
        EXPECT_EQ(group.number, previous + 1) << "groups run 1, 2, 3 ... without a gap";
        previous = group.number;
        ASSERT_NE(group.table, nullptr);
        EXPECT_EQ(group.table[0], kRootStep) << "selections are absolute";
        EXPECT_STREQ(group.table[1], "GovTalkMessage");
        EXPECT_EQ(group.table, MakePathTable(group.select));
        EXPECT_GE(group.rules.size(), 1u);
        EXPECT_LE(group.rules.size(), 6u);
        singleRuleGroups += group.rules.size() == 1;
        rules += static_cast<int>(group.rules.size());
        std::set<std::string> inGroup;
        for (const RuleRow& rule : group.rules) {
            ++groupsOfCode[rule.code];
            EXPECT_TRUE(inGroup.insert(rule.code).second) << rule.code << " twice in one group";
        }
    }
    EXPECT_EQ(groups.size(), 186u);
    EXPECT_EQ(rules, 284);
    EXPECT_EQ(groupsOfCode.size(), 270u);
    EXPECT_EQ(singleRuleGroups, 122);
    // The codes that more than one group reports; every other code has one.
    const std::map<std::string, int> shared = {{"9952", 5}, {"9953", 5}, {"9970", 4},
                                               {"9900", 2}, {"9901", 2}, {"9902", 2}};
    for (const auto& [code, n] : groupsOfCode) {
        const auto it = shared.find(code);
        EXPECT_EQ(n, it == shared.end() ? 1 : it->second) << code;
    }
}

// The rules marked with a dagger test completion through the logging or: one
// line each time the test gets that far, and no line when it stops before.
TEST_F(Catalogue, DaggerRulesLogWhenTheyReachTheirTest) {
    const struct {
        const char* base;
        Edits edits;
        std::vector<std::string> lines;
    } runs[] = {
        {kCleanReturn, {}, {
             "operator|| (bool) on 0, returns 0",          // 9965: no reason for no computations
             "operator|| (bool) on 0,44000.00 returns 1",  // 9321 on NetProfits
             "operator|| (bool) on 0,44000.00 returns 1",  // 9326 on PropertyBusinessIncome
             "operator|| (bool) on 0,44000.00 returns 1",  // 9331 on NetChargeableGains
             "operator|| (bool) on 0,8000.00 returns 1",   // 9348 on TaxPayable, Box 510 filled
         }},
        {kCleanReturn,
         {drop(XBRL "Accounts"), set(RIS "Accounts/NoAccountsReason", "Company dormant"),
          set(RIS "Computations/NoComputationsReason", "Company dormant"),
          set(INCOME "Trading/NetProfits", "0.00"), set(INCOME "PropertyBusinessIncome", "0.00"),
          set(GAINS "NetChargeableGains", "0.00")}, {
             "operator|| (bool) on 0,Company dormant returns 1",  // 9113
             "operator|| (bool) on 0,Company dormant returns 1",  // 9965
             "operator|| (bool) on 0,8000.00 returns 1",          // 9348
         }},
        {kAllPages, {}, {
             "operator|| (bool) on 0,197346.00 returns 1",  // 9321
             "operator|| (bool) on 0,197346.00 returns 1",  // 9322
             "operator|| (bool) on 0,197346.00 returns 1",  // 9326
             "operator|| (bool) on 0,197346.00 returns 1",  // 9327
             "operator|| (bool) on 0,197346.00 returns 1",  // 9331
             "operator|| (bool) on 0,56000.00 returns 1",   // 9348
             "operator|| (bool) on 0, returns 1",           // 9518 on the ClaimAuthorisation section
         }},
        // 9344 and 9346 reach their completion test only when their total is out.
        {kAllPages,
         {set(INCOME "Trading/NetProfits", "0.00"), set(INCOME "NonTradingLoanProfitsAndGains", "0.00"),
          set(INCOME "PropertyBusinessIncome", "0.00"), set(INCOME "TonnageTaxProfits", "0.00"),
          set(GAINS "NetChargeableGains", "0.00"), drop(DUE "NetCorporationTaxLiability"),
          set(DUE "TaxChargeable", "1.00"), set(DUE "IncomeTax/TaxRepayable", "0.00"), drop(CLAIM "ClaimAuthorisation")}, {
             "operator|| (bool) on 0, returns 0",       // 9344
             "operator|| (bool) on 0,1.00 returns 1",   // 9346
             "operator|| (bool) on 0,1.00 returns 1",   // 9348
             "operator|| (bool) on 0, returns 0",       // 9518
         }},
    };
    for (const auto& run : runs) {
        LogCapture log;
        runWith(run.edits, run.base);
        EXPECT_EQ(log.lines, run.lines);
    }
}

std::vector<std::string> codesOf(const std::vector<std::string>& texts) {
    std::vector<std::string> codes;
    for (const auto& t : texts) codes.push_back(t.substr(0, t.find(':')));
    return codes;
}

TEST_F(Catalogue, OddDocumentsDoNotStopTheRun) {
    const struct {
        const char* why;
        const char* xml;
        std::vector<std::string> codes;
    } cases[] = {
        {"an empty message", "<GovTalkMessage/>", {}},
        {"not even XML", "<GovTalkMessage><Body>", {}},
        {"an empty return selects no group but the last, which finds no tax",
         "<GovTalkMessage><Body><IRenvelope><CompanyTaxReturn/></IRenvelope></Body></GovTalkMessage>", {}},
        {"garbage in every figure, under a root of another name",
         "<X><Body><IRenvelope><CompanyTaxReturn ReturnType=\"new\"><CompanyInformation><PeriodCovered>"
         "<From>garbage</From><To>1e999</To></PeriodCovered></CompanyInformation>"
         "<CompanyTaxCalculation><ChargeableProfits>nan</ChargeableProfits><CorporationTaxChargeable>"
         "<FinancialYearOne><Year>99999999999999999999</Year><Details><Profit>1e308</Profit>"
         "<TaxRate>..</TaxRate><Tax>-</Tax></Details></FinancialYearOne><FinancialYearTwo><Year/>"
         "</FinancialYearTwo></CorporationTaxChargeable></CompanyTaxCalculation></CompanyTaxReturn>"
         "</IRenvelope></Body></X>",
         {"9101", "9186", "9338", "9195", "9197", "9204", "9207", "9206", "9146"}},
        {"a year that is no number and a period of one day",
         "<GovTalkMessage><Body><IRenvelope><CompanyTaxReturn><CompanyInformation><PeriodCovered>"
         "<From>2023-03-31</From><To>2023-04-01</To></PeriodCovered></CompanyInformation>"
         "<CompanyTaxCalculation><ChargeableProfits>100.00</ChargeableProfits><CorporationTaxChargeable>"
         "<FinancialYearOne><Year>abc</Year><Details><Profit>7.00</Profit></Details></FinancialYearOne>"
         "</CorporationTaxChargeable></CompanyTaxCalculation></CompanyTaxReturn></IRenvelope></Body>"
         "</GovTalkMessage>",
         {"9186", "9338", "9188", "9195", "9198"}},
        {"pages with figures and dates that are no numbers and no dates",
         "<GovTalkMessage><Body><IRenvelope><CompanyTaxReturn><LoansByCloseCompanies><ReliefEarlierThan><Loan>"
         "<Date>garbage</Date></Loan><ReliefDue>1e999</ReliefDue></ReliefEarlierThan><LoanLaterReliefNow><Loan><Date/>"
         "</Loan></LoanLaterReliefNow><TaxPayable>-</TaxPayable></LoansByCloseCompanies><GroupAndConsortium>"
         "<ClaimToGroupRelief><CompanyInformation><Company><AccountingPeriod><From>x</From><To>9999-99-99</To>"
         "</AccountingPeriod></Company></CompanyInformation></ClaimToGroupRelief></GroupAndConsortium><TonnageTax>"
         "<TonnageTax><QualifyingShips><Ship><Profits>nan</Profits></Ship><Total>inf</Total></QualifyingShips>"
         "</TonnageTax></TonnageTax><CrossBorderRoyalties><Royalties><Amount>1e308</Amount>"
         "<DeductionRate>99999999999999999999.99</DeductionRate><DeductionAmount/></Royalties></CrossBorderRoyalties>"
         "</CompanyTaxReturn></IRenvelope></Body></GovTalkMessage>",
         {"9406", "9429", "9404", "9405", "9411", "9410", "9419", "9427", "9428", "9305", "9503", "9307", "9663",
          "9310", "9312"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        std::unique_ptr<CXMLVar> message(parse(c.xml));
        EXPECT_EQ(codesOf(runRules(message.get())), c.codes);
    }
}

}  // namespace
