// The sections of CompanyTaxReturn from the tax calculation to the declaration.
#include "schema/model/model.h"

namespace schemamodel {
namespace {

// Each table holds its top row only, so far: CompanyTaxReturn counts the
// section, and nothing below it is tested yet. Its rows follow the top row.
constexpr Decl kCompanyTaxCalculationRows[] = {
    {0, "CompanyTaxCalculation", once, noTest},
};
constexpr Decl kCalculationOfTaxOutstandingOrOverpaidRows[] = {
    {0, "CalculationOfTaxOutstandingOrOverpaid", once, noTest},
};
constexpr Decl kTaxReconciliationRows[] = {
    {0, "TaxReconciliation", optional, noTest},
};
constexpr Decl kIndicatorsAndInformationRows[] = {
    {0, "IndicatorsAndInformation", optional, noTest},
};
constexpr Decl kEnhancedExpenditureRows[] = {
    {0, "EnhancedExpenditure", optional, noTest},
};
constexpr Decl kLandRemediationEnhancedExpenditureRows[] = {
    {0, "LandRemediationEnhancedExpenditure", optional, noTest},
};
constexpr Decl kAllowancesAndChargesRows[] = {
    {0, "AllowancesAndCharges", optional, noTest},
};
constexpr Decl kNotIncludedRows[] = {
    {0, "NotIncluded", optional, noTest},
};
constexpr Decl kQualifyingExpenditureRows[] = {
    {0, "QualifyingExpenditure", optional, noTest},
};
constexpr Decl kLossesDeficitsAndExcessRows[] = {
    {0, "LossesDeficitsAndExcess", optional, noTest},
};
constexpr Decl kOverpaymentsAndRepaymentsRows[] = {
    {0, "OverpaymentsAndRepayments", optional, noTest},
};
constexpr Decl kDeclarationRows[] = {
    {0, "Declaration", once, noTest},
};

}  // namespace

extern const Table kCompanyTaxCalculation{"CompanyTaxReturn", kCompanyTaxCalculationRows};
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
