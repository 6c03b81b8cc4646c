// The sections of CompanyTaxReturn from the tax calculation to the declaration.
#include <array>
#include <string_view>

#include "schema/model/model.h"

namespace schemamodel {
namespace {

constexpr Decl kCompanyTaxCalculationRows[] = {
    {0, "CompanyTaxCalculation", once, sequence},
    {1, "Income", once, sequence},
    {2, "Trading", optional, sequence},
    {3, "Profits", optional, type(PoundsAmount)},
    {3, "LossesBroughtForward", optional, type(PoundsAmount)},
    {3, "NetProfits", optional, type(PoundsAmount)},
    {2, "NonTradingLoanProfitsAndGains", optional, type(PoundsAmount)},
    {2, "IncomeStatedNet", optional, type(YesFlag)},
    {2, "NonLoanAnnuitiesAnnualPaymentsDiscounts", optional, type(PoundsAmount)},
    {2, "NonUKdividends", optional, type(PoundsAmount)},
    {2, "DeductedIncome", optional, type(PoundsAmount)},
    {2, "PropertyBusinessIncome", optional, type(PoundsAmount)},
    {2, "NonTradingGainsIntangibles", optional, type(PoundsAmount)},
    {2, "TonnageTaxProfits", optional, type(PoundsAmount)},
    {2, "OtherIncome", optional, type(PoundsAmount)},
    {1, "ChargeableGains", optional, sequence},
    {2, "GrossGains", optional, type(PoundsAmount)},
    {2, "AllowableLosses", optional, type(PoundsAmount)},
    {2, "NetChargeableGains", once, type(PoundsAmount)},
    {1, "LossesBroughtForward", optional, type(PoundsAmount)},
    {1, "NonTradeDeficitsOnLoans", optional, type(PoundsAmount)},
    {1, "ProfitsBeforeOtherDeductions", optional, type(PoundsAmount)},
    {1, "DeductionsAndReliefs", optional, sequence},
    {2, "UnquotedShares", optional, type(PoundsAmount)},
    {2, "ManagementExpenses", optional, type(PoundsAmount)},
    {2, "UKpropertyBusinessLosses", optional, type(PoundsAmount)},
    {2, "CapitalAllowances", optional, type(PoundsAmount)},
    {2, "NonTradeDeficits", optional, type(PoundsAmount)},
    {2, "NonTradingLossIntangibles", optional, type(PoundsAmount)},
    {2, "TradingLosses", optional, type(PoundsAmount)},
    {2, "TradingLossesCarriedBack", optional, type(YesFlag)},
    {2, "NonTradeCapitalAllowances", optional, type(PoundsAmount)},
    {2, "Total", optional, type(PoundsAmount)},
    {1, "ChargesAndReliefs", optional, sequence},
    {2, "ProfitsBeforeDonationsAndGroupRelief", optional, type(PoundsAmount)},
    {2, "QualifyingDonations", optional, type(PoundsAmount)},
    {2, "GroupRelief", optional, type(PoundsAmount)},
    {1, "ChargeableProfits", once, type(PoundsAmount)},
    // The schema restates the minimum on the element, so a negative value fails it twice.
    {1, "RingFenceProfitsIncluded", optional, type(PoundsAmount).then(minInclusive("0.00"))},
    {1, "CorporationTaxChargeable", optional, sequence},
    // Up to three rate bands a year, one Details each.
    {2, "FinancialYearOne", once, sequence},
    {3, "Year", once, type(YearNumber)},
    {3, "Details", occurs(1, 3), sequence},
    {4, "Profit", once, type(PoundsAmount)},
    {4, "TaxRate", once, type(PercentRate)},
    {4, "Tax", once, type(PenceAmount)},
    {2, "FinancialYearTwo", optional, sequence},
    {3, "Year", once, type(YearNumber)},
    {3, "Details", occurs(1, 3), sequence},
    {4, "Profit", once, type(PoundsAmount)},
    {4, "TaxRate", once, type(PercentRate)},
    {4, "Tax", once, type(PenceAmount)},
    {1, "CorporationTax", optional, type(PenceAmount)},
    {1, "MarginalReliefForRingFenceTrades", optional, type(PositiveAmount)},
    {1, "NetCorporationTaxChargeable", once, type(PenceAmount)},
    {1, "TaxReliefsAndDeductions", optional, sequence},
    {2, "CommunityInvestmentRelief", optional, type(PenceAmount)},
    {2, "DoubleTaxation", optional, sequence},
    {3, "DoubleTaxationRelief", optional, type(PositiveAmount)},
    {3, "UnderlyingRate", optional, type(YesFlag)},
    {3, "AmountCarriedBack", optional, type(YesFlag)},
    {2, "AdvancedCorporationTax", optional, type(PenceAmount)},
    {2, "TotalReliefsAndDeductions", optional, type(PenceAmount)},
};

// Current law's associated companies and small profits tick, first in
// CorporationTaxChargeable. The schema offers ThisPeriod or the two years;
// the message never holds both.
constexpr Decl kAssociatedCompaniesRows[] = {
    {2, "AssociatedCompanies", optional, sequence},
    {3, "ThisPeriod", optional, type(CompanyCount)},
    {3, "AssociatedCompaniesFinancialYears", optional, sequence},
    {4, "FirstYear", once, type(CompanyCount)},
    {4, "SecondYear", once, type(CompanyCount)},
    {3, "StartingOrSmallCompaniesRate", optional, type(YesFlag)},
};

// The rows with extra ones right after the row named after.
template <std::size_t N, std::size_t M>
constexpr std::array<Decl, N + M> withRowsAfter(const Decl (&rows)[N], std::string_view after,
                                                const Decl (&extra)[M]) {
    std::array<Decl, N + M> out{};
    std::size_t at = 0;
    for (const Decl& row : rows) {
        out[at++] = row;
        if (std::string_view(row.name) == after)
            for (const Decl& e : extra) out[at++] = e;
    }
    return out;
}

constexpr auto kCompanyTaxCalculationCurrentLawRows =
    withRowsAfter(kCompanyTaxCalculationRows, "CorporationTaxChargeable", kAssociatedCompaniesRows);
static_assert(kCompanyTaxCalculationCurrentLawRows.back().name != nullptr, "the rows go after a row that is there");

constexpr Decl kCalculationOfTaxOutstandingOrOverpaidRows[] = {
    {0, "CalculationOfTaxOutstandingOrOverpaid", once, sequence},
    {1, "NetCorporationTaxLiability", optional, type(PenceAmount)},
    {1, "LoansToParticipators", optional, type(PenceAmount)},
    {1, "CT600AreliefDue", optional, type(YesFlag)},
    {1, "CFCtaxPayable", optional, type(PenceAmount)},
    {1, "BankLevyPayable", optional, type(PenceAmount)},
    {1, "CFCandBankLevyTotal", optional, type(PenceAmount)},
    {1, "SupplementaryCharge", optional, type(PenceAmount)},
    {1, "TaxChargeable", optional, type(PenceAmount)},
    {1, "IncomeTax", optional, sequence},
    {2, "DeductedIncomeTax", optional, type(PenceAmount)},
    {2, "TaxRepayable", optional, type(PenceAmount)},
    {1, "TaxPayable", once, type(PenceAmount)},
};

constexpr Decl kTaxReconciliationRows[] = {
    {0, "TaxReconciliation", optional, sequence},
    {1, "ResearchAndDevelopmentCredit", optional, type(PenceAmount)},
    {1, "VaccineCredit", optional, type(PenceAmount)},
    {1, "CreativeCredit", optional, type(PenceAmount)},
    {1, "ResearchAndDevelopmentVaccineOrCreativeTaxCredit", optional, type(PenceAmount)},
    {1, "LandRemediationCredit", optional, type(PenceAmount)},
    {1, "LifeAssuranceCompanyCredit", optional, type(PenceAmount)},
    {1, "LandOrLifeCredit", optional, type(PenceAmount)},
    {1, "CapitalAllowancesFirstYearCredit", optional, type(PenceAmount)},
    {1, "SurplusResearchAndDevelopmentCreditsOrCreativeCreditPayable", optional, type(PenceAmount)},
    {1, "LandOrLifeCreditPayable", optional, type(PenceAmount)},
    {1, "CapitalAllowancesFirstYearCreditPayable", optional, type(PenceAmount)},
    {1, "RingFenceCorpTaxIncluded", optional, type(PenceAmount)},
    {1, "RingFenceSupplementaryChargeIncluded", optional, type(PenceAmount)},
    {1, "TaxAlreadyPaid", optional, type(PenceAmount)},
    {1, "TaxOutstandingOrOverpaid", optional, sequence},
    {2, "TaxOutstanding", optional, type(PenceAmount)},
    {2, "TaxOverpaid", optional, type(PenceAmount)},
    {1, "RefundsSurrendered", optional, type(PenceAmount)},
    {1, "RandDExpenditureCreditsSurrendered", optional, type(PenceAmount)},
};

constexpr Decl kIndicatorsAndInformationRows[] = {
    {0, "IndicatorsAndInformation", optional, sequence},
    {1, "FrankedInvestmentIncome", optional, type(PoundsAmount)},
    {1, "NumberOf51groupCompanies", optional, type(CompanyCount)},
    {1, "InstalmentPayments", optional, type(YesFlag)},
    {1, "GroupPayment", optional, type(YesFlag)},
    {1, "IntangibleAssets", optional, type(YesFlag)},
    {1, "CrossBorderRoyalty", optional, type(YesFlag)},
};

constexpr Decl kEnhancedExpenditureRows[] = {
    {0, "EnhancedExpenditure", optional, sequence},
    {1, "SMEclaim", optional, type(YesFlag)},
    {1, "LargeCompanyClaim", optional, type(YesFlag)},
    {1, "RandDEnhancedExpenditure", optional, type(PoundsAmount)},
    {1, "CreativeEnhancedExpenditure", optional, type(PoundsAmount)},
    {1, "RandDAndCreativeEnhancedExpenditure", optional, type(PoundsAmount)},
    {1, "SMEclaimAsLargeCompany", optional, type(PoundsAmount)},
    {1, "VaccineResearch", optional, type(PoundsAmount)},
};

constexpr Decl kLandRemediationEnhancedExpenditureRows[] = {
    {0, "LandRemediationEnhancedExpenditure", optional, type(PoundsAmount)},
};

// The pools are of one named type: their two children have no rows.
constexpr Decl kAllowancesAndChargesRows[] = {
    {0, "AllowancesAndCharges", optional, sequence},
    {1, "AIACapitalAllowancesInc", optional, type(PoundsAmount)},
    {1, "MachineryAndPlantSpecialRatePool", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {2, "CapitalAllowances", optional, noTest},
    {1, "MachineryAndPlantMainPool", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {2, "CapitalAllowances", optional, noTest},
    {1, "BusinessPremisesRenovationIncluded", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {2, "CapitalAllowances", optional, noTest},
    {1, "Others", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {2, "CapitalAllowances", optional, noTest},
};

constexpr Decl kNotIncludedRows[] = {
    {0, "NotIncluded", optional, sequence},
    {1, "AIACapitalAllowancesNotInc", optional, type(PoundsAmount)},
    {1, "BusinessPremisesRenovationNotIncluded", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {2, "CapitalAllowances", optional, noTest},
    {1, "OtherAllowancesAndCharges", optional, sequence},
    {2, "BalancingCharges", optional, noTest},
    {2, "CapitalAllowances", optional, noTest},
};

constexpr Decl kQualifyingExpenditureRows[] = {
    {0, "QualifyingExpenditure", optional, sequence},
    {1, "MachineryAndPlantExpenditure", optional, type(PoundsAmount)},
    {1, "DesignatedEnvironmentallyFriendlyMachineryAndPlant", optional, type(PoundsAmount)},
    {1, "MachineryAndPlantLongLife", optional, type(PoundsAmount)},
    {1, "OtherMachineryAndPlant", optional, type(PoundsAmount)},
};

// Arising and SurrenderMaximum belong to one named type: no rows of their own.
constexpr Decl kLossesDeficitsAndExcessRows[] = {
    {0, "LossesDeficitsAndExcess", optional, sequence},
    {1, "AmountArising", optional, sequence},
    {2, "LossesOfTradesUK", optional, sequence},
    {3, "Arising", optional, noTest},
    {3, "SurrenderMaximum", optional, noTest},
    {2, "LossesOfTradesOutsideUK", optional, type(PoundsAmount)},
    {2, "Loans", optional, sequence},
    {3, "Arising", optional, noTest},
    {3, "SurrenderMaximum", optional, noTest},
    {2, "UKpropertyBusinessLosses", optional, sequence},
    {3, "Arising", optional, noTest},
    {3, "SurrenderMaximum", optional, noTest},
    {2, "OverseasPropertyBusinessLosses", optional, type(PoundsAmount)},
    {2, "MiscLosses", optional, type(PoundsAmount)},
    {2, "CapitalLosses", optional, type(PoundsAmount)},
    {2, "NonTradingLossesIntangibles", optional, sequence},
    {3, "Arising", optional, noTest},
    {3, "SurrenderMaximum", optional, noTest},
    {1, "ExcessAmounts", optional, sequence},
    {2, "NonTradeCapital", optional, type(PoundsAmount)},
    {2, "QualifyingDonations", optional, type(PoundsAmount)},
    {2, "ManagementExpenses", optional, sequence},
    {3, "Arising", optional, noTest},
    {3, "SurrenderMaximum", optional, noTest},
};

constexpr Decl kOverpaymentsAndRepaymentsRows[] = {
    {0, "OverpaymentsAndRepayments", optional, sequence},
    {1, "OwnRepaymentsLowerLimit", optional, type(PoundsAmount)},
    {1, "RepaymentsForThePeriodCoveredByThisReturn", optional, sequence},
    {2, "CorporationTax", optional, type(PositiveAmount)},
    {2, "IncomeTax", optional, type(PositiveAmount)},
    {2, "RandDTaxCredit", optional, type(PositiveAmount)},
    {2, "RandDExpenditureCredit", optional, type(PositiveAmount)},
    {2, "CreativeCredit", optional, type(PositiveAmount)},
    {2, "LandRemediationCredit", optional, type(PositiveAmount)},
    {2, "PayableCapitalAllowancesFirstYearCredit", optional, type(PositiveAmount)},
    {1, "Surrender", optional, sequence},
    {2, "Amount", once, type(PositiveAmount)},
    {2, "JointNotice", once, choice},
    {3, "Attached", alternative, type(YesFlag)},
    {3, "WillFollow", alternative, type(YesFlag)},
    {2, "StopUntilNotice", optional, type(PositiveAmount)},
    {1, "BankAccountDetails", optional, sequence},
    {2, "BankName", once, type(NameText, 2, 56)},
    {2, "SortCode", once, type(SortCodeText)},
    {2, "AccountNumber", once, type(AccountNumberText)},
    {2, "AccountName", once, type(NameText, 2, 28)},
    {2, "BuildingSocReference", optional, type(NameText, 2, 18)},
    {1, "PaymentToPerson", optional, sequence},
    {2, "Recipient", once, type(NameText, 2, 56)},
    // Line and PostCode are tested through the rows of the agent's address.
    {2, "Address", once, sequence},
    {3, "Line", occurs(2, 3), shared},
    {3, "AdditionalLine", optional, noTest},
    {3, "PostCode", optional, shared},
    {2, "NomineeReference", once, atMost(NameText, 20)},
};

constexpr Decl kDeclarationRows[] = {
    {0, "Declaration", once, sequence},
    {1, "AcceptDeclaration", once, type(AcceptFlag)},
    {1, "Name", once, type(NameText, 2, 56)},
    {1, "Status", once, type(NameText, 2, 56)},
};

}  // namespace

extern const Table kCompanyTaxCalculation{"CompanyTaxReturn", kCompanyTaxCalculationRows};
extern const Table kCompanyTaxCalculationCurrentLaw{"CompanyTaxReturn", kCompanyTaxCalculationCurrentLawRows};
extern const Table kCalculationOfTaxOutstandingOrOverpaid{"CompanyTaxReturn", kCalculationOfTaxOutstandingOrOverpaidRows};
extern const Table kTaxReconciliation{"CompanyTaxReturn", kTaxReconciliationRows};
extern const Table kIndicatorsAndInformation{"CompanyTaxReturn", kIndicatorsAndInformationRows};
extern const Table kEnhancedExpenditure{"CompanyTaxReturn", kEnhancedExpenditureRows};
extern const Table kLandRemediationEnhancedExpenditure{"CompanyTaxReturn", kLandRemediationEnhancedExpenditureRows};
extern const Table kAllowancesAndCharges{"CompanyTaxReturn", kAllowancesAndChargesRows};
extern const Table kNotIncluded{"CompanyTaxReturn", kNotIncludedRows};
extern const Table kQualifyingExpenditure{"CompanyTaxReturn", kQualifyingExpenditureRows};
extern const Table kLossesDeficitsAndExcess{"CompanyTaxReturn", kLossesDeficitsAndExcessRows};
extern const Table kOverpaymentsAndRepayments{"CompanyTaxReturn", kOverpaymentsAndRepaymentsRows};
extern const Table kDeclaration{"CompanyTaxReturn", kDeclarationRows};

}  // namespace schemamodel
