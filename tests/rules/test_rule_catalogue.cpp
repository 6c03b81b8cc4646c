// The catalogue: for every rule code, a return on which it reports its exact
// text and a neighbouring one on which it stays silent; a clean return on
// which nothing reports; the shape of the catalogue itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "common/basics.h"
#include "rules/catalogue/catalogue.h"
#include "support.h"

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

constexpr const char* kPdfReason = "PDF accounts attached with explanation";

struct RuleCase {
    const char* code;
    Edits fire;   // the clean return with these edits reports the code ...
    Edits quiet;  // ... and with these it doesn't
    int times = 1;  // how often the exact text stands in the fired return
};

// A page element with something in it, so that it counts as present.
Edit page(const char* element) { return set((std::string(element) + "/Part").c_str(), "1"); }
Edit amended() { return attr("", "ReturnType", "amended"); }
// A calendar-year period: two financial years, 2022 and 2023.
Edits calendar2023() { return {set(PERIOD "From", "2023-01-01"), set(PERIOD "To", "2023-12-31")}; }
template <typename T>
std::vector<T> operator+(std::vector<T> a, const std::vector<T>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

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

const std::vector<RuleCase>& cases() {
    static const std::vector<RuleCase> all = declaredPageCases() + std::vector<RuleCase>{
        // ---- the message and the period
        {"5005", {set("/GovTalkDetails/Keys/Key", "1234567891")}, {drop("/GovTalkDetails")}},
        {"5004", {drop(HEADER "Keys/Key")}, {drop(HEADER "Keys/Key"), add(HEADER "Keys/Key", "1234567890")}},
        {"9103", {set(PERIOD "From", "2024-09-30")}, {set(PERIOD "From", "2024-09-29")}},
        {"9105", {set(PERIOD "To", "2023-03-31")}, {set(PERIOD "To", "2023-04-01")}},
        {"9106", {set(PERIOD "To", "2024-10-01")}, {set(PERIOD "To", "2024-09-30")}},
        {"9106", {set(PERIOD "To", "2024-10-01"), set("CompanyInformation/CompanyType", "4")},
                 {set(PERIOD "To", "2024-10-01"), set("CompanyInformation/CompanyType", "3")}},
        {"9101", {set(PERIOD "From", "2023-03-31")}, {set(PERIOD "From", "2023-04-01")}},
        {"9109", {set(RIS "RegisteredAvoidanceScheme", "yes")},
                 {set(RIS "RegisteredAvoidanceScheme", "yes"), set(PAGES "CT600J", "yes")}},
        {"9109", {set(RIS "RegisteredAvoidanceScheme", "yes"), attr("", "ReturnType", "")},
                 {set(RIS "RegisteredAvoidanceScheme", "yes"), amended()}},
        {"9110", {set(RIS "TransferPricing/Adjustment", "yes"), set(RIS "TransferPricing/SME", "yes")},
                 {set(RIS "TransferPricing/Adjustment", "yes")}},

        // ---- accounts and computations
        {"9349", {set(RIS "Accounts/NoAccountsReason", "Company dormant")},
                 {set(RIS "Accounts/NoAccountsReason", "Company dormant"), drop(XBRL "Accounts")}},
        {"9115", {set(RIS "Accounts/NoAccountsReason", "Amendment - a/cs already submitted")},
                 {set(RIS "Accounts/NoAccountsReason", "Amendment - a/cs already submitted"), amended()}},
        {"9971", {set(RIS "Accounts/NoAccountsReason", kPdfReason)},
                 {set(RIS "Accounts/NoAccountsReason", kPdfReason), pdf("accounts-2024.pdf")}},
        {"9971", {set(RIS "Accounts/NoAccountsReason", kPdfReason), pdf("ctcomp-2024.pdf")},
                 {set(RIS "Accounts/NoAccountsReason", kPdfReason), pdf("scan.pdf")}},
        {"9112", {pdf("accounts-2024.pdf")}, {pdf("joint-notice.pdf")}},
        {"9113", {drop(XBRL "Accounts")}, {drop(XBRL "Accounts"), set(RIS "Accounts/NoAccountsReason", "Company dormant")}},
        {"9114", {drop(RIS "Accounts/ThisPeriodAccounts")},
                 {drop(RIS "Accounts/ThisPeriodAccounts"), set(RIS "Accounts/DifferentPeriod", "yes")}},
        {"9116", {set(RIS "Accounts/NoAccountsReason", "Company dormant")},
                 {set(RIS "Accounts/NoAccountsReason", "Company dormant"), drop(RIS "Accounts/ThisPeriodAccounts")}},
        {"9117", {set(RIS "Computations/NoComputationsReason", "Company dormant"), pdf("ctcomp-2024.pdf")},
                 {set(RIS "Computations/NoComputationsReason", "Company dormant"), pdf("notes.pdf")}},
        {"9118", {set(RIS "Computations/NoComputationsReason", "Company dormant")},
                 {set(RIS "Computations/NoComputationsReason", "Company dormant"), drop(XBRL "Computation")}},
        {"9119", {set(RIS "Computations/NoComputationsReason", "Amendment - comps already submitted")},
                 {set(RIS "Computations/NoComputationsReason", "Amendment - comps already submitted"), amended()}},
        {"9965", {drop(XBRL "Computation")}, {drop(XBRL "Computation"), pdf("ctcomp-2024.pdf")}},
        {"9965", {drop(XBRL "Computation"), pdf("accounts.pdf")}, {drop(XBRL "Computation"), pdf("workings.pdf")}},
        {"9966", {pdf("ctcomp-2024.pdf")}, {pdf("board-minutes.pdf")}},
        {"9966", {pdf("scan.pdf", "computations")},
                 {pdf("scan.pdf", "computations"), set(RIS "Computations/NoComputationsReason", "Company dormant")}},

        // ---- supplementary pages declared and present
        {"9120", {set(PAGES "CT600A", "yes"), set("LoansByCloseCompanies", "")}, {set(PAGES "CT600A", "yes"), amended()}},
        {"9127", {set(PAGES "CT600F", "yes")}, {set(PAGES "CT600F", "yes"), set(INCOME "TonnageTaxProfits", "100.00")}},
        {"9130", {set(PAGES "CT600H", "yes")},
                 {set(PAGES "CT600H", "yes"), set("IndicatorsAndInformation/CrossBorderRoyalty", "yes")}},
        {"9134", {set(PAGES "CT600J", "yes")}, {set(PAGES "CT600J", "yes"), set(RIS "RegisteredAvoidanceScheme", "yes")}},

        // ---- income
        {"9149", {set(INCOME "Trading/LossesBroughtForward", "45001.00")},
                 {set(INCOME "Trading/LossesBroughtForward", "45000.00")}},
        {"9149", {drop(INCOME "Trading/Profits"), set(INCOME "Trading/LossesBroughtForward", "5")},
                 {drop(INCOME "Trading/Profits"), set(INCOME "Trading/LossesBroughtForward", "0")}},
        {"9150", {drop(INCOME "Trading/Profits")}, {set(INCOME "Trading/Profits", "0.01")}},
        {"9151", {set(INCOME "Trading/NetProfits", "40000.01")}, {set(INCOME "Trading/NetProfits", "40000.0009")}},
        {"9321", {drop(CTC "ProfitsBeforeOtherDeductions")},
                 {drop(CTC "ProfitsBeforeOtherDeductions"), set(INCOME "Trading/NetProfits", "0.00")}},
        {"9148", {drop(INCOME "Trading/NetProfits")},
                 {drop(INCOME "Trading/NetProfits"), set(INCOME "Trading/Profits", "0.00")}},
        {"9322", {set(INCOME "NonTradingLoanProfitsAndGains", "100.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
                 {set(INCOME "NonTradingLoanProfitsAndGains", "0.00"), drop(CTC "ProfitsBeforeOtherDeductions")}},
        {"9323", {set(INCOME "NonLoanAnnuitiesAnnualPaymentsDiscounts", "100.00"), set(CTC "ProfitsBeforeOtherDeductions", "")},
                 {set(INCOME "NonLoanAnnuitiesAnnualPaymentsDiscounts", "100.00")}},
        {"9324", {set(INCOME "NonUKdividends", "100.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
                 {set(INCOME "NonUKdividends", "0.00"), drop(CTC "ProfitsBeforeOtherDeductions")}},
        {"9325", {set(INCOME "DeductedIncome", "100.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
                 {set(INCOME "DeductedIncome", "0.00"), drop(CTC "ProfitsBeforeOtherDeductions")}},
        {"9326", {drop(CTC "ProfitsBeforeOtherDeductions")},
                 {set(INCOME "PropertyBusinessIncome", "0.00"), drop(CTC "ProfitsBeforeOtherDeductions")}},
        {"9154", {set(INCOME "TonnageTaxProfits", "100.00")},
                 {set(INCOME "TonnageTaxProfits", "100.00"), set(PAGES "CT600F", "yes")}},
        {"9155", {set(INCOME "TonnageTaxProfits", "100.00"), set("TonnageTax/TonnageTax/QualifyingShips/Total", "200.00")},
                 {set(INCOME "TonnageTaxProfits", "100.00"), set("TonnageTax/TonnageTax/QualifyingShips/Total", "100")}},
        {"9155", {set(INCOME "TonnageTaxProfits", "100.00"), set("TonnageTax/TonnageTax/QualifyingShips/Total", "x100")},
                 {set(INCOME "TonnageTaxProfits", "100.00"), set("TonnageTax/TonnageTax/QualifyingShips/Total", "100.00x")}},
        {"9327", {set(INCOME "OtherIncome", "10.00"), drop(CTC "ProfitsBeforeOtherDeductions")},
                 {set(INCOME "OtherIncome", "0.00"), drop(CTC "ProfitsBeforeOtherDeductions")}},

        // ---- gains, losses brought forward, profits before other deductions
        {"9157", {set(GAINS "AllowableLosses", "3000.01")}, {set(GAINS "AllowableLosses", "3000.00")}},
        {"9158", {drop(GAINS "GrossGains")}, {set(GAINS "GrossGains", "0.01")}},
        {"9159", {set(GAINS "NetChargeableGains", "2001.00")}, {set(GAINS "NetChargeableGains", "2000.0005")}},
        {"9331", {drop(CTC "ProfitsBeforeOtherDeductions")},
                 {drop(CTC "ProfitsBeforeOtherDeductions"), set(GAINS "NetChargeableGains", "0.00")}},
        {"9160", {set(CTC "LossesBroughtForward", "4000.01")}, {set(CTC "LossesBroughtForward", "4000.00")}},
        {"9161", {set(CTC "NonTradeDeficitsOnLoans", "3000.01"), set(CTC "LossesBroughtForward", "1000.00")},
                 {set(CTC "NonTradeDeficitsOnLoans", "3000.00"), set(CTC "LossesBroughtForward", "1000.00")}},
        {"9332", {set(CTC "ProfitsBeforeOtherDeductions", "44000.01")},
                 {set(CTC "ProfitsBeforeOtherDeductions", "43000.00"), set(CTC "LossesBroughtForward", "1000.00")}},

        // ---- deductions and reliefs
        {"9166", {set(DEDUCT "UnquotedShares", "44000.01")}, {set(DEDUCT "UnquotedShares", "44000.00")}},
        {"9167", {set(DEDUCT "ManagementExpenses", "44000.01")},
                 {set(DEDUCT "ManagementExpenses", "40000.00"), set(DEDUCT "UnquotedShares", "4000.00")}},
        {"9169", {set(DEDUCT "UKpropertyBusinessLosses", "43000.01")}, {set(DEDUCT "UKpropertyBusinessLosses", "43000.00")}},
        {"9170", {set(DEDUCT "CapitalAllowances", "43000.01")}, {set(DEDUCT "CapitalAllowances", "43000.00")}},
        {"9171", {set(DEDUCT "NonTradeDeficits", "43000.01")}, {set(DEDUCT "NonTradeDeficits", "43000.00")}},
        {"9172", {set(DEDUCT "NonTradingLossIntangibles", "100.00")},
                 {set(DEDUCT "NonTradingLossIntangibles", "100.00"),
                  set("LossesDeficitsAndExcess/AmountArising/NonTradingLossesIntangibles/Arising", "100.00")}},
        {"9173", {set(DEDUCT "NonTradingLossIntangibles", "43000.01")}, {set(DEDUCT "NonTradingLossIntangibles", "43000.00")}},
        {"9175", {set(DEDUCT "TradingLosses", "100.00")},
                 {set(DEDUCT "TradingLosses", "100.00"), set(DEDUCT "TradingLossesCarriedBack", "yes")}},
        {"9176", {set(DEDUCT "TradingLosses", "43000.01")}, {set(DEDUCT "TradingLosses", "43000.00")}},
        {"9174", {set(DEDUCT "TradingLossesCarriedBack", "yes")},
                 {set(DEDUCT "TradingLossesCarriedBack", "yes"), set(DEDUCT "TradingLosses", "10.00")}},
        {"9178", {set(DEDUCT "NonTradeCapitalAllowances", "43000.01")}, {set(DEDUCT "NonTradeCapitalAllowances", "43000.00")}},
        {"9179", {set(DEDUCT "Total", "44000.01")}, {set(DEDUCT "Total", "44000.00")}},
        {"9180", {set(DEDUCT "Total", "1000.01")},
                 {set(DEDUCT "ManagementExpenses", "600.00"), set(DEDUCT "CapitalAllowances", "400.00")}},
        {"9318", {drop(DEDUCT "Total")}, {drop(DEDUCT "Total"), set(DEDUCT "ManagementExpenses", "0.0009")}},

        // ---- charges and chargeable profits
        {"9334", {set(CHARGES "QualifyingDonations", "43000.01")}, {set(CHARGES "QualifyingDonations", "43000.00")}},
        {"9335", {set(CTC "ChargeableProfits", "42500.01")}, {set(CTC "ChargeableProfits", "42500.0005")}},
        {"9333", {set(CHARGES "ProfitsBeforeDonationsAndGroupRelief", "43000.01")},
                 {set(CHARGES "ProfitsBeforeDonationsAndGroupRelief", "42000.00"), set(DEDUCT "ManagementExpenses", "2000.00")}},
        {"9336", {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief"), set(CHARGES "QualifyingDonations", "43000.01")},
                 {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief"), set(CHARGES "QualifyingDonations", "43000.00")}},
        {"9954", {set(CHARGES "GroupRelief", "100.00")},
                 {set(CHARGES "GroupRelief", "100.00"), set("GroupAndConsortium/ClaimToGroupRelief/CompanyInformation/TotalAmountClaimed", "100.00")}},
        {"9185", {set(CHARGES "GroupRelief", "100.00")}, {set(CHARGES "GroupRelief", "100.00"), set(PAGES "CT600C", "yes")}},
        {"9955", {set(CHARGES "GroupRelief", "100.00")},
                 {set(CHARGES "GroupRelief", "100.00"), set("GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/CopyOfNoticesOfConsentAttached", "yes")}},
        {"9955", {set(CHARGES "GroupRelief", "100.00")},
                 {set(CHARGES "GroupRelief", "100.00"), set("GroupAndConsortium/ClaimToGroupRelief/ClaimAuthorisation/AuthorisationForSimplifiedArrangements", "yes")}},
        {"9337", {set(CHARGES "GroupRelief", "42500.01")}, {set(CHARGES "GroupRelief", "42500.00")}},
        {"9186", {set(CTC "ChargeableProfits", "42500.01")},
                 {set(FY1 "Details/Profit", "42000.00"), add(FY1 "Details", ""), set(FY1 "Details[2]/Profit", "500.00")}},
        {"9186", {set(CTC "ChargeableProfits", "0.30"), set(FY1 "Details/Profit", "0.10"), add(FY1 "Details", ""),
                  set(FY1 "Details[2]/Profit", "0.20")},
                 {set(CTC "ChargeableProfits", "0.30"), set(FY1 "Details/Profit", "0.30")}},
        {"9338", {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief"), set(CTC "ChargeableProfits", "42500.01")},
                 {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief")}},
        {"9188", calendar2023(), calendar2023() + Edits{set(FY2 "Year", "2023")}},
        {"9188", calendar2023(), {set(PERIOD "From", "2022-01-01"), set(PERIOD "To", "2023-12-31")}},
        {"9190", {set(CTC "RingFenceProfitsIncluded", "42500.01")}, {set(CTC "RingFenceProfitsIncluded", "42500.00")}},
        {"9956", {set(CTC "RingFenceProfitsIncluded", "10.00")},
                 {set(CTC "RingFenceProfitsIncluded", "10.00"), set(PAGES "CT600I", "yes")}},

        // ---- tax by financial year
        {"9195", {set(FY1 "Year", "2022")}, {set(FY1 "Year", "2023")}},
        {"9197", {set(FY1 "Details/Profit", "42000.00")},
                 {set(FY1 "Details/Profit", "42000.00"), add(FY1 "Details", ""), set(FY1 "Details[2]/Profit", "500.00")}},
        {"9198", calendar2023() + Edits{set(FY1 "Year", "2022"), set(CTC "ChargeableProfits", "36500.00"),
                                        set(FY1 "Details/Profit", "9001.00")},
                 calendar2023() + Edits{set(FY1 "Year", "2022"), set(CTC "ChargeableProfits", "36500.00"),
                                        set(FY1 "Details/Profit", "9000.00")}},
        {"9204", {set(FY1 "Details/Tax", "8075.01")}, {set(FY1 "Details/Profit", "1001.00"), set(FY1 "Details/Tax", "190.19")}},
        {"9204", {set(FY1 "Details/Profit", "3.00"), set(FY1 "Details/TaxRate", "19.50"), set(FY1 "Details/Tax", "0.58")},
                 {set(FY1 "Details/Profit", "3.00"), set(FY1 "Details/TaxRate", "19.50"), set(FY1 "Details/Tax", "0.59")}},
        {"9207", {set(FY2 "Year", "2025")}, {set(FY2 "Year", "2024")}},
        {"9213", {set(FY2 "Details/Profit", "1000.00"), set(FY2 "Details/TaxRate", "25.00"), set(FY2 "Details/Tax", "250.01")},
                 {set(FY2 "Details/Profit", "1000.00"), set(FY2 "Details/TaxRate", "25.00"), set(FY2 "Details/Tax", "250.00")}},
        {"9206", {set(FY2 "Year", "2024")}, calendar2023() + Edits{set(FY2 "Year", "2024")}},

        // ---- tax and reliefs against it
        {"9214", {set(CTC "CorporationTax", "8075.01")}, {set(FY2 "Details/Tax", "25.00"), set(CTC "CorporationTax", "8100.00")}},
        {"9216", {set(CTC "MarginalReliefForRingFenceTrades", "8075.00")}, {set(CTC "MarginalReliefForRingFenceTrades", "8074.99")}},
        {"9350", {set(CTC "MarginalReliefForRingFenceTrades", "10.00")},
                 {set(CTC "MarginalReliefForRingFenceTrades", "10.00"), set(PAGES "CT600I", "yes")}},
        {"9234", {set(CTC "NetCorporationTaxChargeable", "8075.01")},
                 {set(CTC "MarginalReliefForRingFenceTrades", "75.00"), set(CTC "NetCorporationTaxChargeable", "8000.00")}},
        {"9241", {set(RELIEFS "CommunityInvestmentRelief", "8075.01")}, {set(RELIEFS "CommunityInvestmentRelief", "8075.00")}},
        {"9242", {set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "8000.01")},
                 {set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "8000.00")}},
        {"9244", {set(RELIEFS "DoubleTaxation/UnderlyingRate", "yes")},
                 {set(RELIEFS "DoubleTaxation/UnderlyingRate", "yes"), set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00")}},
        {"9245", {set(RELIEFS "DoubleTaxation/AmountCarriedBack", "yes")},
                 {set(RELIEFS "DoubleTaxation/AmountCarriedBack", "yes"), set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00")}},
        {"9246", {set(RELIEFS "AdvancedCorporationTax", "8000.01")}, {set(RELIEFS "AdvancedCorporationTax", "8000.00")}},
        {"9247", {set(RELIEFS "TotalReliefsAndDeductions", "75.01")},
                 {set(RELIEFS "AdvancedCorporationTax", "25.00"), set(RELIEFS "TotalReliefsAndDeductions", "100.00")}},
        {"9236", {drop(RELIEFS "TotalReliefsAndDeductions")},
                 {drop(RELIEFS "TotalReliefsAndDeductions"), set(RELIEFS "CommunityInvestmentRelief", "")}},
        {"9237", {set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00"), drop(RELIEFS "TotalReliefsAndDeductions")},
                 {set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "10.00")}},
        {"9238", {set(RELIEFS "AdvancedCorporationTax", "10.00"), drop(RELIEFS "TotalReliefsAndDeductions")},
                 {set(RELIEFS "AdvancedCorporationTax", "10.00")}},
        {"9140", {set("TonnageTax/TonnageTax/OffshoreTrainingAllowance/OffsetAgainstCorpTax", "100.00")},
                 {set("TonnageTax/TonnageTax/OffshoreTrainingAllowance/OffsetAgainstCorpTax", "100.00"),
                  set(RELIEFS "DoubleTaxation/DoubleTaxationRelief", "100.00")}},
        {"9144", {drop(FY1 "Year")}, {drop(FY1 "Year"), set(CTC "ChargeableProfits", "0.00")}},
        {"9146", {drop(CTC "CorporationTax")}, {drop(CTC "CorporationTax"), drop(FY1 "Details/Tax")}},
        {"9320", {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief")},
                 {drop(CHARGES "ProfitsBeforeDonationsAndGroupRelief"), set(CTC "ProfitsBeforeOtherDeductions", "0.00")}},

        // ---- attached files
        {"9970", {add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "page2")},
                 {attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "Filename", "p1.html"),
                  add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "page2", {{"Filename", "p2.html"}})}, 2},
        {"9970", {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1"), add(XBRL "Accounts/Instance/InlineXBRLDocument", "p2")},
                 {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1")}, 2},
        {"9970", {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "page2")},
                 {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "page2", {{"Filename", "c2.html"}}),
                  attr(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "Filename", "c1.html")}, 2},
        {"9970", {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"Filename", "c1.html"}}),
                  add(XBRL "Computation/Instance/InlineXBRLDocument", "c2")},
                 {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"Filename", "c1.html"}}),
                  add(XBRL "Computation/Instance/InlineXBRLDocument", "c2", {{"Filename", "c2.html"}})}},
        {"9900", {attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "Filename", "p1.html"),
                  add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "p2", {{"Filename", "p2.html"}})},
                 {attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "Filename", "p1.html"),
                  attr(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "entryPoint", "true"),
                  add(XBRL "Accounts/Instance/EncodedInlineXBRLDocument", "p2", {{"Filename", "p2.html"}})}},
        {"9900", {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "c2", {{"entryPoint", "true"}}),
                  attr(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "entryPoint", "true")},
                 {add(XBRL "Computation/Instance/EncodedInlineXBRLDocument", "c2", {{"entryPoint", "true"}})}},
        {"9901", {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1", {{"Filename", "p1.html"}}),
                  add(XBRL "Accounts/Instance/InlineXBRLDocument", "p2", {{"Filename", "p2.html"}})},
                 {add(XBRL "Accounts/Instance/InlineXBRLDocument", "p1", {{"Filename", "p1.html"}, {"entryPoint", "true"}}),
                  add(XBRL "Accounts/Instance/InlineXBRLDocument", "p2", {{"Filename", "p2.html"}})}},
        {"9901", {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"entryPoint", "true"}}),
                  add(XBRL "Computation/Instance/InlineXBRLDocument", "c2", {{"entryPoint", "true"}})},
                 {add(XBRL "Computation/Instance/InlineXBRLDocument", "c1", {{"entryPoint", "true"}})}},
        {"9902", {set(XBRL "Accounts/Extension/Taxonomy", "t"), set(XBRL "Accounts/Instance/RawXBRLDocument", "raw")},
                 {set(XBRL "Accounts/Extension/Taxonomy", "t")}},
        {"9902", {set(XBRL "Computation/Extension/Linkbase", "l"), set(XBRL "Computation/Instance/RawXBRLDocument", "raw")},
                 {set(XBRL "Computation/Instance/RawXBRLDocument", "raw")}},
        {"9315", {drop(XBRL "Accounts")}, {drop(XBRL "Accounts"), set(RIS "Accounts/NoAccountsReason", "Company dormant")}},
        {"9316", {drop(XBRL "Computation")},
                 {drop(XBRL "Computation"), set(RIS "Computations/NoComputationsReason", "Company dormant")}},
        {"9319", {drop("CalculationOfTaxOutstandingOrOverpaid/NetCorporationTaxLiability")},
                 {drop("CalculationOfTaxOutstandingOrOverpaid/NetCorporationTaxLiability"),
                  set(CTC "NetCorporationTaxChargeable", "0.00")}},
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

std::string cleanReturnText() {
    std::ifstream in(CT600_SOURCE_DIR "/tests/data/clean_return.xml", std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::unique_ptr<CXMLVar> cleanReturn() {
    static const std::string text = cleanReturnText();
    return std::unique_ptr<CXMLVar>(parse(text.c_str()));
}

std::vector<std::string> runWith(const Edits& edits) {
    auto message = cleanReturn();
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

TEST_F(Catalogue, CleanReturnRaisesNothing) {
    auto message = cleanReturn();
    ASSERT_NE(returnOf(message.get()), nullptr) << "the clean return must load";
    const auto errors = runRules(message.get());
    EXPECT_TRUE(errors.empty()) << joined(errors);
}

TEST_F(Catalogue, EachRuleReportsItsTextAndItsNeighbourDoesNot) {
    for (const RuleCase& c : cases()) {
        SCOPED_TRACE(std::string("rule ") + c.code);
        const std::string text = std::string(c.code) + ":" + messageOf(c.code);

        const auto fired = runWith(c.fire);
        EXPECT_EQ(std::count(fired.begin(), fired.end(), text), c.times) << "fired:" << joined(fired);

        const auto quiet = runWith(c.quiet);
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
    std::map<std::string, int> groupsOfCode;
    for (const RuleGroup& group : groups) {
        SCOPED_TRACE(group.number);
        EXPECT_GT(group.number, previous) << "numbers ascend and don't repeat";
        previous = group.number;
        ASSERT_NE(group.table, nullptr);
        EXPECT_EQ(group.table[0], kRootStep) << "selections are absolute";
        EXPECT_STREQ(group.table[1], "GovTalkMessage");
        EXPECT_EQ(group.table, MakePathTable(group.select));
        EXPECT_GE(group.rules.size(), 1u);
        EXPECT_LE(group.rules.size(), 6u);
        rules += static_cast<int>(group.rules.size());
        for (const RuleRow& rule : group.rules) ++groupsOfCode[rule.code];
    }
    EXPECT_EQ(groups.size(), 20u + 47u + 10u);
    EXPECT_EQ(rules, 116);
    EXPECT_EQ(groupsOfCode["9970"], 4);
    EXPECT_EQ(groupsOfCode["9900"], 2);
    EXPECT_EQ(groupsOfCode["9901"], 2);
    EXPECT_EQ(groupsOfCode["9902"], 2);
    EXPECT_EQ(groups.front().number, 1);
    EXPECT_EQ(groups.back().number, 186);
}

std::vector<std::string> g_log;
void captureLog(const char* line, void*) { g_log.emplace_back(line); }

// The rules marked with a dagger test completion through the logging or: one
// line each time the test gets that far, and no line when it stops before.
TEST_F(Catalogue, DaggerRulesLogWhenTheyReachTheirTest) {
    SetLogSink(captureLog, nullptr);
    g_log.clear();
    runWith({});
    EXPECT_EQ(g_log, (std::vector<std::string>{
                         "operator|| (bool) on 0, returns 0",          // 9965: no reason for no computations
                         "operator|| (bool) on 0,44000.00 returns 1",  // 9321 on NetProfits
                         "operator|| (bool) on 0,44000.00 returns 1",  // 9326 on PropertyBusinessIncome
                         "operator|| (bool) on 0,44000.00 returns 1",  // 9331 on NetChargeableGains
                     }));
    g_log.clear();
    runWith({drop(XBRL "Accounts"), set(RIS "Accounts/NoAccountsReason", "Company dormant"),
             set(RIS "Computations/NoComputationsReason", "Company dormant"),
             set(INCOME "Trading/NetProfits", "0.00"), set(INCOME "PropertyBusinessIncome", "0.00"),
             set(GAINS "NetChargeableGains", "0.00")});
    EXPECT_EQ(g_log, (std::vector<std::string>{
                         "operator|| (bool) on 0,Company dormant returns 1",  // 9113
                         "operator|| (bool) on 0,Company dormant returns 1",  // 9965
                     }));
    SetLogSink(nullptr, nullptr);
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
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.why);
        std::unique_ptr<CXMLVar> message(parse(c.xml));
        EXPECT_EQ(codesOf(runRules(message.get())), c.codes);
    }
}

}  // namespace
