// The first sections of CompanyTaxReturn: the company, the summary of the
// return, the turnover.
#include "schema/model/model.h"

namespace schemamodel {
namespace {

constexpr Decl kCompanyInformationRows[] = {
    {0, "CompanyInformation", once, sequence},
    {1, "CompanyName", once, type(NameText, 2, 56)},
    {1, "RegistrationNumber", optional, type(RegistrationText)},
    {1, "Reference", once, type(TenDigitReference)},
    {1, "CompanyType", once, type(CompanyTypeCode)},
    {1, "PeriodCovered", once, sequence},
    {2, "From", once, type(PeriodStartDate)},
    {2, "To", once, type(DateText)},
};

constexpr Decl kReturnInfoSummaryRows[] = {
    {0, "ReturnInfoSummary", once, sequence},
    {1, "ThisPeriod", optional, type(YesFlag)},
    {1, "EarlierPeriod", optional, type(YesFlag)},
    {1, "MultipleReturns", optional, type(YesFlag)},
    {1, "ProvisionalFigures", optional, type(YesFlag)},
    {1, "PartOfNonSmallGroup", optional, type(YesFlag)},
    {1, "RegisteredAvoidanceScheme", optional, type(YesFlag)},
    {1, "TransferPricing", optional, sequence},
    {2, "Adjustment", optional, type(YesFlag)},
    {2, "SME", optional, type(YesFlag)},
    {1, "Accounts", once, sequence},
    {2, "ThisPeriodAccounts", optional, type(YesFlag)},
    {2, "DifferentPeriod", optional, type(YesFlag)},
    {2, "NoAccountsReason", optional, type(NoAccountsText)},
    {1, "Computations", once, choice},
    {2, "ThisPeriodComputations", alternative, type(YesFlag)},
    {2, "DifferentPeriod", alternative, type(YesFlag)},
    {2, "NoComputationsReason", alternative, type(NoComputationsText)},
    {1, "SupplementaryPages", optional, sequence},
    {2, "CT600A", optional, type(YesFlag)},
    {2, "CT600B", optional, type(YesFlag)},
    {2, "CT600C", optional, type(YesFlag)},
    {2, "CT600D", optional, type(YesFlag)},
    {2, "CT600E", optional, type(YesFlag)},
    {2, "CT600F", optional, type(YesFlag)},
    {2, "CT600G", occurs(0, 0), type(YesFlag)},  // no longer filed: present at all is an error
    {2, "CT600H", optional, type(YesFlag)},
    {2, "CT600I", optional, type(YesFlag)},
    {2, "CT600J", optional, type(YesFlag)},
};

constexpr Decl kTurnoverRows[] = {
    {0, "Turnover", optional, sequence},
    {1, "Total", optional, type(TurnoverAmount)},
    {1, "OtherFinancialConcerns", optional, type(YesFlag)},
};

}  // namespace

extern const Table kCompanyInformation{"CompanyTaxReturn", kCompanyInformationRows};
extern const Table kReturnInfoSummary{"CompanyTaxReturn", kReturnInfoSummaryRows};
extern const Table kTurnover{"CompanyTaxReturn", kTurnoverRows};

}  // namespace schemamodel
