// The sections of the supplementary pages, the two closing flags and the
// attached files.
#include "schema/model/model.h"

namespace schemamodel {
namespace {

// Each table holds its top row only, so far: CompanyTaxReturn counts the
// section, and nothing below it is tested yet. Its rows follow the top row.
constexpr Decl kLoansByCloseCompaniesRows[] = {
    {0, "LoansByCloseCompanies", optional, noTest},
};
constexpr Decl kControlledForeignCompaniesRows[] = {
    {0, "ControlledForeignCompanies", optional, noTest},
};
constexpr Decl kGroupAndConsortiumRows[] = {
    {0, "GroupAndConsortium", optional, noTest},
};
constexpr Decl kInsuranceRows[] = {
    {0, "Insurance", optional, noTest},
};
constexpr Decl kCharityRows[] = {
    {0, "Charity", optional, noTest},
};
constexpr Decl kTonnageTaxRows[] = {
    {0, "TonnageTax", optional, noTest},
};
constexpr Decl kCrossBorderRoyaltiesRows[] = {
    {0, "CrossBorderRoyalties", optional, noTest},
};
constexpr Decl kRingFenceTradeRows[] = {
    {0, "RingFenceTrade", optional, noTest},
};
constexpr Decl kTaxAvoidanceSchemesRows[] = {
    {0, "TaxAvoidanceSchemes", optional, noTest},
};
constexpr Decl kWelshReturnRows[] = {
    {0, "WelshReturn", optional, noTest},
};
constexpr Decl kJointAccountsRows[] = {
    {0, "JointAccounts", optional, noTest},
};
constexpr Decl kAttachedFilesRows[] = {
    {0, "AttachedFiles", optional, noTest},
};

}  // namespace

extern const Table kLoansByCloseCompanies{"CompanyTaxReturn", kLoansByCloseCompaniesRows};
extern const Table kControlledForeignCompanies{"CompanyTaxReturn", kControlledForeignCompaniesRows};
extern const Table kGroupAndConsortium{"CompanyTaxReturn", kGroupAndConsortiumRows};
extern const Table kInsurance{"CompanyTaxReturn", kInsuranceRows};
extern const Table kCharity{"CompanyTaxReturn", kCharityRows};
extern const Table kTonnageTax{"CompanyTaxReturn", kTonnageTaxRows};
extern const Table kCrossBorderRoyalties{"CompanyTaxReturn", kCrossBorderRoyaltiesRows};
extern const Table kRingFenceTrade{"CompanyTaxReturn", kRingFenceTradeRows};
extern const Table kTaxAvoidanceSchemes{"CompanyTaxReturn", kTaxAvoidanceSchemesRows};
extern const Table kWelshReturn{"CompanyTaxReturn", kWelshReturnRows};
extern const Table kJointAccounts{"CompanyTaxReturn", kJointAccountsRows};
extern const Table kAttachedFiles{"CompanyTaxReturn", kAttachedFilesRows};

}  // namespace schemamodel
